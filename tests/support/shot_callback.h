// The bytes with which the algorithm library tells that a request is done.
#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

namespace orlu::test {

inline std::vector<uint8_t> shotCallback(uint64_t nativeReq) {
  constexpr char kName[] = "shotCb";
  constexpr int32_t kLength = sizeof kName - 1;
  std::vector<uint8_t> bytes(8 + sizeof nativeReq + sizeof kLength + kLength);
  std::memcpy(&bytes[8], &nativeReq, sizeof nativeReq);
  std::memcpy(&bytes[16], &kLength, sizeof kLength);
  std::memcpy(&bytes[20], kName, kLength);
  return bytes;
}

}  // namespace orlu::test
