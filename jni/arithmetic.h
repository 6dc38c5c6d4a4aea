// Conversions that give the results of the 32-bit ARM device on every machine.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace orlu {

// Converts a float to an integer as ARM's instruction does: rounds toward zero, saturates, turns NaN into 0.
inline int32_t toInt(float value) {
  // A double holds the float and the integer's limits exactly.
  const double wide = value;
  if (std::isnan(wide)) return 0;
  if (wide <= std::numeric_limits<int32_t>::min()) return std::numeric_limits<int32_t>::min();
  if (wide >= std::numeric_limits<int32_t>::max()) return std::numeric_limits<int32_t>::max();
  return static_cast<int32_t>(wide);
}

// Clamps a 64-bit sum or product of sizes to the range of a 32-bit record field.
inline int32_t saturated(int64_t value) {
  return static_cast<int32_t>(
      std::clamp<int64_t>(value, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
}

// Returns the number of pixels from `first` to `last`, both included; saturates.
inline int32_t extent(int32_t first, int32_t last) {
  return saturated(int64_t{last} - first + 1);
}

}  // namespace orlu
