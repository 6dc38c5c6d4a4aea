// The values that result translation reads from the parameter set, with their sizes, and the algorithms that
// it looks for. CMake generates both lists from the table of parameters and the library's sources.
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

// Returns the byte that selects a name in an input. The byte doesn't depend on the name's index, so that
// adding names keeps the inputs of a corpus valid.
constexpr uint8_t nameByte(const char* name) {
  uint32_t hash = 2166136261U;
  for (; *name != '\0'; ++name) hash = (hash ^ static_cast<uint8_t>(*name)) * 16777619U;
  return static_cast<uint8_t>(hash % 223);
}

}  // namespace orlu::fuzz
