#include "clients.h"

namespace orlu::standin {

void* Clients::create(const AlgoCreateClientRecord& record) {
  if (record.interfaceVersion != kAlgoTableVersion) return nullptr;
  std::lock_guard lock(mMutex);
  const uintptr_t handle = mNext++;
  mLive.insert(handle);
  return reinterpret_cast<void*>(handle);
}

bool Clients::destroy(void* client) {
  std::lock_guard lock(mMutex);
  return mLive.erase(reinterpret_cast<uintptr_t>(client)) != 0;
}

int Clients::count() const {
  std::lock_guard lock(mMutex);
  return static_cast<int>(mLive.size());
}

}  // namespace orlu::standin
