#include "block_registry.h"

#include <algorithm>

namespace orlu::standin {
namespace {

constexpr uintptr_t kHandleStep = 0x10;

}  // namespace

void* BlockRegistry::create(int kind) {
  if (kind != kParameterBlock && kind != kCameraMetadataBlock) return nullptr;
  auto set = std::make_shared<ParameterSet>(kind);
  std::lock_guard lock(mMutex);
  const uintptr_t handle = mNext;
  mNext += kHandleStep;
  mBlocks.emplace(handle, std::move(set));
  return reinterpret_cast<void*>(handle);
}

bool BlockRegistry::destroy(void* block) {
  std::lock_guard lock(mMutex);
  return mBlocks.erase(reinterpret_cast<uintptr_t>(block)) != 0;
}

std::shared_ptr<ParameterSet> BlockRegistry::find(void* block) const {
  std::lock_guard lock(mMutex);
  const auto entry = mBlocks.find(reinterpret_cast<uintptr_t>(block));
  return entry == mBlocks.end() ? nullptr : entry->second;
}

int BlockRegistry::count(int kind) const {
  std::lock_guard lock(mMutex);
  return static_cast<int>(std::count_if(mBlocks.begin(), mBlocks.end(),
                                        [kind](const auto& entry) { return entry.second->kind() == kind; }));
}

}  // namespace orlu::standin
