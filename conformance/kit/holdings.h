// What a process holds, for checks of what a library leaves behind.
#pragma once

#include <cstdint>
#include <string>

namespace orlu::conform {

// Under a sanitizer, whose own they mostly are, mappings and bytes are 0.
struct Holdings {
  int64_t descriptors = 0;
  int64_t threads = 0;
  int64_t mappings = 0;
  int64_t imageMappings = 0;  // of the kit's images
  int64_t bytes = 0;          // allocated

  static Holdings now();
  Holdings operator-(const Holdings& before) const;
  // "descriptors +0, threads -1, mappings +0, allocated bytes +2368"
  std::string text() const;
};

// Bytes that are allocated.
int64_t allocatedBytes();

// What fresh and freed memory is filled with from now on, where the C library can; 0 for nothing.
void poison(int byte);

}  // namespace orlu::conform
