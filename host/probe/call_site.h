// The origin of a call into the probe.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <vector>

namespace orlu::probe {

// A loaded library or program and its addresses.
struct Module {
  std::string path;
  std::string name;        // the path's last part
  uintptr_t loadedAt = 0;  // addr2line takes addresses relative to this
  uintptr_t begin = 0;
  uintptr_t end = 0;
};

// The modules of this process by address. If no known module contains an address, find() reads the loader's
// list again. The table never forgets a module, so an unloaded module hides a module that is loaded later at
// the same addresses.
class ModuleTable {
public:
  // Returns null for an address in no module. The module is valid until the process ends.
  const Module* find(uintptr_t address);

private:
  const Module* findKnown(uintptr_t address) const;
  void readAll();

  mutable std::shared_mutex mMutex;
  std::vector<std::shared_ptr<const Module>> mModules;
};

// The stack frames of the library that called the probe, innermost first, as addresses inside the call
// instructions. The list has no frames of the probe and ends before the first frame outside that library.
struct CallSite {
  static constexpr int kMostFrames = 12;

  const Module* module = nullptr;
  uintptr_t addresses[kMostFrames] = {};
  int count = 0;
};

CallSite callSite(ModuleTable& modules);

}  // namespace orlu::probe
