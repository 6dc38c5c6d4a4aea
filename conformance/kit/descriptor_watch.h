// Watches which descriptors the library duplicates and closes, and which images of the kit it maps.
#pragma once

#include <string>
#include <vector>

namespace orlu::conform {

// Watches from construction to destruction; only one watch may exist at a time. Descriptors that are open at
// construction count as the caller's, so construct the watch before you open the library.
class DescriptorWatch {
public:
  DescriptorWatch();
  DescriptorWatch(const DescriptorWatch&) = delete;
  DescriptorWatch& operator=(const DescriptorWatch&) = delete;
  ~DescriptorWatch();

  // Returns false in builds with AddressSanitizer or ThreadSanitizer: they replace the same functions as the
  // watch.
  static bool canSee();
  // Reports a fault if the library closes or replaces one of these descriptors before forget().
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
