// Conversions that must give on every machine what the 32-bit ARM device gives.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace orlu {

// Float to integer as the ARM instruction converts: toward zero, saturating, NaN to 0.
inline int32_t toInt(float value) {
  // Exact in a double, and so are the limits of the integer.
  const double wide = value;
  if (std::isnan(wide)) return 0;
  if (wide <= std::numeric_limits<int32_t>::min()) return std::numeric_limits<int32_t>::min();
  if (wide >= std::numeric_limits<int32_t>::max()) return std::numeric_limits<int32_t>::max();
  return static_cast<int32_t>(wide);
}

// A sum or a product of sizes, taken in 64 bits, as a record of 32 bits can hold it.
inline int32_t saturated(int64_t value) {
  return static_cast<int32_t>(
      std::clamp<int64_t>(value, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
}

// The number of pixels from `first` to `last`, both included; saturates.
inline int32_t extent(int32_t first, int32_t last) {
  return saturated(int64_t{last} - first + 1);
}

}  // namespace orlu
