#include "table_shape.h"

#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>
#include <utility>
#include <vector>

#include "callables.h"

namespace orlu::conform {

#ifdef __GLIBCXX__
namespace {

// The executable address ranges of all modules.
class CodeRanges {
public:
  CodeRanges() {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
      std::istringstream fields(line);
      uintptr_t begin = 0;
      uintptr_t end = 0;
      char dash = 0;
      std::string rights;
      fields >> std::hex >> begin >> dash >> end >> rights;
      if (rights.size() > 2 && rights[2] == 'x') mRanges.push_back({begin, end});
    }
  }
  bool hold(uintptr_t address) const {
    for (const auto& [begin, end] : mRanges) {
      if (address >= begin && address < end) return true;
    }
    return false;
  }

private:
  std::vector<std::pair<uintptr_t, uintptr_t>> mRanges;
};

// Returns whether the last two words of the callable point to code. In libstdc++, these words are the
// addresses of the callable's manager and invoker.
template <typename Callable>
bool isWhole(const Callable& callable, const CodeRanges& code) {
  uintptr_t words[sizeof(Callable) / sizeof(uintptr_t)];
  // NOLINTNEXTLINE(bugprone-undefined-memory-manipulation): only reads its words
  std::memcpy(words, &callable, sizeof callable);
  const size_t count = std::size(words);
  return code.hold(words[count - 2]) && code.hold(words[count - 1]);
}

}  // namespace

std::string oddCallable(const AlgoInterfaceCallbacks& table) {
  const CodeRanges code;
  std::string odd;
  probe::forEachCallable(table, [&](const char* name, const auto& callable) {
    if (odd.empty() && callable && !isWhole(callable, code)) odd = name;
  });
  return odd;
}
#else
std::string oddCallable(const AlgoInterfaceCallbacks& /*table*/) {
  return {};
}
#endif

}  // namespace orlu::conform
