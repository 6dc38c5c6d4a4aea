// Templates of the result updater, for its own files alone.
#pragma once

#include <type_traits>

#include "algo_interface.h"
#include "algo_list.h"
#include "result_updater.h"

namespace orlu {

template <size_t N>
bool ResultUpdater::listHas(const char (&name)[N]) const {
  return isAlgoListContains(mAlgoList, name);
}

template <typename T>
T ResultUpdater::readValue(const char* section, const char* key, T initial) {
  static_assert(std::is_trivially_copyable_v<T>);
  getValue(section, key, &initial, sizeof initial);
  return initial;
}

}  // namespace orlu
