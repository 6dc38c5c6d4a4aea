// The frame-clarity (image score) pass: scores and frame indices of the frames.

#include <algorithm>
#include <vector>

#include "log.h"
#include "metadata_updater_rows.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-MetadataUpdater";
constexpr char kOperation[] = "updateFrameClarity";  // named by the lines of its parts

// Room in the algorithms' tables.
constexpr int kMaxClarityFrames = 50;

// The camera's marker for a request that needs no algorithm pass.
constexpr double kNoPassScore = 1'000'000.0;

}  // namespace

void MetadataUpdater::updateFrameClarity() {
  write<int32_t>(kParameter, "is_need_image_score_calculate", listHas("frameClarOnly") ? 1 : 0);
  mIsFastDisplayRequest =
      copy<int32_t>("orlu.control.isFastDisplayRequest", kParameter, "is_fast_display_request");
  const auto isCalculated =
      copy<int32_t>("orlu.control.image.score.calc", kParameter, "is_image_score_calculated");
  LOGD("basic_frame_index=%d, isFastDisplayRequest=%d, isImageScoreCalculated=%d", mBasicFrameIndex,
       mIsFastDisplayRequest, isCalculated);

  std::vector<double> scores = readImageScores();
  writeFrameIndices();
  if (!scores.empty() && scores[0] == kNoPassScore) mSkipAlgoProcess = true;
  if (isCalculated == 0) scores.assign(kMaxClarityFrames, 0.0);
  setValue(kParameter, "frame_clarity_score", scores.data(),
           static_cast<unsigned>(scores.size() * sizeof scores[0]));
}

// One score per capture result, 0 where the camera gave none.
std::vector<double> MetadataUpdater::readImageScores() {
  std::vector<double> scores(static_cast<size_t>(mCaptureResultNum));
  const Frame first = firstFrame();
  mParser->getDoubleArray(scores.data(), mCaptureResultNum, "orlu.control.image.score", first.captureResult,
                          first.composition);
  // The first score decides for all whether they are worth a line, on purpose.
  if (!scores.empty() && scores[0] > 0.0) {
    for (size_t i = 0; i < scores.size(); ++i) {
      LOGD_AS(kOperation, "start process input imagescore[%d]=%f", static_cast<int>(i), scores[i]);
    }
  }
  return scores;
}

void MetadataUpdater::writeFrameIndices() {
  Ints<kMaxClarityFrames> indices = {};
  const int count = std::min(mCaptureResultNum, kMaxClarityFrames);
  constexpr char kTag[] = "orlu.control.frameIndex";
  const CameraMetadataParser::RepeatedTag repeated(*mParser, kTag);
  for (int i = 0; i < count; ++i) {
    read(indices[static_cast<size_t>(i)], kTag, frameAt(i));
  }
  write(kControl, "frameclarity_index", indices);
}

}  // namespace orlu
