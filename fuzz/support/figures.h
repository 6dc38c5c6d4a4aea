// What a run looks at before and after, to tell what leaked.
#pragma once

#include <chrono>
#include <cstdint>
#include <thread>

#include "algo_native_request_map.h"
#include "process_figures.h"

namespace orlu::fuzz {

using test::openDescriptors;
using test::residentBytes;

// The open descriptors, when they are `expected` within two seconds: the stand-in closes those of a request
// only after it is done with it.
inline int settledDescriptors(int expected) {
  for (int i = 0; i < 2'000 && openDescriptors() != expected; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return openDescriptors();
}

// An id that no request has: larger than every id so far.
inline uint64_t nextRequestId() {
  AlgoNativeRequestMap* const map = AlgoNativeRequestMap::getInstance();
  const uint64_t id = map->create(-1, nullptr, false);
  map->remove(id);
  return id;
}

// Requests between two such ids that the map still holds.
inline int entriesBetween(uint64_t first, uint64_t last) {
  int count = 0;
  for (uint64_t id = first; id < last; ++id) {
    bool unused = false;
    if (AlgoNativeRequestMap::getInstance()->getIsFullAsync(id, unused)) ++count;
  }
  return count;
}

}  // namespace orlu::fuzz
