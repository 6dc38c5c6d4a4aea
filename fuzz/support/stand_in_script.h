// Sets the stand-in's script without recording its calls, which a long run has no room for.
#pragma once

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

#include "algo_script.h"

namespace orlu::fuzz {

inline void setStandInScript(const standin::AlgoScript& script) {
  void* const library = dlopen("liborlu.vac.interface.so", RTLD_NOW);
  void* const function = library == nullptr ? nullptr : dlsym(library, "AlgoStandInSetScript");
  if (function == nullptr) {
    std::fprintf(stderr, "%s\n", dlerror());
    std::abort();
  }
  reinterpret_cast<standin::SetScriptFunction>(function)(&script);
}

}  // namespace orlu::fuzz
