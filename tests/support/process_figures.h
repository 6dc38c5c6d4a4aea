// Resources of this process, to detect leaks.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>

namespace orlu::test {

// Counts the open descriptors, including the one that lists the folder.
inline int openDescriptors() {
  const std::filesystem::directory_iterator folder("/proc/self/fd");
  return static_cast<int>(std::distance(begin(folder), end(folder)));
}

inline int64_t residentBytes() {
  int64_t total = 0;
  int64_t resident = 0;
  std::ifstream("/proc/self/statm") >> total >> resident;
  return resident * sysconf(_SC_PAGESIZE);
}

}  // namespace orlu::test
