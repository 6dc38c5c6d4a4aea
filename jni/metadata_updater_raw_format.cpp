// Parameters of the raw pipeline: white balance, lens shading and exposure.

#include "metadata_updater_steps.h"

namespace orlu {
namespace {

// Writes the exposure parameters and overwrites three earlier values (Oddity 18): writeExposureControl() has
// written "exp_sensitivity_ratio"; updateRawFormat() has copied tags to "sensor_gain_short" and
// "isp_gain_short".
void writeRawExposure(Shot& shot, const Aec& aec, bool hasFrontControl) {
  writeExposureControl(shot, aec);
  // clang-format off
  shot.write<float>  (kSystem, "drc_gain_dark",         longToSafeSensitivity(aec));
  shot.write<float>  (kSystem, "sensor_gain_short",     aec[kAecSensorGainShort]);
  shot.write<float>  (kSystem, "isp_gain_short",        aec[kAecIspGainShort]);
  shot.write<float>  (kSystem, "sensor_gain_normal",    aec[kAecSensorGainNormal]);
  shot.write<float>  (kSystem, "isp_gain_normal",       aec[kAecIspGainNormal]);
  // An integer here, but a float in the low-light step (Oddity 31).
  shot.write<int32_t>(kSystem, "exp_time_normal",       normalExposureTime(aec, hasFrontControl));
  shot.write<float>  (kSystem, "adrc_gain_normal",      aec[kAecAdrcGainNormal]);
  shot.write<float>  (kSystem, "exp_sensitivity_ratio", aec[kAecExposureSensitivityRatio]);
  shot.write<float>  (kSystem, "exp_time_ratio",        aec[kAecExposureTimeRatio]);
  shot.write<float>  (kSystem, "exp_gain_ratio",        aec[kAecExposureGainRatio]);
  // clang-format on
}

}  // namespace

void MetadataUpdater::updateRawFormat() {
  const Frame last = mShot.frames().last();
  // clang-format off
  mShot.copy<float>      (      "orlu.feedback.AWBFrameControlRGain", kSystem, "awb_rgain");
  mShot.copy<float>      (      "orlu.feedback.AWBFrameControlBGain", kSystem, "awb_bgain");
  mShot.copy<float>      (      "orlu.feedback.AWBFrameControlGGain", kSystem, "awb_ggain");
  mShot.copy<Floats<884>>(last, "android.statistics.lensShadingMap", kSystem, "shading_map");
  mShot.copy<int32_t>    (last, "orlu.feedback.AWBFrameControlCCT",   kSystem, "awb_cct");
  mShot.copy<float>      (last, "orlu.feedback.ISPDigitalGain",       kSystem, "isp_gain_short");
  mShot.copy<float>      (last, "orlu.control.sensor_gain",           kSystem, "sensor_gain_short");
  // clang-format on
  const auto exposureTime = mShot.readOr<int64_t>(last, "android.sensor.exposureTime");
  mShot.write<float>(kSystem, "exp_time_short",
                     static_cast<float>(exposureTime) / kNanosecondsPerMillisecond);
  // clang-format off
  mShot.copy<int32_t>(last, "orlu.control.superNsMergeNum", kParameter, "superns_merge_num");
  mShot.copy<int32_t>(      "orlu.control.isAINROn",        kControl,   "is_open_ainr");
  mShot.copy<int32_t>(      "com.orlu.current_ui_module",   kControl,   "ui_mode");
  // clang-format on
  writeRawExposure(mShot, mShot.readOr<Aec>(last, kAecTag), mFrontEvControl[0] > 0);
}

}  // namespace orlu
