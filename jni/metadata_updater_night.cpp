// Parameters of night and HDR shots, mostly gains and exposure times.

#include <algorithm>

#include "metadata_updater_steps.h"

namespace orlu {
namespace {

void logPair(const char* operation, const char* domain, const char* name, float first, float last) {
  LOGD_AS(operation, "%s %s: %f, %f", domain, name, static_cast<double>(first), static_cast<double>(last));
}

// Writes the gains and times of the first and the last frame. The log lines name `operation` and `domain`.
void writeSuperNs(Shot& shot, const Frame& lastFrame, const char* operation, const char* domain) {
  const auto a = shot.exposureOf(shot.first());
  const auto b = shot.readOr<Aec>(lastFrame, kAecTag);
  logPair(operation, domain, "superNSAdrcGain", a[kAecAdrcGain], b[kAecAdrcGain]);
  logPair(operation, domain, "superNSRealGain", a[kAecRealGain], b[kAecRealGain]);
  logPair(operation, domain, "superNSLongGain", a[kAecLongGain], b[kAecLongGain]);
  logPair(operation, domain, "superNSFlashAdrcGain", a[kAecRealGain], 0);
  logPair(operation, domain, "hdrGains", a[kAecRealGain], b[kAecRealGain]);
  logPair(operation, domain, "hdrShutters", milliseconds(a), milliseconds(b));

  // Both flash entries contain real gains: "superns_flash_adrc_gain" contains the first frame's gain,
  // and "superns_flash_real_gain" contains the last frame's (Oddity 29).
  // clang-format off
  shot.write<Floats<2>>(kParameter, "superns_adrc_gain",       {a[kAecAdrcGain], b[kAecAdrcGain]});
  shot.write<Floats<2>>(kParameter, "superns_real_gain",       {a[kAecRealGain], b[kAecRealGain]});
  shot.write<Floats<2>>(kParameter, "superns_long_gain",       {a[kAecLongGain], b[kAecLongGain]});
  shot.write<Floats<2>>(kParameter, "superns_flash_adrc_gain", {a[kAecRealGain], 0});
  shot.write<Floats<2>>(kParameter, "superns_flash_real_gain", {0, b[kAecRealGain]});
  // clang-format on
  HdrExposures exposures;
  exposures.set(0, a);
  exposures.set(1, b);
  writeHdrExposures(shot, exposures);
}

// "isp_gain" and "sensor_gain_normal" are the normal frame's short gains, and the gain ratio is written
// before the time ratio (Oddity 30). "exp_time_normal" is a float here but an int elsewhere (Oddity 31).
void writeLowLight(Shot& shot, const Aec& normal, const Aec& brief) {
  // clang-format off
  shot.write<float>(kSystem, "lux_index_shot",        normal[kAecLuxIndex]);
  shot.write<float>(kSystem, "exp_index",             normal[kAecExposureIndex]);
  shot.write<float>(kSystem, "flash_real_gain",       normal[kAecRealGain]);
  shot.write<float>(kSystem, "safe_gain",             normal[kAecSafeGain]);
  shot.write<float>(kSystem, "long_gain",             normal[kAecLongGain]);
  shot.write<float>(kSystem, "adrc_gain",             normal[kAecAdrcGain]);
  shot.write<float>(kSystem, "dark_boost_gain",       normal[kAecDarkBoostGain]);
  shot.write<float>(kSystem, "isp_gain",              normal[kAecIspGainShort]);
  shot.write<float>(kSystem, "drc_gain_dark",         longToSafeSensitivity(normal));
  shot.write<float>(kSystem, "sensor_gain_normal",    normal[kAecSensorGainShort]);
  shot.write<float>(kSystem, "isp_gain_normal",       normal[kAecIspGainNormal]);
  shot.write<float>(kSystem, "isp_gain_short",        brief[kAecIspGainShort]);
  shot.write<float>(kSystem, "exp_time_normal",       milliseconds(normal, kAecExposureTimeNormal));
  shot.write<float>(kSystem, "adrc_gain_normal",      normal[kAecAdrcGainNormal]);
  shot.write<float>(kSystem, "exp_sensitivity_ratio", normal[kAecExposureSensitivityRatio]);
  shot.write<float>(kSystem, "exp_gain_ratio",        normal[kAecExposureGainRatio]);
  shot.write<float>(kSystem, "exp_time_ratio",        normal[kAecExposureTimeRatio]);
  shot.write<float>(kSystem, "sensor_gain_short",     brief[kAecSensorGainShort]);
  shot.write<float>(kSystem, "exp_time_short",        milliseconds(brief));
  // clang-format on
}

}  // namespace

// Here, the last frame is the master frame with the index of the request's last frame. If there are fewer
// master frames, it is the last master frame.
void MetadataUpdater::updateSuperNsYuv() {
  writeSuperNs(mShot, masterFrames().atOrLast(mCaptureResultNum - 1), __func__, "YUVDomainSuperns");
}

// Writes the same values as updateSuperNsYuv(); only the log lines differ.
void MetadataUpdater::updateSuperNS() {
  writeSuperNs(mShot, masterFrames().atOrLast(mCaptureResultNum - 1), __func__, "RawDomainSuperns");
}

// The second-last frame has the normal exposure, the last frame the short one.
void MetadataUpdater::updateRawLLHDR() {
  constexpr int kUsualFrames = 7;
  const int n = mCaptureResultNum;
  // Two to six frames are still processed (Oddity 53).
  if (n < kUsualFrames) LOGD("updateRAWLLHDRInfo error, input num %d < 7", n);
  if (n < 2) return;

  const auto normal = mShot.readOr<Aec>(mShot.frames().at(n - 2), kAecTag);
  // Elements that the short frame lacks keep the normal frame's values (Oddity 21).
  const auto brief = mShot.readOr<Aec>(mShot.frames().at(n - 1), kAecTag, normal);
  LOGD(
      "CAMERA_MODE_LLHDR expoTimeShort %f, sensorGainShort %f, expTimeNormal %f, sensorGainNormal: %f, "
      "expindex = %f",
      static_cast<double>(milliseconds(brief)), static_cast<double>(brief[kAecSensorGainShort]),
      static_cast<double>(milliseconds(normal, kAecExposureTimeNormal)),
      static_cast<double>(normal[kAecSensorGainShort]), static_cast<double>(normal[kAecExposureIndex]));
  writeLowLight(mShot, normal, brief);
}

void MetadataUpdater::updateRawNR() {
  if (mShot.readOr<int32_t>("orlu.control.is_rawnr_mode") == 0) return;
  const auto aec = mShot.exposureOf(mShot.first());
  mShot.write<float>(kSystem, "flash_real_gain", aec[kAecRealGain]);
}

void MetadataUpdater::updateBokehNight() {
  mShot.write<bool>(kControl, "is_bokeh_raw_nr", mIsRawnrCapture != 0 && mShot.listHas("dualBokeh"));
}

// Writes the exposures of the first kHdrSlots frames.
void MetadataUpdater::updateRawHdr() {
  HdrExposures exposures;
  const int count = std::min(mCaptureResultNum, static_cast<int>(kHdrSlots));
  const auto repeated = mShot.repeated(kAecTag);
  for (int i = 0; i < count; ++i) {
    exposures.set(static_cast<size_t>(i), mShot.exposureOf(mShot.frames().at(i)));
  }
  writeHdrExposures(mShot, exposures);
}

}  // namespace orlu
