// The descriptors that this process has open.
#pragma once

#include <filesystem>
#include <iterator>

namespace orlu::test {

inline auto openDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                       std::filesystem::directory_iterator());
}

}  // namespace orlu::test
