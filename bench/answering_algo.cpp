#include "answering_algo.h"

#include <atomic>
#include <cstring>

namespace orlu::bench {
namespace {

using android::hardware::hidl_handle;
using android::hardware::hidl_vec;

// Stands for every client and block. Nothing is ever stored behind it.
int gToken = 0;

std::atomic<ProcessHandler> gHandler{nullptr};
std::atomic<TableFilter> gFilter{nullptr};
thread_local uint64_t gLastNativeRequest = 0;

// A callback's data without a payload.
struct ShotMessage {
  static constexpr size_t kNameLength = sizeof kShotCallback - 1;

  explicit ShotMessage(uint64_t nativeReq) {
    CallbackHeader header = {};
    header.nativeReq = nativeReq;
    header.nameLength = kNameLength;
    std::memcpy(bytes, &header, kCallbackNameOffset);
    std::memcpy(bytes + kCallbackNameOffset, kShotCallback, kNameLength);
  }

  uint8_t bytes[kCallbackNameOffset + kNameLength];
};

int process(const AlgoProcessRecord& record) {
  gLastNativeRequest = record.nativeReq;
  if (const ProcessHandler handler = gHandler) {
    handler(record);
  } else {
    callBack(record.callbackCookie, record.nativeReq);
  }
  return 0;
}

void fillMetadataOps(AlgoMetadataOps& ops) {
  ops.createMetadata = [](int) -> void* { return &gToken; };
  ops.destroyMetadata = [](void*) {};
  ops.getSize = [](void*) { return 0U; };
  ops.setValue = [](void*, const char*, const char*, void*, unsigned) { return 0; };
  ops.getValue = [](void*, const char*, const char*, void*, unsigned) { return -1; };
  ops.setRaw = [](void*, const char*, unsigned) { return 0; };
  ops.paramAlgoUpdateToSystem = [](void*, const AlgoMetadataVisitor&) { return 0; };
  ops.paramSystemDownloadToAlgo = [](void*, const AlgoMetadataVisitor&) { return 0; };
}

}  // namespace

void setProcessHandler(ProcessHandler handler) {
  gHandler = handler;
}

void setTableFilter(TableFilter filter) {
  gFilter = filter;
}

void callBack(uint64_t cookie, uint64_t nativeReq) {
  ShotMessage message(nativeReq);
  hidl_vec<uint8_t> data;
  data.setToExternal(message.bytes, sizeof message.bytes);
  (*reinterpret_cast<const AlgoResultCallback*>(cookie))(data, hidl_vec<uint8_t>(), hidl_vec<hidl_handle>());
}

uint64_t lastNativeRequest() {
  return gLastNativeRequest;
}

}  // namespace orlu::bench

extern "C" void AlgoInterfaceEntry(orlu::AlgoInterfaceCallbacks* table) {
  table->init = [](const orlu::AlgoInitRecord&) { return 0; };
  table->process = orlu::bench::process;
  table->uninit = [](const orlu::AlgoUninitRecord&) { return 0; };
  table->flush = [](const orlu::AlgoFlushRecord&) { return 0; };
  table->command = [](const orlu::AlgoCommandRecord&) { return 0; };
  table->createClient = [](const orlu::AlgoCreateClientRecord&) -> void* { return &orlu::bench::gToken; };
  table->destroyClient = [](void*) { return 0; };
  orlu::bench::fillMetadataOps(table->metadataOps);
  if (const orlu::bench::TableFilter filter = orlu::bench::gFilter) filter(table);
}
