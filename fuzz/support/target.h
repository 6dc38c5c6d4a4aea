// What the libFuzzer targets share.
#pragma once

#include <android/log.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace orlu::fuzz {

inline void silenceLog() {
  __android_log_set_logger([](const __android_log_message*) {});
}

inline void require(bool holds) {
  if (!holds) std::abort();
}

// Takes an input apart from its front.
class Input {
public:
  Input(const uint8_t* data, size_t size) : mData(data), mSize(size) {}

  size_t left() const { return mSize; }
  const uint8_t* rest() const { return mData; }
  uint8_t byte() {
    if (mSize == 0) return 0;
    --mSize;
    return *mData++;
  }
  // As many bytes as there are, at most `most`.
  std::string text(size_t most) {
    const size_t count = most < mSize ? most : mSize;
    std::string bytes(reinterpret_cast<const char*>(mData), count);
    mData += count;
    mSize -= count;
    return bytes;
  }

private:
  const uint8_t* mData;
  size_t mSize;
};

}  // namespace orlu::fuzz
