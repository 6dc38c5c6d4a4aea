// Tests whether the callables of a table are valid, but does not call or destroy them.
#pragma once

#include <string>

#include "algo_interface.h"

namespace orlu::conform {

// Returns the name of the first callable that is set but does not point to code; "" if there is none or the
// C++ library stores callables in an unknown form.
std::string oddCallable(const AlgoInterfaceCallbacks& table);

}  // namespace orlu::conform
