// EXIF facts of a JPEG that do not come directly from the camera's tags.
#pragma once

#include <cstdint>

namespace orlu {

// The step of the exposure compensation is 1/10.
constexpr int32_t kAeCompensationStepNumerator = 1;
constexpr int32_t kAeCompensationStepDenominator = 10;

// Returns whether to report a simulated aperture instead of the lens's: always for dual bokeh, even without
// an f-number; otherwise if there is an f-number and it is not negative.
inline bool isApertureSimulated(bool isDualBokeh, bool hasFNumber, int32_t fNumber) {
  return isDualBokeh || (hasFNumber && fNumber >= 0);
}

// `fNumber` is the f-number times 100.
inline float simulatedAperture(int32_t fNumber) {
  return static_cast<float>(fNumber) / 100.0F;
}

}  // namespace orlu
