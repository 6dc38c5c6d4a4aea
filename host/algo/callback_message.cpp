#include "callback_message.h"

namespace orlu::standin {
namespace {

void append(std::vector<uint8_t>& message, const void* bytes, size_t size) {
  const auto* const first = static_cast<const uint8_t*>(bytes);
  message.insert(message.end(), first, first + size);
}

}  // namespace

std::vector<uint8_t> callbackMessage(uint64_t nativeReq, const std::string& name, const void* payload,
                                     size_t payloadSize) {
  CallbackHeader header = {};
  header.nativeReq = nativeReq;
  header.nameLength = static_cast<int32_t>(name.size());
  std::vector<uint8_t> message;
  append(message, &header, kCallbackNameOffset);
  append(message, name.data(), name.size());
  append(message, payload, payloadSize);
  return message;
}

void sendCallback(uint64_t cookie, const std::vector<uint8_t>& message,
                  const std::vector<android::hardware::hidl_handle>& handles) {
  const auto* const callback = reinterpret_cast<const AlgoResultCallback*>(static_cast<uintptr_t>(cookie));
  if (callback == nullptr || !*callback) return;
  const android::hardware::hidl_vec<uint8_t> data(message);
  const android::hardware::hidl_vec<uint8_t> extra;
  (*callback)(data, extra, android::hardware::hidl_vec<android::hardware::hidl_handle>(handles));
}

}  // namespace orlu::standin
