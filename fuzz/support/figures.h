// What a run looks at before and after, to tell what leaked.
#pragma once

#include <dirent.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <thread>

#include "algo_native_request_map.h"

namespace orlu::fuzz {

inline int openDescriptors() {
  DIR* const folder = opendir("/proc/self/fd");
  if (folder == nullptr) return -1;
  int count = -1;  // the folder's own
  while (const dirent* entry = readdir(folder)) count += entry->d_name[0] == '.' ? 0 : 1;
  closedir(folder);
  return count;
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
  long total = 0;
  long resident = 0;
  std::FILE* const file = std::fopen("/proc/self/statm", "re");
  if (file == nullptr) return -1;
  const int read = std::fscanf(file, "%ld %ld", &total, &resident);
  std::fclose(file);
  return read == 2 ? int64_t{resident} * sysconf(_SC_PAGESIZE) : -1;
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
