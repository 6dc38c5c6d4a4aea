// What a run looks at before and after, to tell what leaked.
#pragma once

#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <thread>

#include "algo_native_request_map.h"

namespace orlu::fuzz {

// Also the one behind the folder itself.
inline int openDescriptors() {
  const std::filesystem::directory_iterator folder("/proc/self/fd");
  return static_cast<int>(std::distance(begin(folder), end(folder)));
}

// The open descriptors, when they are `expected` within two seconds: the stand-in closes those of a request
// only after it is done with it.
inline int settledDescriptors(int expected) {
  for (int i = 0; i < 2'000 && openDescriptors() != expected; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return openDescriptors();
}

inline int64_t residentBytes() {
  int64_t total = 0;
  int64_t resident = 0;
  std::ifstream("/proc/self/statm") >> total >> resident;
  return resident * sysconf(_SC_PAGESIZE);
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
