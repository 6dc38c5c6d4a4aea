// The cameras that the multi-camera engine algorithms work on.

#include <algorithm>
#include <string_view>

#include "log.h"
#include "metadata_updater_rows.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-MetadataUpdater";

// The cameras of a bokeh session; empty for every other session.
std::string_view bokehComposition(int32_t session) {
  switch (session) {
    case 4:
      return "BokehTele2_Tele_Wide";
    case 3:
      return "Bokeh_Wide_UltraWide";
    default:
      return {};
  }
}

}  // namespace

void MetadataUpdater::updateEngine() {
  int32_t session = 0;
  const int status = read(session, "com.orlu.MultiCameraBokehSelectSessionId");
  LOGD("multiCameraBokehSelectSessionId %d ret %d", session, status);
  Chars<65> composition;
  const std::string_view name = bokehComposition(session);
  if (name.empty()) {
    read(composition, "com.orlu.chi.override.CameraComposition");
  } else {
    std::copy(name.begin(), name.end(), composition.data);
  }
  write(kSensor, "camera_composition", composition);
}

}  // namespace orlu
