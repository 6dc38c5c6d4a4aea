// How the result updater logs. For its own files alone.
#pragma once

#include "log.h"

namespace orlu {

constexpr char kLogTag[] = "_V_VASJNI-ResultUpdater";
// The tag of the few lines that are written without the place, whatever the log level.
constexpr char kShortLogTag[] = "VASJNI-ResultUpdater";

}  // namespace orlu
