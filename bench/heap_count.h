// Counts what a thread of this program takes from the C++ heap. The VM takes its memory elsewhere.
#pragma once

#include <cstdint>

namespace orlu::bench {

struct HeapUse {
  int64_t allocations = 0;
  int64_t bytes = 0;
};

// What the calling thread took since it began; freeing takes nothing back.
HeapUse heapUse();

inline HeapUse operator-(const HeapUse& a, const HeapUse& b) {
  return {a.allocations - b.allocations, a.bytes - b.bytes};
}

}  // namespace orlu::bench
