// An image of a request: a memory file with a pattern in it, and more of the file behind the image, where
// nobody has anything to write.
#pragma once

#include <cutils/native_handle.h>

#include <cstdint>
#include <string>
#include <vector>

#include "algo_interface.h"

namespace orlu::conform {

struct ImageShape {
  int32_t format = kFormatNv21;
  int32_t width = 64;
  int32_t height = 48;
  int32_t padding = 0;      // bytes at the end of each row
  int32_t paddingRows = 0;  // rows between the planes
  bool isHardwareBuffer = false;
};

// How an image lies in memory.
struct Layout {
  const char* name;
  int32_t padding;
  int32_t paddingRows;
  bool isHardwareBuffer;
};
constexpr Layout kLayouts[] = {
    {"in shared memory",            0,  0, false},
    {"with padded rows",            32, 0, false},
    {"with padding between planes", 0,  6, false},
    {"in a hardware buffer",        0,  0, true },
    {"in a padded hardware buffer", 64, 2, true },
};

// "64 x 48 of format 1", for evidence.
std::string describe(const AlgoFrameInfo& frame);

// A row of a plane: where its pixels lie in the image's bytes.
struct PixelRow {
  int plane;
  int32_t row;
  size_t begin;
  size_t bytes;
};

class Image {
public:
  // `filler` decides the pattern, so that two images differ.
  explicit Image(const ImageShape& shape = {}, int filler = 1);
  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;
  ~Image();

  // The record as the service builds it. The descriptors stay this image's.
  AlgoFrameInfo frame() const;
  // A poisoned record must not be followed into these.
  AlgoNativeHandle* newHandle() const;

  int fd() const { return mFd; }
  // All that travel in the record.
  std::vector<int> descriptors() const { return {mFd, mOtherFd}; }
  size_t size() const { return mSize; }
  // The bytes that it was made with.
  const std::vector<uint8_t>& pattern() const { return mPattern; }
  // Top to bottom, plane by plane; of a format without a known layout all of it as rows of bytes.
  std::vector<PixelRow> rows() const;
  // The image's bytes as they are now.
  std::vector<uint8_t> bytes() const;
  bool isAsMade() const { return bytes() == mPattern; }
  // "" or what was written outside the planes: between them, or behind the image.
  std::string strayWrite() const;

  // False for a JPEG and for what has no name: there are bytes, and no pixels at known places.
  static bool hasKnownLayout(int32_t format);
  // Formats that the service hands over, by its names.
  static const std::vector<int32_t>& formats();
  static constexpr size_t kGuardBytes = 8192;

private:
  AlgoFrameInfo layOut() const;

  const ImageShape mShape;
  size_t mSize = 0;
  int mFd = -1;
  int mOtherFd = -1;  // the first descriptor of a hardware buffer, which is not the pixels'
  std::vector<uint8_t> mPattern;
  AlgoNativeHandle* mHandle = nullptr;
};

}  // namespace orlu::conform
