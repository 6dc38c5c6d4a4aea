// The algorithm library behind the probe.
#pragma once

#include <string>

#include "algo_interface.h"

namespace orlu::probe {

struct RealLibrary {
  using Entry = void (*)(AlgoInterfaceCallbacks*);

  Entry entry = nullptr;   // null on failure
  const char* stage = "";  // the step that failed: "open" or "entry"
  std::string error;       // why it failed
};

// Returns the path of the library to open, the first of these:
// - the path in ORLU_ALGO_LIBRARY, even if there is no such file
// - liborlu.vac.interface.real.so beside the probe
// - a liborlu.vac.interface.so that is not the probe itself. Searches these folders in order: the folders of
//   LD_LIBRARY_PATH, the folder of the library that contains the address `caller`, the folder lib beside the
//   probe's own folder, and the system's folders.
// Returns "" if none is found.
std::string findRealLibrary(const void* caller);

// Opens the library and looks up its entry. Never closes it: its code runs until the process ends.
RealLibrary openRealLibrary(const std::string& path);

// Returns the file that contains this address; "" if unknown.
std::string fileOf(const void* address);

}  // namespace orlu::probe
