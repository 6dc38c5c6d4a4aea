// Sections, keys and algorithms for the checks. The build generates parameter_sizes.inc and
// algorithm_names.inc from the service's sources; a test can rewrite result_reads.inc.
#pragma once

#include <cstddef>

#include "algo_interface.h"

namespace orlu::conform {

// A value that result translation reads, and the exact number of bytes read.
struct ResultRead {
  const char* section;
  const char* key;
  size_t size;
};
constexpr ResultRead kResultReads[] = {
#include "result_reads.inc"
};

// A parameter that the service sets or lets algorithms set, with its usual size.
struct ParameterSize {
  const char* section;
  const char* key;
  size_t size;
};
constexpr ParameterSize kParameters[] = {
#include "parameter_sizes.inc"
};

// Size in bytes of "remosaic_eeprom_data", the largest parameter that the service sets.
constexpr size_t kMostBytes = 8482;

// Number of values that a block must be able to store; more than any request sets.
constexpr size_t kMostValues = 400;

constexpr const char* kAlgorithms[] = {
#include "algorithm_names.inc"
};

}  // namespace orlu::conform
