// Helpers for the algorithm list of a request: the names of the algorithms to run, in order.
#pragma once

#include <string>
#include <vector>

namespace orlu {

// The names joined by one blank; "" for an empty list.
std::string printAlgoList(const std::vector<std::string>& list);

// True when some entry's first `len` bytes are the first `len` bytes of `name`: callers pass the literal's
// exact length, so an entry that goes on behind it matches too. An entry shorter than that does not.
bool isAlgoListContains(const std::vector<std::string>& list, const char* name, int len);

// Erases every entry that isAlgoListContains() would match; the rest keep their order.
void removeAlgoFromAlgoList(std::vector<std::string>& list, const char* name, int len);

// Erases from `list` every entry that does not equal some entry of `supported`, which stays as it is.
void AlgoListSupportFilter(std::vector<std::string>& supported, std::vector<std::string>& list);

// The first two with a string literal, whose length is taken from its type.
template <size_t N>
bool isAlgoListContains(const std::vector<std::string>& list, const char (&name)[N]) {
  return isAlgoListContains(list, name, static_cast<int>(N - 1));
}
template <size_t N>
void removeAlgoFromAlgoList(std::vector<std::string>& list, const char (&name)[N]) {
  removeAlgoFromAlgoList(list, name, static_cast<int>(N - 1));
}

}  // namespace orlu
