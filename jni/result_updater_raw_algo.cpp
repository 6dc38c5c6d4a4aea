// Results of the raw-domain algorithms. Without a composition, each step only logs.

#include "log.h"
#include "metadata_records.h"
#include "result_updater_rows.h"

namespace orlu {

int ResultUpdater::updateParamsFromRawAlgo() {
  updateTunningMode();
  updateRAWHDRTrackingInfor();
  updateShortGainForRAWHDR();
  updateProcessedAlgoTag();
  updateProrawPure2ProcState();
  updateCaptureResultForSuperMoon();
  return 0;
}

int ResultUpdater::updateTunningMode() {
  constexpr int32_t kShortExposureMode = 4;
  constexpr int32_t kShortExposureLimit = -1000;
  if (!hasComposition()) {
    LOGE("updateTunningMode failed, captureResultCompositions size < 1");
    return 0;
  }
  auto mode = mChannel.get<int32_t>(kFeedback, "tunning_mode");
  const auto aeParams = mChannel.get<Ints<2>>(kParameter, "rawhdr_shot_ae_params");
  if (aeParams[1] < kShortExposureLimit) mode |= kShortExposureMode;
  LOGD("updateMarkMode %d", mode);
  if (put<int32_t>("orlu.feedback.TunningMode", mode) != 0) {
    LOGE("pCameraMetadataParser->putInt fail");
  }
  return 0;
}

int ResultUpdater::updateRAWHDRTrackingInfor() {
  if (!hasComposition()) {
    LOGE("RAWHDRTrackingInfor failed, captureResultCompositions size < 1");
    return 0;
  }
  const auto mode = mChannel.get<int32_t>(kFeedback, "rawhdr_track_mode");
  const auto sceneType = mChannel.get<int32_t>(kFeedback, "rawhdr_track_scenetype");
  LOGD("AlgoRAWHDRMode %d, AlgoRAWHDRSceneType %d, mMetadatas size =%d .", mode, sceneType,
       static_cast<int>(mRequest.captureResultCompositions().size()));
  if (put<int32_t>("orlu.feedback.AlgoRAWHDRMode", mode) != 0) {
    LOGE("pCameraMetadataParser->putInt AlgoRAWHDRMode fail");
  }
  if (put<int32_t>("orlu.feedback.AlgoRAWHDRSceneType", sceneType) != 0) {
    LOGE("pCameraMetadataParser->putInt AlgoRAWHDRSceneType fail");
  }
  return 0;
}

int ResultUpdater::updateShortGainForRAWHDR() {
  if (!hasComposition()) {
    LOGD("rawhdrISPAEParams failed,captureResultCompositions size < 1");
    return 0;
  }
  const Floats<2> gains = {mChannel.get<float>(kSystem, "real_gain"),
                           mChannel.get<float>(kSystem, "dark_boost_gain")};
  // Oddity 41: this result is put into the last composition, all other results into the first.
  if (put<Floats<2>>(mTags.frames().last(), "orlu.feedback.rawhdrISPAEParams", gains) != 0) {
    LOGE("put rawhdrISPAEParams fail");
  }
  return 0;
}

int ResultUpdater::updateProcessedAlgoTag() {
  if (!hasComposition()) {
    LOGE("updateProcessedAlgoTag failed, captureResultCompositions size < 1");
    return 0;
  }
  const auto processed = mChannel.get<ProcessedAlgo>(kParameter, "processed_algo");
  const uint64_t* const word = processed.words;
  LOGD("update debug processed algo to AP [0x%llx 0x%llx 0x%llx 0x%llx 0x%llx] ",
       static_cast<unsigned long long>(word[0]), static_cast<unsigned long long>(word[1]),
       static_cast<unsigned long long>(word[2]), static_cast<unsigned long long>(word[3]),
       static_cast<unsigned long long>(word[4]));
  const auto forApplication = static_cast<int64_t>(word[ProcessedAlgo::kApplicationWord]);
  if (put<int64_t>("orlu.parameter.processedAlgo", forApplication) != 0) {
    LOGE("pCameraMetadataParser->putInt fail");
  }
  return 0;
}

int ResultUpdater::updateProrawPure2ProcState() {
  if (!hasComposition()) {
    LOGD("updateProrawPure2ProcState failed,captureResultCompositions size < 1");
    return 0;
  }
  const int32_t enabled = mChannel.get<uint8_t>(kFeedback, "pure2proc_enabled");
  if (put<int32_t>("orlu.feedback.pure2proc.enabled", enabled) != 0) {
    LOGE("pCameraMetadataParser->putInt pure2procEnabled fail");
  }
  return 0;
}

int ResultUpdater::updateCaptureResultForSuperMoon() {
  if (!hasComposition()) {
    // Oddity 43: the text names another function.
    LOGE_BARE(kShortLogTag, "updateTunningMode failed, captureResultCompositions size < 1");
    return 0;
  }
  const auto result = mChannel.get<int32_t>(kFeedback, "supermoon_capture_result", -1);
  LOGD_BARE(kShortLogTag, "update supermoon capture result %d", result);
  if (put<int32_t>("orlu.feedback.superMoonCaptureResult", result) != 0) {
    LOGE_BARE(kShortLogTag, "pCameraMetadataParser->putInt fail");
  }
  return 0;
}

}  // namespace orlu
