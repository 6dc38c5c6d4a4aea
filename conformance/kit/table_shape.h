// Whether a table can be one of this declaration, without calling or destroying anything of it.
#pragma once

#include <string>

#include "algo_interface.h"

namespace orlu::conform {

// The name of the first callable that is filled in with what is no code; "" when there is none, and in a C++
// library whose callables have another form than the one known here.
std::string oddCallable(const AlgoInterfaceCallbacks& table);

}  // namespace orlu::conform
