// Sees what the library does with descriptors and with mappings of the kit's images. Under a sanitizer, which
// has such functions of its own, nothing is seen.
#pragma once

#include <string>
#include <vector>

namespace orlu::conform {

// Sees while it lives. One at a time. What is open when it is made belongs to the caller: make it before the
// library is opened.
class DescriptorWatch {
public:
  DescriptorWatch();
  DescriptorWatch(const DescriptorWatch&) = delete;
  DescriptorWatch& operator=(const DescriptorWatch&) = delete;
  ~DescriptorWatch();

  static bool canSee();
  // The library must not close or replace these descriptors, until they are forgotten.
  void lend(const std::vector<int>& descriptors);
  void forget(const std::vector<int>& descriptors);
  // Numbers that the library has closed are kept for a while, so that nobody gets them and a second close is
  // seen. So many are open because of that.
  int kept() const;
  // What was wrong since this was last asked.
  std::vector<std::string> takeWrong();
  // Duplicates and mappings that the library made since this was last asked, and has not given back.
  std::vector<std::string> takeLeft();
};

}  // namespace orlu::conform
