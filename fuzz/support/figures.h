// Figures to compare before and after a run, to detect leaks.
#pragma once

#include <chrono>
#include <cstdint>
#include <thread>

#include "algo_native_request_map.h"
#include "process_figures.h"

namespace orlu::fuzz {

using test::openDescriptors;
using test::residentBytes;

// Returns the number of open descriptors. Waits two seconds at most until it is `expected`, because the
// algorithm library closes a request's descriptors only after a delay.
inline int settledDescriptors(int expected) {
  for (int i = 0; i < 2'000 && openDescriptors() != expected; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return openDescriptors();
}

// Returns an id that is larger than all request ids so far.
inline uint64_t nextRequestId() {
  AlgoNativeRequestMap* const map = AlgoNativeRequestMap::getInstance();
  const uint64_t id = map->create(-1, nullptr, false);
  map->remove(id);
  return id;
}

// Returns the number of requests with ids from `first` to `last` - 1 that are in the map and not finished.
inline int entriesBetween(uint64_t first, uint64_t last) {
  int count = 0;
  for (uint64_t id = first; id < last; ++id) {
    bool unused = false;
    if (AlgoNativeRequestMap::getInstance()->getIsFullAsync(id, unused)) ++count;
  }
  return count;
}

}  // namespace orlu::fuzz
