// Mutants with faults in parameter blocks or visitors.
#include <algorithm>
#include <map>
#include <mutex>

#include "mutant.h"

namespace orlu::mutants {
namespace {

using Values = std::function<int(void*, const char*, const char*, void*, unsigned)>;

int setAbsent(const Values& get, void* block, const char* section, const char* key, void* data,
              unsigned size) {
  const int status = get(block, section, key, data, size);
  if (status != 0) std::memset(data, 0, size);
  return status;
}

// setValue
void stopAtZero(Table& table) {
  table.metadataOps.setValue = [set = table.metadataOps.setValue](void* block, const char* section,
                                                                  const char* key, void* data,
                                                                  unsigned size) {
    const auto* const text = static_cast<const char*>(data);
    const auto length = static_cast<unsigned>(text == nullptr ? 0 : strnlen(text, size));
    return set(block, section, key, data, length);
  };
}
void keepFirstValue(Table& table) {
  table.metadataOps.setValue = [ops = table.metadataOps](void* block, const char* section, const char* key,
                                                         void* data, unsigned size) {
    char old = 0;
    if (ops.getValue(block, section, key, &old, 1) == 0) return 0;
    return ops.setValue(block, section, key, data, size);
  };
}
void keepPointers(Table& table) {
  static std::map<std::string, std::pair<const void*, unsigned>> kept;
  static std::mutex mutex;
  table.metadataOps.setValue = [](void* block, const char* section, const char* key, void* data,
                                  unsigned size) {
    const std::lock_guard<std::mutex> lock(mutex);
    kept[std::to_string(reinterpret_cast<uintptr_t>(block)) + section + " " + key] = {data, size};
    return 0;
  };
  table.metadataOps.getValue = [](void* block, const char* section, const char* key, void* data,
                                  unsigned size) {
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = kept.find(std::to_string(reinterpret_cast<uintptr_t>(block)) + section + " " + key);
    if (found == kept.end()) return -1;
    std::memcpy(data, found->second.first, std::min(size, found->second.second));
    return 0;
  };
}
void mixSections(Table& table) {
  auto& ops = table.metadataOps;
  ops.setValue = [set = ops.setValue](void* block, const char*, const char* key, void* data, unsigned size) {
    return set(block, "", key, data, size);
  };
  ops.getValue = [get = ops.getValue](void* block, const char*, const char* key, void* data, unsigned size) {
    return get(block, "", key, data, size);
  };
}
void capSizes(Table& table) {
  table.metadataOps.setValue = [set = table.metadataOps.setValue](void* block, const char* section,
                                                                  const char* key, void* data,
                                                                  unsigned size) {
    return set(block, section, key, data, std::min(size, 4096U));
  };
}

// getValue
void writePastSize(Table& table) {
  table.metadataOps.getValue = [get = table.metadataOps.getValue](void* block, const char* section,
                                                                  const char* key, void* data,
                                                                  unsigned size) {
    return get(block, section, key, data, size < 8 ? size : size + 1);
  };
}
void clearAbsent(Table& table) {
  table.metadataOps.getValue = [get = table.metadataOps.getValue](
                                   void* block, const char* section, const char* key, void* data,
                                   unsigned size) { return setAbsent(get, block, section, key, data, size); };
}
void succeedAbsent(Table& table) {
  table.metadataOps.getValue = [get = table.metadataOps.getValue](void* block, const char* section,
                                                                  const char* key, void* data,
                                                                  unsigned size) {
    get(block, section, key, data, size);
    return 0;
  };
}

// blocks
void forgetValues(Table& table) {
  onCallback(table,
             [ops = table.metadataOps](const Bytes& bytes, const Send& send, void* block, const auto&) {
               uint8_t none = 0;
               ops.setValue(block, kControl, "conform_key", &none, 0);
               send(bytes);
             });
}
void leaveLongResult(Table& table) {
  onCallback(table, [table](const Bytes& bytes, const Send& send, void* block, const auto&) {
    leaveResult(table, block, kFeedback, "hdr_choosed_frame", Bytes(8));
    send(bytes);
  });
}
void refuseRaw(Table& table) {
  table.metadataOps.setRaw = [](void*, const char*, unsigned) { return -1; };
}

// visitors
void visitWithoutKey(Table& table) {
  table.metadataOps.paramAlgoUpdateToSystem = [](void*, const AlgoMetadataVisitor& visitor) {
    int32_t value = 1;
    return visitor(kFeedback, nullptr, &value, sizeof value);
  };
}
void visitUnderLock(Table& table) {
  static std::mutex mutex;
  auto& ops = table.metadataOps;
  ops.paramAlgoUpdateToSystem = [](void*, const AlgoMetadataVisitor& visitor) {
    const std::lock_guard<std::mutex> lock(mutex);
    int32_t value = 1;
    return visitor(kFeedback, "key", &value, sizeof value);
  };
  ops.setValue = [set = ops.setValue](void* block, const char* section, const char* key, void* data,
                                      unsigned size) {
    const std::lock_guard<std::mutex> lock(mutex);
    return set(block, section, key, data, size);
  };
}

// threads

// useLooseStore() replaces the minimal library's store by one with these blocks. Its flags select whether
// setValue() and getValue() lock the block. The list of blocks is always locked.
struct LooseBlock {
  std::mutex mutex;
  std::map<std::string, std::string> values;
};
std::shared_ptr<LooseBlock> looseBlock(void* block, bool isGone = false) {
  static std::mutex mutex;
  static std::map<void*, std::shared_ptr<LooseBlock>> blocks;
  const std::lock_guard<std::mutex> lock(mutex);
  std::shared_ptr<LooseBlock>& found = blocks[block];
  if (found == nullptr) found = std::make_shared<LooseBlock>();
  std::shared_ptr<LooseBlock> kept = found;
  if (isGone) blocks.erase(block);
  return kept;
}
void useLooseStore(Table& table, bool locksWrites, bool locksReads) {
  AlgoMetadataOps& ops = table.metadataOps;
  ops.setValue = [locksWrites](void* handle, const char* section, const char* key, void* data,
                               unsigned size) {
    const auto block = looseBlock(handle);
    std::unique_lock<std::mutex> lock(block->mutex, std::defer_lock);
    if (locksWrites) lock.lock();
    block->values[std::string(section) + "/" + key].assign(static_cast<const char*>(data), size);
    return 0;
  };
  ops.getValue = [locksReads](void* handle, const char* section, const char* key, void* data, unsigned size) {
    const auto block = looseBlock(handle);
    std::unique_lock<std::mutex> lock(block->mutex, std::defer_lock);
    if (locksReads) lock.lock();
    const auto value = block->values.find(std::string(section) + "/" + key);
    if (value == block->values.end()) return -1;
    std::memcpy(data, value->second.data(), std::min<size_t>(size, value->second.size()));
    return 0;
  };
  ops.destroyMetadata = [destroy = ops.destroyMetadata](void* handle) {
    looseBlock(handle, true);
    destroy(handle);
  };
  ops.getSize = [size = ops.getSize](void* handle) {
    size_t sum = size(handle);
    const auto block = looseBlock(handle);
    const std::lock_guard<std::mutex> lock(block->mutex);
    for (const auto& [key, value] : block->values) sum += value.size();
    return static_cast<unsigned>(sum);
  };
}
void unlockStore(Table& table) {
  useLooseStore(table, false, false);
}
void unlockReaders(Table& table) {
  useLooseStore(table, true, false);
}

}  // namespace

std::vector<Mutant> blockMutants() {
  return {
      {"stop_at_zero",      stopAtZero     },
      {"keep_first_value",  keepFirstValue },
      {"keep_pointers",     keepPointers   },
      {"mix_sections",      mixSections    },
      {"cap_sizes",         capSizes       },
      {"write_past_size",   writePastSize  },
      {"clear_absent",      clearAbsent    },
      {"succeed_absent",    succeedAbsent  },
      {"forget_values",     forgetValues   },
      {"leave_long_result", leaveLongResult},
      {"refuse_raw",        refuseRaw      },
      {"visit_without_key", visitWithoutKey},
      {"visit_under_lock",  visitUnderLock },
      {"unlock_store",      unlockStore    },
      {"unlock_readers",    unlockReaders  },
  };
}

}  // namespace orlu::mutants
