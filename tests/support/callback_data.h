// Data of a result callback: 8 unused bytes, nativeReq (8 bytes), length of name (4 bytes), name, payload.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace orlu::test {

// Returns the data of a result callback. `rest` is the name followed by the payload. `nameLength` is written
// as the length of the name, even if it is wrong.
inline std::vector<uint8_t> callbackData(uint64_t nativeReq, int32_t nameLength, const std::string& rest) {
  std::vector<uint8_t> data(20 + rest.size(), 0xEE);
  std::memcpy(&data[8], &nativeReq, sizeof nativeReq);
  std::memcpy(&data[16], &nameLength, sizeof nameLength);
  std::memcpy(data.data() + 20, rest.data(), rest.size());
  return data;
}

inline std::vector<uint8_t> shotCallback(uint64_t nativeReq) {
  return callbackData(nativeReq, 6, "shotCb");
}

}  // namespace orlu::test
