// Writes the parameters of the frame-clarity (image score) pass: the frames' scores and indices.

#include <algorithm>

#include "frame_values.h"
#include "metadata_updater_steps.h"

namespace orlu {
namespace {

// Number of frames for which the algorithms' tables of scores and indices have room.
constexpr int kMaxClarityFrames = 50;

// The camera's marker for a request that needs no algorithm pass.
constexpr double kNoPassScore = 1'000'000.0;

// Returns one score per capture result. Scores that are missing from the tag are 0.
FrameValues<double> readImageScores(const Shot& shot) {
  const auto count = static_cast<size_t>(shot.frames().size());
  FrameValues<double> scores(count, count);
  shot.read("orlu.control.image.score", scores);
  return scores;
}

void writeFrameIndices(Shot& shot) {
  constexpr char kTag[] = "orlu.control.frameIndex";
  const auto repeated = shot.repeated(kTag);
  Ints<kMaxClarityFrames> indices = {};
  const int count = std::min(shot.frames().size(), kMaxClarityFrames);
  for (int i = 0; i < count; ++i) shot.read(shot.frames().at(i), kTag, indices[static_cast<size_t>(i)]);
  shot.write<Ints<kMaxClarityFrames>>(kControl, "frameclarity_index", indices);
}

}  // namespace

void MetadataUpdater::updateFrameClarity() {
  const bool isOnlyClarity = mShot.listHas("frameClarOnly");
  mShot.write<int32_t>(kParameter, "is_need_image_score_calculate", isOnlyClarity ? 1 : 0);
  mIsFastDisplayRequest =
      mShot.copy<int32_t>("orlu.control.isFastDisplayRequest", kParameter, "is_fast_display_request");
  const auto isCalculated =
      mShot.copy<int32_t>("orlu.control.image.score.calc", kParameter, "is_image_score_calculated");
  LOGD("basic_frame_index=%d, isFastDisplayRequest=%d, isImageScoreCalculated=%d", mBasicFrameIndex,
       mIsFastDisplayRequest, isCalculated);

  FrameValues<double> scores = readImageScores(mShot);
  // The first score decides whether any score is logged (Oddity 38).
  if (!scores.empty() && scores[0] > 0.0) {
    for (size_t i = 0; i < scores.size(); ++i) {
      LOGD("start process input imagescore[%d]=%f", static_cast<int>(i), scores[i]);
    }
  }
  writeFrameIndices(mShot);
  if (!scores.empty() && scores[0] == kNoPassScore) mSkipAlgoProcess = true;
  constexpr char kScoreKey[] = "frame_clarity_score";
  if (isCalculated == 0) {
    mShot.write<Doubles<kMaxClarityFrames>>(kParameter, kScoreKey, {});
  } else {
    // The size depends on the number of frames, but write<T>() would write a fixed size.
    mShot.parameters().setBytes(kParameter, kScoreKey, scores.data(),
                                static_cast<unsigned>(scores.size() * sizeof scores[0]));
  }
}

}  // namespace orlu
