#include "holdings.h"

#include <dirent.h>
#include <malloc.h>

#include <fstream>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ORLU_SANITIZED
#endif

namespace orlu::conform {
namespace {

int64_t entriesOf(const char* folder) {
  DIR* const open = opendir(folder);
  int64_t count = 0;
  while (open != nullptr && readdir(open) != nullptr) ++count;
  if (open != nullptr) closedir(open);
  return count;
}

void countMappings(Holdings& holdings) {
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    ++holdings.mappings;
    if (line.find("/memfd:image") != std::string::npos) ++holdings.imageMappings;
  }
#ifdef ORLU_SANITIZED
  holdings.mappings = 0;
#endif
}

std::string grown(const char* what, int64_t by) {
  return std::string(what) + (by < 0 ? " " : " +") + std::to_string(by);
}

}  // namespace

int64_t allocatedBytes() {
#ifdef ORLU_SANITIZED
  return 0;  // AddressSanitizer checks for leaks at exit
#elif defined(__ANDROID__)
  // Bionic lacks mallinfo2(), but its mallinfo() already has size_t fields.
  return static_cast<int64_t>(mallinfo().uordblks);
#else
  const auto info = mallinfo2();
  return static_cast<int64_t>(info.uordblks + info.hblkhd);
#endif
}

void poison([[maybe_unused]] int byte) {
#ifdef M_PERTURB
  mallopt(M_PERTURB, byte);  // NOLINT(concurrency-mt-unsafe): sets a word that malloc reads at each call
#endif
}

Holdings Holdings::now() {
  Holdings holdings;
  holdings.descriptors = entriesOf("/proc/self/fd");
  holdings.threads = entriesOf("/proc/self/task");
  holdings.bytes = allocatedBytes();
  countMappings(holdings);
  return holdings;
}

Holdings Holdings::operator-(const Holdings& before) const {
  Holdings growth = *this;
  growth.descriptors -= before.descriptors;
  growth.threads -= before.threads;
  growth.mappings -= before.mappings;
  growth.imageMappings -= before.imageMappings;
  growth.bytes -= before.bytes;
  return growth;
}

std::string Holdings::text() const {
  return grown("descriptors", descriptors) + ", " + grown("threads", threads) + ", " +
         grown("mappings", mappings) + ", " + grown("allocated bytes", bytes);
}

}  // namespace orlu::conform
