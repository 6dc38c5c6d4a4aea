// The request and the name in a callback's bytes.
#pragma once

#include <cstring>
#include <string_view>

#include "algo_interface.h"

namespace orlu::probe {

struct CallbackName {
  bool isWhole = false;  // false: header or name is incomplete, and the other fields are empty
  uint64_t nativeReq = 0;
  std::string_view name;  // refers to the callback's bytes
};

inline CallbackName callbackName(const android::hardware::hidl_vec<uint8_t>& bytes) {
  CallbackName found;
  const size_t size = bytes.data() == nullptr ? 0 : bytes.size();
  if (size < kCallbackNameOffset) return found;
  CallbackHeader header;
  std::memcpy(&header, bytes.data(), kCallbackNameOffset);
  const auto length = static_cast<size_t>(header.nameLength);
  if (header.nameLength < 0 || length > size - kCallbackNameOffset) return found;
  return {
      true, header.nativeReq, {reinterpret_cast<const char*>(bytes.data()) + kCallbackNameOffset, length}
  };
}

}  // namespace orlu::probe
