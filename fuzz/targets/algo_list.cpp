// Fuzz target: the functions for algorithm lists, with arbitrary names.

#include "algo_list.h"

#include "target.h"

using orlu::fuzz::Input;
using orlu::fuzz::require;

namespace {

std::vector<std::string> listFrom(Input& input) {
  std::vector<std::string> list(input.byte() % 16U);
  for (std::string& name : list) name = input.text(input.byte() % 24U);
  return list;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  std::vector<std::string> list = listFrom(input);
  std::vector<std::string> supported = listFrom(input);
  const std::string name = input.text(24);
  const int length = static_cast<int>(name.size()) + (input.byte() % 3) - 1;

  require(orlu::printAlgoList(list).size() + 1 >= list.size());
  const bool contained = orlu::isAlgoListContains(list, name.c_str(), length);
  const size_t before = list.size();
  orlu::removeAlgoFromAlgoList(list, name.c_str(), length);
  require(contained == (list.size() < before));
  require(!orlu::isAlgoListContains(list, name.c_str(), length));
  const std::vector<std::string> kept = supported;
  orlu::AlgoListSupportFilter(supported, list);
  require(kept == supported && (!supported.empty() || list.empty()));
  return 0;
}
