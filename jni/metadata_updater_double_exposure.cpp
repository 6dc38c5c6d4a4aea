// Double exposure: the algorithm library superimposes two frames. Replaces the request's algorithm list.

#include "metadata_updater_steps.h"

namespace orlu {

// The tag and the key of the blend's alpha are misspelt: "insensity" instead of "intensity" (Oddity 36).
void MetadataUpdater::updateDoubleExpo() {
  const auto isShot = mShot.copy<int32_t>("orlu.doubleExpo.capture", kParameter, "is_double_expo_shot");
  LOGD("%s: isDoubleExpoShot %d", __func__, isShot);
  if (isShot == 0 || mRequest->inputFrames().size() != 2) return;

  *mAlgoList = {"dualexpo", "jpegEncode"};
  const auto procType =
      mShot.copy<int32_t>("orlu.doubleExpo.procType", kParameter, "double_expo_shot_proc_type");
  const auto watermarkType = mShot.copy<int32_t>("orlu.doubleExpo.watermarkType", kControl, "watermark_type");
  const auto filmSize = mShot.copy<int32_t>("orlu.control.filmSize", kControl, "film_size");
  if (filmSize == 1) mShot.append("blackImg");
  const auto isMirror = mShot.copy<int32_t>("orlu.doubleExpo.isMirror", kSensor, "is_mirror");
  if (isMirror == 1) mShot.append("flip");
  // Both frames' rotations come from the same tag (Oddity 36).
  constexpr char kRotationTag[] = "orlu.doubleExpo.jpegOrientation";
  const auto rotation = mShot.copy<int32_t>(kRotationTag, kControl, "jpeg_rotation");
  mShot.copy<int32_t>(mShot.frames().at(1), kRotationTag, kParameter,
                      "double_expo_shot_need_input_02r180_rotation");
  const auto r180Mirror = mShot.copy<int32_t>("orlu.doubleExpo.input02_need_r180mirror", kParameter,
                                              "double_expo_shot_need_input_02r180_mirror");
  const auto alpha =
      mShot.copy<int32_t>("orlu.doubleExpo.alphaInsensity", kParameter, "double_expo_shot_alpha_insensity");
  mShot.copy<int32_t>("orlu.doubleExpo.brightType", kParameter, "double_expo_shot_bright_type");
  if (mIsUpscale == 1) mShot.append("upscale");
  LOGD(
      "%s: doubleExpo procType %d isMirror %d watermarkType %d jpegRotation %d r180mirror %d "
      "alphaInsensity %d mIsUpscale %d",
      __func__, procType, isMirror, watermarkType, rotation, r180Mirror, alpha, mIsUpscale);
}

}  // namespace orlu
