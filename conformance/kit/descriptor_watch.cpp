#include "descriptor_watch.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <fstream>
#include <map>
#include <mutex>
#include <set>
#include <utility>

#include "watched_calls.h"

extern "C" char __executable_start;
extern "C" char etext;

namespace orlu::conform {
namespace {

constexpr size_t kMostKept = 200;

struct Mapping {
  size_t size;
  bool isFixed;
  std::string made;  // the call that made the mapping, and its place in the code
};

struct Seen {
  std::mutex mutex;
  std::set<int> callers;            // open when the watch started, or lent to the library
  std::map<int, std::string> kept;  // numbers that a placeholder occupies; the call that closed each
  std::deque<int> keptOrder;
  std::map<int, std::string> duplicates;  // open duplicates; the call that made each
  std::map<uintptr_t, Mapping> mappings;  // mappings of images, by address
  std::vector<std::string> wrong;
  int nothing = -1;  // duplicated as a placeholder; reading, mapping or writing it fails
};

std::atomic<bool> gIsWatching{false};

Seen& seen() {
  static auto* const seen = new Seen();  // never destroyed: other code closes files until the process ends
  return *seen;
}

// "close(5) in libfoo.so+0x1234"
std::string callText(const std::string& call, const void* caller) {
  Dl_info info;
  if (dladdr(caller, &info) == 0 || info.dli_fname == nullptr) return call;
  const std::string path = info.dli_fname;
  char offset[24];
  std::snprintf(offset, sizeof offset, "+0x%" PRIxPTR,
                reinterpret_cast<uintptr_t>(caller) - reinterpret_cast<uintptr_t>(info.dli_fbase));
  return call + " in " + path.substr(path.rfind('/') + 1) + offset;
}

std::string callText(const char* call, int fd, const void* caller) {
  return callText(std::string(call) + "(" + std::to_string(fd) + ")", caller);
}

size_t wholePages(size_t size) {
  const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  return (size + page - 1) / page * page;
}

bool isImage(int fd) {
  char target[64] = {};
  const std::string link = "/proc/self/fd/" + std::to_string(fd);
  return readlink(link.c_str(), target, sizeof target - 1) > 0 &&
         std::string(target).rfind("/memfd:image", 0) == 0;
}

// Reads the process's maps: under an emulator, calls such as msync() also succeed on the emulator's own
// memory.
bool isMapped(uintptr_t address) {
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    char* end = nullptr;
    const auto first = std::strtoull(line.c_str(), &end, 16);
    if (address < first) return false;
    if (address < std::strtoull(end + 1, nullptr, 16)) return true;
  }
  return false;
}

int badDescriptor() {
  errno = EBADF;
  return -1;
}

// Closes a number's placeholder, so that the number can be reused. `closesPlaceholder` is false if dup2 has
// already replaced the placeholder. Requires the lock.
void giveUp(Seen& all, int fd, bool closesPlaceholder) {
  all.kept.erase(fd);
  all.keptOrder.erase(std::find(all.keptOrder.begin(), all.keptOrder.end(), fd));
  if (closesPlaceholder) plainClose(fd);
}

// Records that a placeholder occupies a number. If there are too many placeholders, closes the oldest.
// Requires the lock.
void keep(Seen& all, int fd, const std::string& text) {
  all.duplicates.erase(fd);
  all.kept[fd] = text;
  all.keptOrder.push_back(fd);
  if (all.keptOrder.size() > kMostKept) giveUp(all, all.keptOrder.front(), true);
}

}  // namespace

DescriptorWatch::DescriptorWatch() {
  Seen& all = seen();
  all.nothing = open("/", O_PATH | O_CLOEXEC);
  DIR* const folder = opendir("/proc/self/fd");
  while (const dirent* const entry = folder == nullptr ? nullptr : readdir(folder)) {  // NOLINT: one thread
    if (entry->d_name[0] != '.') all.callers.insert(std::atoi(entry->d_name));  // NOLINT: it is a number
  }
  if (folder != nullptr) {
    all.callers.erase(dirfd(folder));
    closedir(folder);
  }
  gIsWatching = true;
}

DescriptorWatch::~DescriptorWatch() {
  gIsWatching = false;
  const std::lock_guard<std::mutex> lock(seen().mutex);
  while (!seen().keptOrder.empty()) giveUp(seen(), seen().keptOrder.front(), true);
  plainClose(seen().nothing);
}

void DescriptorWatch::lend(const std::vector<int>& descriptors) {
  const std::lock_guard<std::mutex> lock(seen().mutex);
  seen().callers.insert(descriptors.begin(), descriptors.end());
}

void DescriptorWatch::forget(const std::vector<int>& descriptors) {
  const std::lock_guard<std::mutex> lock(seen().mutex);
  for (const int fd : descriptors) seen().callers.erase(fd);
}

int DescriptorWatch::kept() const {
  const std::lock_guard<std::mutex> lock(seen().mutex);
  return static_cast<int>(seen().kept.size());
}

