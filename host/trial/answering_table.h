// An algorithm library's table for trials and benchmarks. Its operations return at once and store nothing.
#pragma once

#include <cstring>

#include "algo_interface.h"

namespace orlu::trial {

// Fills in all callables except process(), getData(), translateParamFile() and the reserved ones. `token` is
// the handle of every client and block; no operation uses the memory at `token`.
inline void fillAnsweringTable(AlgoInterfaceCallbacks& table, void* token) {
  table.init = [](const AlgoInitRecord&) { return 0; };
  table.uninit = [](const AlgoUninitRecord&) { return 0; };
  table.flush = [](const AlgoFlushRecord&) { return 0; };
  table.command = [](const AlgoCommandRecord&) { return 0; };
  table.createClient = [token](const AlgoCreateClientRecord&) { return token; };
  table.destroyClient = [](void*) { return 0; };
  AlgoMetadataOps& ops = table.metadataOps;
  ops.createMetadata = [token](int) { return token; };
  ops.destroyMetadata = [](void*) {};
  ops.getSize = [](void*) { return 0U; };
  ops.setValue = [](void*, const char*, const char*, void*, unsigned) { return 0; };
  ops.getValue = [](void*, const char*, const char*, void*, unsigned) { return -1; };
  ops.setRaw = [](void*, const char*, unsigned) { return 0; };
  ops.paramAlgoUpdateToSystem = [](void*, const AlgoMetadataVisitor&) { return 0; };
  ops.paramSystemDownloadToAlgo = [](void*, const AlgoMetadataVisitor&) { return 0; };
}

// Reports a request as finished: calls, on this thread, the callback at the address `cookie`. Allocates no
// memory.
inline void callBackDone(uint64_t cookie, uint64_t nativeReq) {
  constexpr size_t kNameLength = sizeof kShotCallback - 1;
  CallbackHeader header = {};
  header.nativeReq = nativeReq;
  header.nameLength = kNameLength;
  uint8_t message[kCallbackNameOffset + kNameLength];
  std::memcpy(message, &header, kCallbackNameOffset);
  std::memcpy(message + kCallbackNameOffset, kShotCallback, kNameLength);
  android::hardware::hidl_vec<uint8_t> data;
  data.setToExternal(message, sizeof message);
  (*reinterpret_cast<const AlgoResultCallback*>(static_cast<uintptr_t>(cookie)))(data, {}, {});
}

}  // namespace orlu::trial
