// The live parameter and camera blocks. A handle is not an address but a number that is never reused. A stale
// handle is therefore detected without access to freed memory.
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
  // Returns false if the handle is not live. Pointers that find() returned for this handle stay valid.
  bool destroy(void* block);
  // Returns the contents of the block with this handle; null if the handle is not live.
  std::shared_ptr<ParameterSet> find(void* block) const;
  int count(int kind) const;

private:
  mutable std::mutex mMutex;
  uintptr_t mNext = 0x1000;
  std::map<uintptr_t, std::shared_ptr<ParameterSet>> mBlocks;
};

}  // namespace orlu::standin
