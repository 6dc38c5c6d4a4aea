// Watches which descriptors the library duplicates and closes, and which images of the kit it maps.
#pragma once

#include <string>
#include <vector>

namespace orlu::conform {

// Watches during its lifetime; only one may exist at a time. Descriptors that are open at construction belong
// to the caller, so construct it before the library is opened.
class DescriptorWatch {
public:
  DescriptorWatch();
  DescriptorWatch(const DescriptorWatch&) = delete;
  DescriptorWatch& operator=(const DescriptorWatch&) = delete;
  ~DescriptorWatch();

  // False in sanitizer builds: sanitizers replace the functions that the watch replaces.
  static bool canSee();
  // Until forget(), closing or replacing these descriptors is a fault of the library.
  void lend(const std::vector<int>& descriptors);
  void forget(const std::vector<int>& descriptors);
  // Returns the number of placeholders. They occupy descriptor numbers that the library closed, so that the
  // numbers are not reused for a while and a second close is detected.
  int kept() const;
  // Returns and clears the faults since the last call.
  std::vector<std::string> takeWrong();
  // Returns and clears the duplicates and mappings that the library made since the last call and has not
  // released.
  std::vector<std::string> takeLeft();
};

}  // namespace orlu::conform
