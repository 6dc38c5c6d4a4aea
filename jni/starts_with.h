// The prefix test of request types and format names. Names in an algorithm list have isAlgoListContains().
#pragma once

#include <cstring>

namespace orlu {

// Whether `text` begins with `prefix`. Reads `text` no further than `prefix` is long.
inline bool startsWith(const char* text, const char* prefix) {
  return std::strncmp(text, prefix, std::strlen(prefix)) == 0;
}

}  // namespace orlu
