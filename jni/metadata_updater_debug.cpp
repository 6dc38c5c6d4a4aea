// Which frames a two-camera fusion works on, the frame settings of a double exposure for the log, and the
// device's switch for automatic tests.

#include <cutils/properties.h>

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "log.h"
#include "metadata_updater_rows.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-MetadataUpdater";
constexpr char kOperation[] = "updateDebug";  // named by the lines of its parts

// As a decimal integer; 0 for text that is none.
int32_t propertyAsInt(const char* name) {
  char text[128] = {};
  static_assert(sizeof text >= PROPERTY_VALUE_MAX);
  property_get(name, text, "0");
  const long value = std::strtol(text, nullptr, 10);
  return static_cast<int32_t>(
      std::clamp<long>(value, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
}

}  // namespace

void MetadataUpdater::updateDebug() {
  if (isFusion()) updateFusionFrames();
  if (listHas("dualexpo")) {
    logFrameSettings(__func__, 0);
    logFrameSettings(__func__, 1);
  }
  write(kControl, "auto_test_open", propertyAsInt("persist.sys.camera3rd.autotest"));
}

// Two cameras' frames are fused, and there are two at least.
bool MetadataUpdater::isFusion() {
  return (listHas("dualBokeh") || mIsSatFusion) && isRawFormat() == 0 &&
         mCaptureResultCompositions->size() >= 2;
}

MetadataUpdater::FusionFrames MetadataUpdater::fusionFrames() const {
  if (mIsSatFusion) {
    const bool isBaseKnown = mBasicFrameIndex >= 0 && !listHas("pixelshift");
    return {isBaseKnown ? mBasicFrameIndex : 0, mCaptureResultNum - 1};
  }
  if (listHas("dualBokeh") && listHas("hdr")) return {2, 3};
  return {0, 1};
}

// Entry 0 of each list is the master frame's, entry 1 the slave's. A frame past the list leaves its entry 0.
void MetadataUpdater::updateFusionFrames() {
  const FusionFrames frames = fusionFrames();
  constexpr char kTimestampTag[] = "orlu.feedback.sensor_timestamp";
  constexpr char kRequestIdTag[] = "orlu.control.reqID";
  const CameraMetadataParser::RepeatedTag repeatedTimestamp(*mParser, kTimestampTag);
  const CameraMetadataParser::RepeatedTag repeatedRequestId(*mParser, kRequestIdTag);
  Longs<2> timestamps = {};
  Longs<2> requestIds = {};
  for (int i = 0; i < mCaptureResultNum; ++i) {
    const auto timestamp = readOr<int64_t>(0, kTimestampTag, frameAt(i));
    const auto requestId = readOr<int32_t>(0, kRequestIdTag, frameAt(i));
    for (size_t slot = 0; slot < frames.size(); ++slot) {
      if (i != frames[slot]) continue;
      timestamps[slot] = timestamp;
      requestIds[slot] = requestId;
    }
    LOGD_AS(kOperation, "CHECKXX FUSION  %d TIMESTAMP:%lld, reqID:%d", i, static_cast<long long>(timestamp),
            requestId);
  }
  write(kControl, "bokeh_timestamp", timestamps);
  write(kControl, "bokeh_request_id", requestIds);
  write(kControl, "bokeh_expotime", readFusionExposureTimes(frames));
}

// Milliseconds. Both frames share one record: what the first left stays under what the second lacks. The
// composition stands for the capture result too; kept so.
std::array<float, 2> MetadataUpdater::readFusionExposureTimes(const FusionFrames& frames) {
  Floats<2> times = {};
  Aec aec = {};
  for (size_t slot = 0; slot < frames.size(); ++slot) {
    if (frames[slot] >= mCaptureResultNum) continue;
    const jobject composition = frameAt(frames[slot]).composition;
    read(aec, kAecTag, {composition, composition});
    times[slot] = aec[kAecExposureTime] / kNanosecondsPerMillisecond;
  }
  return times;
}

// `step` names the caller in the log.
void MetadataUpdater::logFrameSettings(const char* step, int index) {
  const Frame frame = frameAt(index);
  const auto isMirror = readOr<int32_t>(0, "orlu.control.mirror", frame);
  const auto watermarkType = readOr<int32_t>(0, "orlu.control.watermark", frame);
  const auto isUpscale = readOr<int32_t>(0, "orlu.control.isUpscale", frame);
  const auto rotation = readOr<int32_t>(0, "android.jpeg.orientation", frame);
  const _tagOrluFaceInfo faces = readFaces(frame);
  LOGD_AS(kOperation,
          "%s: metadata[%d] isMirror %d watermarkType %d isUpscale %d jpegRotation %d face_num %d", step,
          index, isMirror, watermarkType, isUpscale, rotation, faces.count);
  for (int i = 0; i < faces.count; ++i) {
    const __tagOrluRect& face = faces.rects[i];
    LOGD_AS(kOperation, "%s: metadata[%d] face[%d] lrtb %d %d %d %d", step, index, i, face.left, face.right,
            face.top, face.bottom);
  }
}

}  // namespace orlu