std::vector<std::string> DescriptorWatch::takeWrong() {
  const std::lock_guard<std::mutex> lock(seen().mutex);
  return std::exchange(seen().wrong, {});
}

std::vector<std::string> DescriptorWatch::takeLeft() {
  const std::lock_guard<std::mutex> lock(seen().mutex);
  std::vector<std::string> left;
  for (const auto& [fd, made] : std::exchange(seen().duplicates, {})) {
    // fclose() and closedir() close their descriptors without calling the watched close().
    if (plainFcntl(fd, F_GETFD, nullptr) >= 0)
      left.push_back("descriptor " + std::to_string(fd) + ", made by " + made);
  }
  for (const auto& [begin, mapping] : std::exchange(seen().mappings, {})) {
    left.push_back("a mapping of " + std::to_string(mapping.size) + " bytes, made by " + mapping.made);
  }
  return left;
}

bool DescriptorWatch::canSee() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  return false;
#else
  return true;
#endif
}

bool isWatched(const void* caller) {
  const auto* const address = static_cast<const char*>(caller);
  return gIsWatching && (address < &__executable_start || address >= &etext);
}

int watchedClose(int fd, const void* caller) {
  const std::string text = callText("close", fd, caller);
  Seen& all = seen();
  const std::lock_guard<std::mutex> lock(all.mutex);
  const auto kept = all.kept.find(fd);
  if (kept != all.kept.end()) {
    all.wrong.push_back(text + " of a descriptor already closed by " + kept->second);
    return badDescriptor();
  }
  if (all.callers.count(fd) != 0) {
    all.wrong.push_back(text + " of the caller's descriptor");
    return 0;  // reports success, so that the library continues
  }
  if (plainFcntl(fd, F_GETFD, nullptr) < 0) {
    all.wrong.push_back(text + " of a number that is not open");
    return badDescriptor();
  }
  if (plainDuplicate(all.nothing, fd, O_CLOEXEC) < 0) return plainClose(fd);
  keep(all, fd, text);
  return 0;
}

bool watchedUse(const char* call, int fd, const void* caller) {
  const std::string text = callText(call, fd, caller);
  Seen& all = seen();
  const std::lock_guard<std::mutex> lock(all.mutex);
  const auto kept = all.kept.find(fd);
  if (kept == all.kept.end()) return true;
  all.wrong.push_back(text + " of a descriptor already closed by " + kept->second);
  badDescriptor();
  return false;
}

int watchedDuplicate(const char* call, int from, int to, int leastNumber, int flags, const void* caller) {
  if (!watchedUse(call, from, caller)) return -1;
  std::string text = callText(call, from, caller);
  Seen& all = seen();
  const std::lock_guard<std::mutex> lock(all.mutex);
  int made = -1;
  if (to < 0) {
    const int command = (flags & O_CLOEXEC) == 0 ? F_DUPFD : F_DUPFD_CLOEXEC;
    made = plainFcntl(from, command, reinterpret_cast<void*>(static_cast<intptr_t>(leastNumber)));
  } else if (all.callers.count(to) != 0) {
    all.wrong.push_back(text + " onto " + std::to_string(to) + ", the caller's descriptor");
    return badDescriptor();
  } else {
    made = plainDuplicate(from, to, flags);
    if (made >= 0 && all.kept.count(to) != 0) giveUp(all, to, false);
  }
  if (made >= 0) all.duplicates[made] = std::move(text);
  return made;
}

void watchedMap(void* address, size_t size, int fd, bool isFixed, const void* caller) {
  if (!isImage(fd)) return;
  std::string text = callText("mmap", fd, caller);
  const std::lock_guard<std::mutex> lock(seen().mutex);
  seen().mappings[reinterpret_cast<uintptr_t>(address)] = {wholePages(size), isFixed, std::move(text)};
}

int watchedUnmap(void* address, size_t size, const void* caller) {
  const std::string text = callText("munmap", caller) + " of " + std::to_string(size) + " bytes";
  const auto begin = reinterpret_cast<uintptr_t>(address);
  const size_t whole = wholePages(size);
  const bool isThere = isMapped(begin);  // before the lock, because it opens a file
  Seen& all = seen();
  const std::lock_guard<std::mutex> lock(all.mutex);
  const auto mapping = all.mappings.find(begin);
  if (mapping == all.mappings.end()) {
    if (!isThere) all.wrong.push_back(text + " where nothing is mapped");
  } else if (whole > mapping->second.size) {
    if (!mapping->second.isFixed) {
      all.wrong.push_back(text + " where " + std::to_string(mapping->second.size) + " were mapped, by " +
                          mapping->second.made);
    }
    all.mappings.erase(mapping);
  } else {
    Mapping rest = mapping->second;
    all.mappings.erase(mapping);
    rest.size -= whole;
    if (rest.size > 0) all.mappings[begin + whole] = std::move(rest);
  }
  return plainUnmap(address, size);
}

}  // namespace orlu::conform
