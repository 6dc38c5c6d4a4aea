// Tests whether the callables of a table are valid, but does not call or destroy them.
#pragma once

#include <string>

#include "algo_interface.h"

namespace orlu::conform {

// Returns the name of the first callable that is set but does not point to code; "" if there is none. Always
// returns "" if it does not know how the C++ library stores callables.
std::string oddCallable(const AlgoInterfaceCallbacks& table);

}  // namespace orlu::conform
