// The live metadata blocks. A handle is a number that is never used again, not an address, so that a stale
// one is told from a live one and nothing behind it is ever touched.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

#include "parameter_set.h"

namespace orlu::standin {

class BlockRegistry {
public:
  // A new block's handle; null for an unknown kind.
  void* create(int kind);
  // False when the handle is not live. Whoever still holds the set may go on with it.
  bool destroy(void* block);
  // The set behind a handle; null when it is not live.
  std::shared_ptr<ParameterSet> find(void* block) const;
  // Live blocks of a kind.
  int count(int kind) const;

private:
  mutable std::mutex mMutex;
  uintptr_t mNext = 0x1000;
  std::map<uintptr_t, std::shared_ptr<ParameterSet>> mBlocks;
};

}  // namespace orlu::standin
