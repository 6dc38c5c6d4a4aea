// Lists what the result updater reads: values of the parameter set, with their sizes, and the algorithms in
// its conditions. CMake generates both lists from the table of parameters and the library's sources.
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

// Returns the byte that stands for a name in fuzz inputs. The byte is a hash of the name, not its index in a
// list, so that a corpus stays valid when names are added.
constexpr uint8_t nameByte(const char* name) {
  uint32_t hash = 2166136261U;
  for (; *name != '\0'; ++name) hash = (hash ^ static_cast<uint8_t>(*name)) * 16777619U;
  return static_cast<uint8_t>(hash % 223);
}

}  // namespace orlu::fuzz
