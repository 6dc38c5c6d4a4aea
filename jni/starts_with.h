// Prefix test for request types and format names. Use isAlgoListContains() for algorithm lists.
#pragma once

#include <cstring>

namespace orlu {

// Returns whether `text` begins with `prefix`. Reads at most strlen(prefix) bytes of `text`.
inline bool startsWith(const char* text, const char* prefix) {
  return std::strncmp(text, prefix, std::strlen(prefix)) == 0;
}

}  // namespace orlu
