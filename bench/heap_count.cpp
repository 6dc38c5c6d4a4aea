#include "heap_count.h"

#include <cstdlib>
#include <new>

namespace {

thread_local orlu::bench::HeapUse gUse;

}  // namespace

orlu::bench::HeapUse orlu::bench::heapUse() {
  return gUse;
}

// The array and nothrow operators call this operator.
void* operator new(size_t size) {
  ++gUse.allocations;
  gUse.bytes += static_cast<int64_t>(size);
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, size_t) noexcept {
  std::free(memory);
}
