// Shared by the libFuzzer targets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "log_capture.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace orlu::fuzz {

using test::silenceLog;

inline void require(bool holds) {
  if (!holds) std::abort();
}

// A fuzz target's input. text() and byte() remove the bytes that they return.
class Input {
public:
  Input(const uint8_t* data, size_t size) : mRest(reinterpret_cast<const char*>(data), size) {}

  const std::string_view& rest() const { return mRest; }
  // Returns the next `most` bytes; fewer at the end of the input.
  std::string text(size_t most) {
    std::string bytes(mRest.substr(0, most));
    mRest.remove_prefix(bytes.size());
    return bytes;
  }
  // Returns the next byte; 0 past the end.
  uint8_t byte() { return static_cast<uint8_t>(*text(1).c_str()); }

private:
  std::string_view mRest;
};

}  // namespace orlu::fuzz
