// The minimal library with the fault that ORLU_MUTANT selects. See mutants.txt for the checks that detect it.
#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "mutant.h"

#ifdef MUTANT_UNBOUND
// An undefined function: the loader fails with RTLD_NOW.
extern "C" int orluNoSuchFunction();
#endif

namespace orlu::mutants {
namespace {

using android::hardware::hidl_vec;

void entryOf(const char* library, Table& table) {
  void* const handle = dlopen(library, RTLD_NOW);
  void* const entry = handle == nullptr ? nullptr : dlsym(handle, "AlgoInterfaceEntry");
  if (entry != nullptr) reinterpret_cast<void (*)(Table*)>(entry)(&table);
}

}  // namespace

std::atomic<int> gEntries{0};

Bytes message(uint64_t nativeReq, const std::string& name, size_t payload) {
  CallbackHeader header = {};
  header.nativeReq = nativeReq;
  header.nameLength = static_cast<int32_t>(name.size());
  Bytes bytes(kCallbackNameOffset + name.size() + payload);
  std::memcpy(bytes.data(), &header, kCallbackNameOffset);
  std::copy(name.begin(), name.end(), bytes.begin() + kCallbackNameOffset);
  return bytes;
}

uint64_t requestOf(const Bytes& bytes) {
  uint64_t id = 0;
  std::memcpy(&id, &bytes[8], sizeof id);
  return id;
}

void sendTo(uint64_t cookie, const Bytes& bytes) {
  (*reinterpret_cast<const AlgoResultCallback*>(static_cast<uintptr_t>(cookie)))(hidl_vec<uint8_t>(bytes), {},
                                                                                 {});
}

void later(int milliseconds, std::function<void()> work) {
  std::thread([milliseconds, work = std::move(work)] {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    work();
  }).detach();
}

void delayCallbacks(Table& table) {
  onCallback(table, [](const Bytes& bytes, const Send& send, void*, const auto&) {
    std::this_thread::sleep_for(std::chrono::milliseconds(25));
    send(bytes);
  });
}

void leaveResult(const Table& table, void* block, const char* section, const char* key, Bytes bytes) {
  table.metadataOps.setValue(block, section, key, bytes.data(), static_cast<unsigned>(bytes.size()));
}

bool asksFor(const std::vector<std::string>& list, const char* name) {
  return !list.empty() && list[0] == name;
}

}  // namespace orlu::mutants

extern "C" __attribute__((visibility("default"))) void AlgoInterfaceEntry(
    orlu::AlgoInterfaceCallbacks* table) {
  using namespace orlu::mutants;
  const char* const name = std::getenv("ORLU_MUTANT");
  ++gEntries;
  entryOf(MUTANT_MINIMAL, *table);
  for (const auto& mutants :
       {tableMutants(), blockMutants(), requestMutants(), lifeMutants(), descriptorMutants()}) {
    for (const Mutant& mutant : mutants) {
      if (name != nullptr && std::strcmp(name, mutant.name) == 0) mutant.plant(*table);
    }
  }
#ifdef MUTANT_UNBOUND
  if (gEntries == 0) orluNoSuchFunction();
#endif
}
