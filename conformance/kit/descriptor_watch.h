// Sees each close() of the library's: of a number that is not open, and of one that is somebody else's. Under
// a sanitizer, which has a close() of its own, nothing is seen.
#pragma once

#include <string>
#include <vector>

namespace orlu::conform {

// Sees while it lives. One at a time.
class DescriptorWatch {
public:
  DescriptorWatch();
  DescriptorWatch(const DescriptorWatch&) = delete;
  DescriptorWatch& operator=(const DescriptorWatch&) = delete;
  ~DescriptorWatch();

  static bool canSee();
  // The library must not close this number, until it is forgotten.
  void lend(int fd);
  void forget(int fd);
  // What was wrong since this was last asked.
  std::vector<std::string> takeWrong();
};

}  // namespace orlu::conform
