// The resources of this process. Checks compare them before and after calls, to find what the library leaks.
#pragma once

#include <cstdint>
#include <string>

namespace orlu::conform {

// In sanitizer builds, mappings and bytes are 0, because most of them belong to the sanitizer.
struct Holdings {
  int64_t descriptors = 0;
  int64_t threads = 0;
  int64_t mappings = 0;
  int64_t imageMappings = 0;  // of the kit's images
  int64_t bytes = 0;          // on the heap

  static Holdings now();
  Holdings operator-(const Holdings& before) const;
  // "descriptors +0, threads -1, mappings +0, allocated bytes +2368"
  std::string text() const;
};

// Returns the heap bytes in use; 0 in sanitizer builds.
int64_t allocatedBytes();

// Makes the C library fill freed memory with this byte, and fresh memory with the byte's complement; 0 stops
// the filling. Has no effect if the C library can't fill memory.
void poison(int byte);

}  // namespace orlu::conform
