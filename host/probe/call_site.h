// Where a call into the probe came from.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <vector>

namespace orlu::probe {

// A loaded library or program, and where it lies.
struct Module {
  std::string path;
  std::string name;        // the path's last part
  uintptr_t loadedAt = 0;  // what is subtracted from an address for addr2line
  uintptr_t begin = 0;
  uintptr_t end = 0;
};

// The modules of this process by address. They are read again when an address lies in none; one that was
// unloaded stays known until then.
class ModuleTable {
public:
  // Null for an address outside of all. Lives as long as the process.
  const Module* find(uintptr_t address);

private:
  const Module* findKnown(uintptr_t address) const;
  void readAll();

  mutable std::shared_mutex mMutex;
  std::vector<std::shared_ptr<const Module>> mModules;
};

// The calling library's part of the stack, innermost first: addresses inside the call instructions. The
// probe's own frames are left out, and the walk ends where another module begins.
struct CallSite {
  static constexpr int kMostFrames = 12;

  const Module* module = nullptr;
  uintptr_t addresses[kMostFrames] = {};
  int count = 0;
};

CallSite callSite(ModuleTable& modules);

}  // namespace orlu::probe
