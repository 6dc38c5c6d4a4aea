// Debugging aids: logs a double exposure's frame settings and passes on the device's switch for automatic
// tests. updateDebug() also runs the step for the frames of a two-camera fusion.

#include <cutils/properties.h>

#include <algorithm>
#include <cstdlib>

#include "metadata_updater_steps.h"

namespace orlu {
namespace {

constexpr char kOperation[] = "updateDebug";  // helpers log it as their operation

// Reads the decimal integer at the start of a property; 0 if there is none.
int32_t propertyAsInt(const char* name) {
  char text[128] = {};
  static_assert(sizeof text >= PROPERTY_VALUE_MAX);
  property_get(name, text, "0");
  return saturated(std::strtol(text, nullptr, 10));
}

void logFrameSettings(const Shot& shot, int index) {
  const Frame frame = shot.frames().at(index);
  const auto isMirror = shot.readOr<int32_t>(frame, "orlu.control.mirror");
  const auto watermarkType = shot.readOr<int32_t>(frame, "orlu.control.watermark");
  const auto isUpscale = shot.readOr<int32_t>(frame, "orlu.control.isUpscale");
  const auto rotation = shot.readOr<int32_t>(frame, "android.jpeg.orientation");
  _tagOrluFaceInfo faces = readFaces(shot, frame);
  faces.count = std::min(faces.count, kMaxFaces);
  LOGD_AS(kOperation,
          "%s: metadata[%d] isMirror %d watermarkType %d isUpscale %d jpegRotation %d face_num %d",
          kOperation, index, isMirror, watermarkType, isUpscale, rotation, faces.count);
  for (int i = 0; i < faces.count; ++i) {
    const __tagOrluRect& face = faces.rects[i];
    LOGD_AS(kOperation, "%s: metadata[%d] face[%d] lrtb %d %d %d %d", kOperation, index, i, face.left,
            face.right, face.top, face.bottom);
  }
}

}  // namespace

void MetadataUpdater::updateDebug() {
  updateFusionFrames();
  if (mShot.listHas("dualexpo")) {
    logFrameSettings(mShot, 0);
    logFrameSettings(mShot, 1);
  }
  mShot.write<int32_t>(kControl, "auto_test_open", propertyAsInt("persist.sys.camera3rd.autotest"));
}

}  // namespace orlu
