// A shot of two exposures over each other, which has an algorithm chain of its own.

#include "log.h"
#include "metadata_updater_rows.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-MetadataUpdater";

}  // namespace

// The misspelt keys and tags are the system's.
void MetadataUpdater::updateDoubleExpo() {
  const auto isShot = copy<int32_t>("orlu.doubleExpo.capture", kParameter, "is_double_expo_shot");
  LOGD("%s: isDoubleExpoShot %d", __func__, isShot);
  if (isShot == 0 || mRequest->inputFrames().size() != 2) return;

  *mAlgoList = {"dualexpo", "jpegEncode"};
  const Frame second = frameAt(1);
  // clang-format off
  const auto procType      = copy<int32_t>(        "orlu.doubleExpo.procType",               kParameter, "double_expo_shot_proc_type");
  const auto watermarkType = copy<int32_t>(        "orlu.doubleExpo.watermarkType",          kControl,   "watermark_type");
  const auto filmSize      = copy<int32_t>(        "orlu.control.filmSize",                  kControl,   "film_size");
  if (filmSize == 1) append("blackImg");
  const auto isMirror      = copy<int32_t>(        "orlu.doubleExpo.isMirror",               kSensor,    "is_mirror");
  if (isMirror == 1) append("flip");
  const auto rotation      = copy<int32_t>(        "orlu.doubleExpo.jpegOrientation",        kControl,   "jpeg_rotation");
  copy<int32_t>                           (second, "orlu.doubleExpo.jpegOrientation",        kParameter, "double_expo_shot_need_input_02r180_rotation");
  const auto r180Mirror    = copy<int32_t>(        "orlu.doubleExpo.input02_need_r180mirror", kParameter, "double_expo_shot_need_input_02r180_mirror");
  const auto alpha         = copy<int32_t>(        "orlu.doubleExpo.alphaInsensity",         kParameter, "double_expo_shot_alpha_insensity");
  copy<int32_t>                           (        "orlu.doubleExpo.brightType",             kParameter, "double_expo_shot_bright_type");
  // clang-format on
  if (mIsUpscale == 1) append("upscale");
  LOGD(
      "%s: doubleExpo procType %d isMirror %d watermarkType %d jpegRotation %d r180mirror %d alphaInsensity "
      "%d "
      "mIsUpscale %d",
      __func__, procType, isMirror, watermarkType, rotation, r180Mirror, alpha, mIsUpscale);
}

}  // namespace orlu
