// The live parameter and camera blocks. A handle is a number that is never reused, not an address, so a stale
// handle is detected without access to freed memory.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

#include "parameter_set.h"

namespace orlu::standin {

class BlockRegistry {
public:
  // Returns a new block's handle; null for an unknown kind.
  void* create(int kind);
  // Returns false if the handle is not live. Pointers to the set that find() returned stay valid.
  bool destroy(void* block);
  // Returns the set of a handle; null if the handle is not live.
  std::shared_ptr<ParameterSet> find(void* block) const;
  int count(int kind) const;

private:
  mutable std::mutex mMutex;
  uintptr_t mNext = 0x1000;
  std::map<uintptr_t, std::shared_ptr<ParameterSet>> mBlocks;
};

}  // namespace orlu::standin
