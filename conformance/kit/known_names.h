// What the service and its algorithm libraries call things: made by the build from the service's own tables.
#pragma once

#include <cstddef>

#include "algo_interface.h"

namespace orlu::conform {

// A value that result translation reads, with exactly so many bytes. Recorded from it; see result_reads.inc.
struct ResultRead {
  const char* section;
  const char* key;
  size_t size;
};
constexpr ResultRead kResultReads[] = {
#include "result_reads.inc"
};

// A parameter that the service sets, or lets the algorithms set, and its usual size.
struct ParameterSize {
  const char* section;
  const char* key;
  size_t size;
};
constexpr ParameterSize kParameters[] = {
#include "parameter_sizes.inc"
};

// Bytes of the largest parameter that the service sets, "remosaic_eeprom_data".
constexpr size_t kMostBytes = 8482;

// Values in a block at most: more than any request sets.
constexpr size_t kMostValues = 400;

// Algorithms that the service knows by name.
constexpr const char* kAlgorithms[] = {
#include "algorithm_names.inc"
};

}  // namespace orlu::conform
