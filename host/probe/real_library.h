// The algorithm library that the probe was put before.
#pragma once

#include <string>

#include "algo_interface.h"

namespace orlu::probe {

struct RealLibrary {
  using Entry = void (*)(AlgoInterfaceCallbacks*);

  Entry entry = nullptr;   // null when it could not be opened
  const char* stage = "";  // what failed then: "open" or "entry"
  std::string error;       // the loader's own words
};

// The library that ORLU_ALGO_LIBRARY names, else liborlu.vac.interface.real.so beside the probe, else the
// next one under the device's name: in the folders of LD_LIBRARY_PATH, beside the library that holds the
// address `caller`, in the folder lib beside the probe's own, and in those of the system. "" when there is
// none.
std::string findRealLibrary(const void* caller);

// Opens it and looks its entry up. It is never closed, since its callables and threads run until the end.
RealLibrary openRealLibrary(const std::string& path);

// The file that holds this address; "" when none is known.
std::string fileOf(const void* address);

}  // namespace orlu::probe
