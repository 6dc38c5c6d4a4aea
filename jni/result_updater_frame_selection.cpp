// Puts the results of frame selection into the first composition: the kept frames, the sharpness of all
// frames or of the dropped frames, and the base frame. Applications identify frames by timestamp. The
// algorithms identify frames by index; they may also give the base frame's timestamp.

#include <algorithm>

#include "log.h"
#include "result_updater_rows.h"

namespace orlu {
namespace {

// Numbers of entries in the algorithms' tables. A frame beyond the end of a table has score 0, or counts as
// dropped.
constexpr size_t kMaxScores = 50;
constexpr size_t kMaxSelections = 20;
using Scores = Doubles<kMaxScores>;
using Selections = Ints<kMaxSelections>;

double scoreAt(const Scores& scores, size_t frame) {
  return frame < scores.size() ? scores[frame] : 0.0;
}

int32_t selectionAt(const Selections& selections, size_t frame) {
  return frame < selections.size() ? selections[frame] : -1;
}

}  // namespace

template <typename Logger>
FrameValues<int64_t> ResultUpdater::readTimestamps(const Logger& log) {
  constexpr char kTimestampTag[] = "android.sensor.timestamp";
  const FrameList& frames = mTags.frames();
  const CameraMetadataParser::RepeatedTag repeated = mTags.repeated(kTimestampTag);
  const auto count = static_cast<size_t>(frames.size());
  FrameValues<int64_t> timestamps(count, count);
  for (size_t i = 0; i < count; ++i) {
    mTags.read(frames.at(static_cast<int>(i)).captureResultOnly(), kTimestampTag, timestamps[i]);
    log(i, timestamps[i]);
  }
  return timestamps;
}

int ResultUpdater::updateFrameClarity() {
  const size_t imageNum = mRequest.inputFrames().size();
  const auto scores = mChannel.get<Scores>(kParameter, "frame_clarity_score");
  if (!hasComposition()) {
    LOGE("updateForFrameClarity failed, captureResultCompositions size < 1");
    return -1;
  }
  // Oddity 42: one entry per input image; entries beyond the end of the table stay 0.
  FrameValues<double> perImage(imageNum, imageNum);
  std::copy_n(scores.begin(), std::min(imageNum, kMaxScores), perImage.data());
  put<FrameValues<double>>("orlu.feedback.clarityScore", perImage);
  for (size_t i = 0; i < imageNum; ++i) {
    LOGD("updateForFrameClarity i = %d,clarityScore = %f", static_cast<int>(i), perImage[i]);
  }
  return 0;
}

int ResultUpdater::updateFrameSelectResult() {
  Selections nothingSelected;
  nothingSelected.fill(-1);
  const auto selections = mChannel.get<Selections>(kFeedback, "frame_select_result", nothingSelected);
  const auto scores = mChannel.get<Scores>(kParameter, "frame_clarity_score");
  const char* const operation = __func__;
  const FrameValues<int64_t> timestamps = readTimestamps([&](size_t i, int64_t timestamp) {
    LOGD_AS(operation, "frameSelect update %d Score %.4f, timeStamps %lld, need throw: %d",
            static_cast<int>(i), scoreAt(scores, i), static_cast<long long>(timestamp),
            selectionAt(selections, i));
  });

  FrameValues<int64_t> kept(timestamps.size());
  FrameValues<double> thrownScores(timestamps.size());
  for (size_t i = 0; i < timestamps.size(); ++i) {
    const int32_t frame = selectionAt(selections, i);
    if (frame < 0) {
      thrownScores.push_back(scoreAt(scores, i));
    } else if (static_cast<size_t>(frame) < timestamps.size()) {
      kept.push_back(timestamps[static_cast<size_t>(frame)]);
    } else {
      LOGE("callbackFrameSelectResult failed, frameIndex out of range");
      return -1;
    }
  }
  if (!hasComposition()) {
    LOGE("callbackFrameSelectResult failed, captureResultCompositions size < 1");
    return 0;
  }
  put<FrameValues<int64_t>>("orlu.feedback.frameSelectResult", kept);
  put<FrameValues<double>>("orlu.feedback.clarityScore", thrownScores);
  return 0;
}

int ResultUpdater::updateSelectBasicFrameIndex() {
  const FrameValues<int64_t> timestamps = readTimestamps([](size_t, int64_t) {});
  auto index = mChannel.get<int32_t>(kFeedback, "current_base_frame_idx", -1);
  const auto time = mChannel.get<int64_t>(kControl, "current_base_frame_time");
  if (index < 0) return 0;

  int64_t result = time;
  if (time != 0) {
    LOGD("callbackSelectBasicFrameIndex currentBaseFrameTime %lld, timeStamps %lld",
         static_cast<long long>(time), static_cast<long long>(timestamps.empty() ? 0 : timestamps[0]));
  } else {
    if (static_cast<size_t>(index) >= timestamps.size()) {
      LOGE("currentBaseFrameIdx > size");
      index = 0;
    }
    if (timestamps.empty()) {
      LOGE("currentBaseFrameIdx still > timeStamps size");
      return -1;
    }
    result = timestamps[static_cast<size_t>(index)];
  }
  if (!hasComposition()) {
    LOGE("callbackSelectBasicFrameIndex failed, captureResultCompositions size < 1");
    return 0;
  }
  put<int64_t>("orlu.feedback.basicFrameTimestamp", result);
  LOGD("callbackSelectBasicFrameIndex currentBaseFrameIdx %d, resultTimeStamps %ld", index,
       static_cast<long>(result));
  return 0;
}

}  // namespace orlu
