// What the raw pipeline takes from the frames: white balance, lens shading and exposure.

#include "metadata_updater_rows.h"

namespace orlu {

// Two keys are written twice, "sensor_gain_short" and "isp_gain_short", and so is "exp_sensitivity_ratio":
// the later values win, deliberately.
// clang-format off
void MetadataUpdater::updateRawFormat() {
  const Frame last = lastFrame();
  copy<float>      (      "orlu.feedback.AWBFrameControlRGain",  kSystem,    "awb_rgain");
  copy<float>      (      "orlu.feedback.AWBFrameControlBGain",  kSystem,    "awb_bgain");
  copy<float>      (      "orlu.feedback.AWBFrameControlGGain",  kSystem,    "awb_ggain");
  copy<Floats<884>>(last, "android.statistics.lensShadingMap",   kSystem,    "shading_map");
  copy<int32_t>    (last, "orlu.feedback.AWBFrameControlCCT",    kSystem,    "awb_cct");
  copy<float>      (last, "orlu.feedback.ISPDigitalGain",        kSystem,    "isp_gain_short");
  copy<float>      (last, "orlu.control.sensor_gain",            kSystem,    "sensor_gain_short");
  const auto exposureTime = readOr<int64_t>(0, "android.sensor.exposureTime", last);
  write(kSystem, "exp_time_short", static_cast<float>(exposureTime) / kNanosecondsPerMillisecond);
  copy<int32_t>    (last, "orlu.control.superNsMergeNum",        kParameter, "superns_merge_num");
  copy<int32_t>    (      "orlu.control.isAINROn",               kControl,   "is_open_ainr");
  copy<int32_t>    (      "com.orlu.current_ui_module",          kControl,   "ui_mode");
  writeRawExposure(readOr(Aec(), kAecTag, last));
}

void MetadataUpdater::writeRawExposure(const Aec& aec) {
  writeExposureControl(aec);
  write(kSystem, "drc_gain_dark",         aec[kAecLongSensitivity] / aec[kAecSafeSensitivity]);
  write(kSystem, "sensor_gain_short",     aec[kAecSensorGainShort]);
  write(kSystem, "isp_gain_short",        aec[kAecIspGainShort]);
  write(kSystem, "sensor_gain_normal",    aec[kAecSensorGainNormal]);
  write(kSystem, "isp_gain_normal",       aec[kAecIspGainNormal]);
  write(kSystem, "exp_time_normal",       normalExposureTime(aec));
  write(kSystem, "adrc_gain_normal",      aec[kAecAdrcGainNormal]);
  write(kSystem, "exp_sensitivity_ratio", aec[kAecExposureSensitivityRatio]);
  write(kSystem, "exp_time_ratio",        aec[kAecExposureTimeRatio]);
  write(kSystem, "exp_gain_ratio",        aec[kAecExposureGainRatio]);
}
// clang-format on

// Whole milliseconds. A front camera with exposure control of its own derives it from sensitivity and gain.
int32_t MetadataUpdater::normalExposureTime(const Aec& aec) const {
  const float nanoseconds =
      mFrontEvControl[0] > 0 ? aec[kAecShortSensitivity] / aec[kAecRealGain] : aec[kAecExposureTimeNormal];
  return toInt(nanoseconds / kNanosecondsPerMillisecond);
}

}  // namespace orlu
