// Helpers for a request's algorithm list: the names of the algorithms to run, in order.
#pragma once

#include <string>
#include <vector>

namespace orlu {

// Joins the names with single spaces. Returns "" for an empty list.
std::string printAlgoList(const std::vector<std::string>& list);

// Returns whether any entry begins with the first `len` bytes of `name`.
bool isAlgoListContains(const std::vector<std::string>& list, const char* name, int len);

// Erases every entry that isAlgoListContains() would match. The other entries keep their order.
void removeAlgoFromAlgoList(std::vector<std::string>& list, const char* name, int len);

// Erases from `list` every entry that is not in `supported`. Does not change `supported`.
void AlgoListSupportFilter(std::vector<std::string>& supported, std::vector<std::string>& list);

// Overloads for string literals; the literal's type gives the length.
template <size_t N>
bool isAlgoListContains(const std::vector<std::string>& list, const char (&name)[N]) {
  return isAlgoListContains(list, name, static_cast<int>(N - 1));
}
template <size_t N>
void removeAlgoFromAlgoList(std::vector<std::string>& list, const char (&name)[N]) {
  removeAlgoFromAlgoList(list, name, static_cast<int>(N - 1));
}

}  // namespace orlu
