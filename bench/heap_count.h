// Counts a thread's allocations on the C++ heap. The VM allocates its memory elsewhere.
#pragma once

#include <cstdint>

namespace orlu::bench {

struct HeapUse {
  int64_t allocations = 0;
  int64_t bytes = 0;
};

// Returns the calling thread's allocations since its start, including memory that was freed again.
HeapUse heapUse();

inline HeapUse operator-(const HeapUse& a, const HeapUse& b) {
  return {a.allocations - b.allocations, a.bytes - b.bytes};
}

}  // namespace orlu::bench
