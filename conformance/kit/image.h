// An image of a request: a memory file with a pattern, followed by guard bytes that nobody may change.
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
  int32_t paddingRows = 0;  // rows after the first plane
  bool isHardwareBuffer = false;
};

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

// Returns the image's size and format for a failure message, such as "64 x 48 of format 1".
std::string describe(const AlgoFrameInfo& frame);

// The pixels of one row of a plane, as a range of the image's bytes.
struct PixelRow {
  int plane;
  int32_t row;
  size_t begin;
  size_t bytes;
};

class Image {
public:
  // `filler` selects the pattern, so that two images differ.
  explicit Image(const ImageShape& shape = {}, int filler = 1);
  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;
  ~Image();

  // Returns the image's record, built as the service builds it. The image keeps ownership of the descriptors
  // and of the native handle.
  AlgoFrameInfo frame() const;
  // Returns a new native handle that the caller owns; null without a hardware buffer. The handle is allocated
  // separately from a record, so it stays intact when the record is overwritten.
  AlgoNativeHandle* newHandle() const;

  int fd() const { return mFd; }
  // Both descriptors of a hardware buffer; otherwise the image's descriptor and -1.
  std::vector<int> descriptors() const { return {mFd, mOtherFd}; }
  size_t size() const { return mSize; }
  // The bytes written at construction.
  const std::vector<uint8_t>& pattern() const { return mPattern; }
  // Returns the rows of all planes in order. In a format without a known layout, the rows cover all bytes
  // except the padding.
  std::vector<PixelRow> rows() const;
  std::vector<uint8_t> bytes() const;
  bool isAsMade() const { return bytes() == mPattern; }
  // Describes the first byte that was written after the image or between the planes; "" if there is none.
  std::string strayWrite() const;

  // Whether the pixels of a format have known offsets: false for kFormatJpeg and kFormatUnknown.
  static bool hasKnownLayout(int32_t format);
  // All formats that the service passes, including kFormatUnknown.
  static const std::vector<int32_t>& formats();
  static constexpr size_t kGuardBytes = 8192;

private:
  AlgoFrameInfo layOut() const;

  const ImageShape mShape;
  size_t mSize = 0;
  int mFd = -1;
  int mOtherFd = -1;  // second descriptor of a hardware buffer, without pixels
  std::vector<uint8_t> mPattern;
  AlgoNativeHandle* mHandle = nullptr;
};

}  // namespace orlu::conform
