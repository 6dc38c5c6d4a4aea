// The exposure control record that the camera attaches to each frame, and values computed from it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "arithmetic.h"

namespace orlu {

enum AecElement : size_t {
  kAecLuxIndex = 0,
  kAecExposureIndex = 1,
  kAecRealGain = 2,
  kAecSafeGain = 3,
  kAecLongGain = 4,
  kAecSensorGain = 5,
  kAecAdrcGain = 6,
  kAecDarkBoostGain = 7,
  kAecIspGain = 8,
  kAecShortSensitivity = 9,
  kAecSafeSensitivity = 10,
  kAecLongSensitivity = 11,
  kAecSensorGainShort = 12,
  kAecIspGainShort = 13,
  kAecExposureTime = 14,  // nanoseconds
  kAecSensorGainNormal = 15,
  kAecIspGainNormal = 16,
  kAecExposureTimeNormal = 17,  // nanoseconds
  kAecAdrcGainNormal = 18,
  kAecExposureSensitivityRatio = 19,
  kAecExposureTimeRatio = 20,
  kAecExposureGainRatio = 21,
  kAecSize = 22
};

using Aec = std::array<float, kAecSize>;
inline constexpr char kAecTag[] = "orlu.control.Orlu3rdAlgoAECFrameControl";

constexpr float kNanosecondsPerMillisecond = 1'000'000.0F;

inline float milliseconds(const Aec& aec, AecElement time = kAecExposureTime) {
  return aec[time] / kNanosecondsPerMillisecond;
}

// Ratios of the record's sensitivities. For a record of zeros, the ratio is NaN, and callers pass NaN on.
inline float longToShortSensitivity(const Aec& aec) {
  return aec[kAecLongSensitivity] / aec[kAecShortSensitivity];
}
inline float longToSafeSensitivity(const Aec& aec) {
  return aec[kAecLongSensitivity] / aec[kAecSafeSensitivity];
}

// Returns the normal exposure time in whole milliseconds. For a front camera with its own exposure control,
// the time is computed from the short sensitivity and the real gain.
inline int32_t normalExposureTime(const Aec& aec, bool hasFrontControl) {
  const float nanoseconds =
      hasFrontControl ? aec[kAecShortSensitivity] / aec[kAecRealGain] : aec[kAecExposureTimeNormal];
  return toInt(nanoseconds / kNanosecondsPerMillisecond);
}

}  // namespace orlu
