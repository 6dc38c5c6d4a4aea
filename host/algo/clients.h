// The live clients, by handles that are never reused.
#pragma once

#include <cstdint>
#include <mutex>
#include <set>

#include "algo_interface.h"

namespace orlu::standin {

class Clients {
public:
  // Returns a new client's handle; null if the record's interface version is not kAlgoTableVersion.
  void* create(const AlgoCreateClientRecord& record);
  // Returns false if the handle is not live.
  bool destroy(void* client);
  int count() const;

private:
  mutable std::mutex mMutex;
  uintptr_t mNext = 0x100;
  std::set<uintptr_t> mLive;
};

}  // namespace orlu::standin
