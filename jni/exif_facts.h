// What the EXIF block of a JPEG says beside the camera's own tags.
#pragma once

#include <cstdint>

namespace orlu {

// The steps in which exposure compensation is counted: tenths.
constexpr int32_t kAeCompensationStepNumerator = 1;
constexpr int32_t kAeCompensationStepDenominator = 10;

// Whether the aperture is a simulated one, and not the lens's: always for bokeh, also where no f-number came,
// and wherever an f-number of 0 or more came.
inline bool isApertureSimulated(bool isDualBokeh, bool hasFNumber, int32_t fNumber) {
  return isDualBokeh || (hasFNumber && fNumber >= 0);
}

// `fNumber` is times 100.
inline float simulatedAperture(int32_t fNumber) {
  return static_cast<float>(fNumber) / 100.0F;
}

}  // namespace orlu
