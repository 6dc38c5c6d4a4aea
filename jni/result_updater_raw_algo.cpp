// What the raw-domain algorithms report back. Each step asks for a composition first, and logs when there is
// none.

#include "metadata_records.h"
#include "result_updater.h"
#include "result_updater_log.h"
#include "shot_tags.h"

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
  auto mode = parameters().get<int32_t>(kFeedback, "tunning_mode");
  const auto aeParams = parameters().get<Ints<2>>(kParameter, "rawhdr_shot_ae_params");
  if (aeParams[1] < kShortExposureLimit) mode |= kShortExposureMode;
  LOGD("updateMarkMode %d", mode);
  if (mParser->putInt(mode, "orlu.feedback.TunningMode", mRequest.firstComposition()) != 0) {
    LOGE("pCameraMetadataParser->putInt fail");
  }
  return 0;
}

int ResultUpdater::updateRAWHDRTrackingInfor() {
  if (!hasComposition()) {
    LOGE("RAWHDRTrackingInfor failed, captureResultCompositions size < 1");
    return 0;
  }
  const auto mode = parameters().get<int32_t>(kFeedback, "rawhdr_track_mode");
  const auto sceneType = parameters().get<int32_t>(kFeedback, "rawhdr_track_scenetype");
  LOGD("AlgoRAWHDRMode %d, AlgoRAWHDRSceneType %d, mMetadatas size =%d .", mode, sceneType,
       static_cast<int>(mRequest.captureResultCompositions().size()));
  if (mParser->putInt(mode, "orlu.feedback.AlgoRAWHDRMode", mRequest.firstComposition()) != 0) {
    LOGE("pCameraMetadataParser->putInt AlgoRAWHDRMode fail");
  }
  if (mParser->putInt(sceneType, "orlu.feedback.AlgoRAWHDRSceneType", mRequest.firstComposition()) != 0) {
    LOGE("pCameraMetadataParser->putInt AlgoRAWHDRSceneType fail");
  }
  return 0;
}

int ResultUpdater::updateShortGainForRAWHDR() {
  if (!hasComposition()) {
    LOGD("rawhdrISPAEParams failed,captureResultCompositions size < 1");
    return 0;
  }
  const float gains[] = {parameters().get<float>(kSystem, "real_gain"),
                         parameters().get<float>(kSystem, "dark_boost_gain")};
  // Into the last composition, unlike everything else (Oddity 41).
  const jobject last = mRequest.captureResultCompositions().back();
  if (mParser->putFloatArray(gains, 2, "orlu.feedback.rawhdrISPAEParams", last) != 0) {
    LOGE("put rawhdrISPAEParams fail");
  }
  return 0;
}

int ResultUpdater::updateProcessedAlgoTag() {
  if (!hasComposition()) {
    LOGE("updateProcessedAlgoTag failed, captureResultCompositions size < 1");
    return 0;
  }
  const auto processed = parameters().get<ProcessedAlgo>(kParameter, "processed_algo");
  const uint64_t* const word = processed.words;
  LOGD("update debug processed algo to AP [0x%llx 0x%llx 0x%llx 0x%llx 0x%llx] ",
       static_cast<unsigned long long>(word[0]), static_cast<unsigned long long>(word[1]),
       static_cast<unsigned long long>(word[2]), static_cast<unsigned long long>(word[3]),
       static_cast<unsigned long long>(word[4]));
  const auto forApplication = static_cast<int64_t>(word[ProcessedAlgo::kApplicationWord]);
  if (mParser->putLong(forApplication, "orlu.parameter.processedAlgo", mRequest.firstComposition()) != 0) {
    LOGE("pCameraMetadataParser->putInt fail");
  }
  return 0;
}

int ResultUpdater::updateProrawPure2ProcState() {
  if (!hasComposition()) {
    LOGD("updateProrawPure2ProcState failed,captureResultCompositions size < 1");
    return 0;
  }
  const int32_t enabled = parameters().get<uint8_t>(kFeedback, "pure2proc_enabled");
  if (mParser->putInt(enabled, "orlu.feedback.pure2proc.enabled", mRequest.firstComposition()) != 0) {
    LOGE("pCameraMetadataParser->putInt pure2procEnabled fail");
  }
  return 0;
}

int ResultUpdater::updateCaptureResultForSuperMoon() {
  if (!hasComposition()) {
    // Names the other function (Oddity 43).
    LOGE_BARE(kShortLogTag, "updateTunningMode failed, captureResultCompositions size < 1");
    return 0;
  }
  const auto result = parameters().get<int32_t>(kFeedback, "supermoon_capture_result", -1);
  LOGD_BARE(kShortLogTag, "update supermoon capture result %d", result);
  if (mParser->putInt(result, "orlu.feedback.superMoonCaptureResult", mRequest.firstComposition()) != 0) {
    LOGE_BARE(kShortLogTag, "pCameraMetadataParser->putInt fail");
  }
  return 0;
}

}  // namespace orlu
