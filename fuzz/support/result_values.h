// The values that the result half of a request reads from its parameter set, with the bytes of each, and the
// algorithms that it looks for: CMake makes both lists of the table of parameters and of the library's
// sources.
#pragma once

#include <cstdint>

namespace orlu::fuzz {

struct ResultValue {
  const char* section;
  const char* key;
  unsigned size;
};

constexpr ResultValue kResultValues[] = {
#include "result_values.inc"
};

constexpr const char* kResultAlgorithms[] = {
#include "result_algorithms.inc"
};

// A name in a byte of an input. It says nothing of the name's place in its list, so that a longer list leaves
// the inputs of a corpus what they are.
constexpr uint8_t nameByte(const char* name) {
  uint32_t hash = 2166136261U;
  for (; *name != '\0'; ++name) hash = (hash ^ static_cast<uint8_t>(*name)) * 16777619U;
  return static_cast<uint8_t>(hash % 223);
}

}  // namespace orlu::fuzz
