// The fields of a call's events; docs/events.md lists them.
#pragma once

#include "event_line.h"
#include "table_watch.h"

namespace orlu::probe {

void addInputs(EventLine& line, const WatchedCall& call);
// Adds the duration and the results.
void addOutputs(EventLine& line, const WatchedCall& call, const WatchedEnd& end);

}  // namespace orlu::probe
