// Gains and exposure times with which the frames of a night or HDR shot were taken.

#include <algorithm>

#include "log.h"
#include "metadata_updater_rows.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-MetadataUpdater";

constexpr size_t kHdrSlots = 6;

float milliseconds(const Aec& aec, size_t element = kAecExposureTime) {
  return aec[element] / kNanosecondsPerMillisecond;
}

void logPair(const char* operation, const char* domain, const char* name, float first, float second) {
  LOGD_AS(operation, "%s %s: %f, %f", domain, name, static_cast<double>(first), static_cast<double>(second));
}

}  // namespace

void MetadataUpdater::updateSuperNsYuv() {
  writeSuperNs(__func__, "YUVDomainSuperns");
}

// The raw domain takes the same figures from the same frames.
void MetadataUpdater::updateSuperNS() {
  writeSuperNs(__func__, "RawDomainSuperns");
}

// The log lines name `operation` and begin with `domain`.
void MetadataUpdater::writeSuperNs(const char* operation, const char* domain) {
  const Aec a = readOr(Aec(), kAecTag, firstFrame());
  const Aec b = readOr(Aec(), kAecTag, masterFrameAt(mCaptureResultNum - 1));
  logPair(operation, domain, "superNSAdrcGain", a[kAecAdrcGain], b[kAecAdrcGain]);
  logPair(operation, domain, "superNSRealGain", a[kAecRealGain], b[kAecRealGain]);
  logPair(operation, domain, "superNSLongGain", a[kAecLongGain], b[kAecLongGain]);
  logPair(operation, domain, "superNSFlashAdrcGain", a[kAecRealGain], 0);
  logPair(operation, domain, "hdrGains", a[kAecRealGain], b[kAecRealGain]);
  logPair(operation, domain, "hdrShutters", milliseconds(a), milliseconds(b));

  // The two flash entries are crossed: real gains, the first frame's first and the last frame's last. Meant
  // so.
  // clang-format off
  write(kParameter, "superns_adrc_gain",       Floats<2>{a[kAecAdrcGain], b[kAecAdrcGain]});
  write(kParameter, "superns_real_gain",       Floats<2>{a[kAecRealGain], b[kAecRealGain]});
  write(kParameter, "superns_long_gain",       Floats<2>{a[kAecLongGain], b[kAecLongGain]});
  write(kParameter, "superns_flash_adrc_gain", Floats<2>{a[kAecRealGain], 0});
  write(kParameter, "superns_flash_real_gain", Floats<2>{0, b[kAecRealGain]});
  write(kParameter, "hdr_gains",               Floats<kHdrSlots>{a[kAecRealGain], b[kAecRealGain]});
  write(kParameter, "hdr_shutters",            Floats<kHdrSlots>{milliseconds(a), milliseconds(b)});
  // clang-format on
}

// Low-light HDR: the last frame but one has the normal exposure, the last one the short.
void MetadataUpdater::updateRawLLHDR() {
  constexpr int kUsualFrames = 7;
  const int n = mCaptureResultNum;
  if (n < kUsualFrames) LOGD("updateRAWLLHDRInfo error, input num %d < 7", n);
  if (n < 2) return;

  Aec normal = {};
  read(normal, kAecTag, frameAt(n - 2));
  // Both frames share one record: what the normal frame left stays under what the short one lacks.
  Aec shorter = normal;
  read(shorter, kAecTag, frameAt(n - 1));
  LOGD(
      "CAMERA_MODE_LLHDR expoTimeShort %f, sensorGainShort %f, expTimeNormal %f, sensorGainNormal: %f, "
      "expindex = %f",
      static_cast<double>(milliseconds(shorter)), static_cast<double>(shorter[kAecSensorGainShort]),
      static_cast<double>(milliseconds(normal, kAecExposureTimeNormal)),
      static_cast<double>(normal[kAecSensorGainShort]), static_cast<double>(normal[kAecExposureIndex]));

  // clang-format off
  write(kSystem, "lux_index_shot",        normal[0]);
  write(kSystem, "exp_index",             normal[1]);
  write(kSystem, "flash_real_gain",       normal[2]);
  write(kSystem, "safe_gain",             normal[3]);
  write(kSystem, "long_gain",             normal[4]);
  write(kSystem, "adrc_gain",             normal[6]);
  write(kSystem, "dark_boost_gain",       normal[7]);
  write(kSystem, "isp_gain",              normal[13]);
  write(kSystem, "drc_gain_dark",         normal[11] / normal[10]);
  write(kSystem, "sensor_gain_normal",    normal[12]);
  write(kSystem, "isp_gain_normal",       normal[16]);
  write(kSystem, "isp_gain_short",        shorter[13]);
  write(kSystem, "exp_time_normal",       milliseconds(normal, 17));
  write(kSystem, "adrc_gain_normal",      normal[18]);
  write(kSystem, "exp_sensitivity_ratio", normal[19]);
  write(kSystem, "exp_gain_ratio",        normal[21]);
  write(kSystem, "exp_time_ratio",        normal[20]);
  write(kSystem, "sensor_gain_short",     shorter[12]);
  write(kSystem, "exp_time_short",        milliseconds(shorter, 14));
  // clang-format on
}

void MetadataUpdater::updateRawNR() {
  if (readOr<int32_t>(0, "orlu.control.is_rawnr_mode", firstFrame()) == 0) return;
  const Aec aec = readOr(Aec(), kAecTag, firstFrame());
  write(kSystem, "flash_real_gain", aec[kAecRealGain]);
}

void MetadataUpdater::updateBokehNight() {
  write<bool>(kControl, "is_bokeh_raw_nr", mIsRawnrCapture != 0 && listHas("dualBokeh"));
}

// Gains and shutters of the first frames, zero where there is none.
void MetadataUpdater::updateRawHdr() {
  Floats<kHdrSlots> gains = {};
  Floats<kHdrSlots> shutters = {};
  const size_t count = std::min(kHdrSlots, mCaptureResults->size());
  const CameraMetadataParser::RepeatedTag repeated(*mParser, kAecTag);
  for (size_t i = 0; i < count; ++i) {
    const Aec aec = readOr(Aec(), kAecTag, frameAt(static_cast<int>(i)));
    gains[i] = aec[kAecRealGain];
    shutters[i] = milliseconds(aec);
  }
  write(kParameter, "hdr_gains", gains);
  write(kParameter, "hdr_shutters", shutters);
}

}  // namespace orlu
