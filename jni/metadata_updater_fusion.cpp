// The two frames of a two-camera fusion: for bokeh, or while a multi-camera system switches cameras (SAT).

#include "fusion_frames.h"
#include "metadata_updater_steps.h"

namespace orlu {
namespace {

constexpr char kOperation[] = "updateDebug";  // the caller, logged as the operation

// Writes the frames' timestamps and ids. The entries of a missing frame stay 0.
void writeFrameIds(Shot& shot, const FusionFrames& frames) {
  constexpr char kTimestampTag[] = "orlu.feedback.sensor_timestamp";
  constexpr char kRequestIdTag[] = "orlu.control.reqID";
  const auto repeatedTimestamp = shot.repeated(kTimestampTag);
  const auto repeatedRequestId = shot.repeated(kRequestIdTag);
  Longs<2> timestamps = {};
  Longs<2> requestIds = {};
  for (int i = 0; i < shot.frames().size(); ++i) {
    const auto timestamp = shot.readOr<int64_t>(shot.frames().at(i), kTimestampTag);
    const auto requestId = shot.readOr<int32_t>(shot.frames().at(i), kRequestIdTag);
    for (size_t slot = 0; slot < frames.size(); ++slot) {
      if (i != frames[slot]) continue;
      timestamps[slot] = timestamp;
      requestIds[slot] = requestId;
    }
    LOGD_AS(kOperation, "CHECKXX FUSION  %d TIMESTAMP:%lld, reqID:%d", i, static_cast<long long>(timestamp),
            requestId);
  }
  shot.write<Longs<2>>(kControl, "bokeh_timestamp", timestamps);
  shot.write<Longs<2>>(kControl, "bokeh_request_id", requestIds);
}

// Both frames are read into one record: elements that the second frame lacks keep the first frame's values.
// If there is no second frame, all elements keep them (Oddity 21). The composition is also passed as the
// capture result (Oddity 22).
void writeExposureTimes(Shot& shot, const FusionFrames& frames) {
  Floats<2> times = {};  // milliseconds
  Aec aec = {};
  for (size_t slot = 0; slot < frames.size(); ++slot) {
    const jobject composition = shot.frames().at(frames[slot]).composition;
    shot.read({composition, composition}, kAecTag, aec);
    times[slot] = milliseconds(aec);
  }
  shot.write<Floats<2>>(kControl, "bokeh_expotime", times);
}

}  // namespace

void MetadataUpdater::updateFusionFrames() {
  FusionShot fusion;
  fusion.isSatFusion = mIsSatFusion;
  fusion.isDualBokeh = mShot.listHas("dualBokeh");
  if (!fusion.isSatFusion && !fusion.isDualBokeh) return;
  if (mShot.isRaw() || mCaptureResultCompositions->size() < 2) return;

  fusion.isHdr = mShot.listHas("hdr");
  fusion.isPixelShift = mShot.listHas("pixelshift");
  fusion.baseFrame = mBasicFrameIndex;
  fusion.frameNum = mCaptureResultNum;
  const FusionFrames frames = fusionFramesOf(fusion);
  writeFrameIds(mShot, frames);
  writeExposureTimes(mShot, frames);
}

}  // namespace orlu
