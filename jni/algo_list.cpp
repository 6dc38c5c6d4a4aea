#include "algo_list.h"

#include <algorithm>
#include <cstring>

namespace orlu {
namespace {

// strncmp() stops at the entry's terminating zero, so `len` may exceed the entry's length.
bool matches(const std::string& entry, const char* name, int len) {
  return len <= 0 || std::strncmp(entry.c_str(), name, static_cast<size_t>(len)) == 0;
}

}  // namespace

std::string printAlgoList(const std::vector<std::string>& list) {
  std::string text;
  for (const std::string& name : list) {
    if (&name != &list.front()) text += ' ';
    text += name;
  }
  return text;
}

bool isAlgoListContains(const std::vector<std::string>& list, const char* name, int len) {
  return std::any_of(list.begin(), list.end(),
                     [=](const std::string& entry) { return matches(entry, name, len); });
}

void removeAlgoFromAlgoList(std::vector<std::string>& list, const char* name, int len) {
  list.erase(std::remove_if(list.begin(), list.end(),
                            [=](const std::string& entry) { return matches(entry, name, len); }),
             list.end());
}

void AlgoListSupportFilter(std::vector<std::string>& supported, std::vector<std::string>& list) {
  const auto unsupported = [&supported](const std::string& entry) {
    return std::find(supported.begin(), supported.end(), entry) == supported.end();
  };
  list.erase(std::remove_if(list.begin(), list.end(), unsupported), list.end());
}

}  // namespace orlu
