// Fuzz target: a callback with arbitrary bytes for a client that never calls Java. The map contains a
// synchronous request with the id (nativeReq) 0 and a full-async request with the id 1.

#include "algo_native_client.h"
#include "algo_native_request_map.h"
#include "target.h"

using android::hardware::hidl_handle;
using android::hardware::hidl_vec;

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static auto* const client = [] {
    orlu::fuzz::silenceLog();
    orlu::AlgoNativeRequestMap::getInstance()->create(7, nullptr, false);
    orlu::AlgoNativeRequestMap::getInstance()->create(8, nullptr, true);
    return new orlu::AlgoNativeClient(nullptr, 1, 2);
  }();
  // A copy of exactly this size, so that a read past its end is detected.
  const hidl_vec<uint8_t> bytes(std::vector<uint8_t>(data, data + size));
  client->onPostProcessData(bytes, {}, hidl_vec<hidl_handle>(std::vector<hidl_handle>(size % 3)));
  return 0;
}
