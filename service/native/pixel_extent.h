// Computes the extent of the pixels of a hardware buffer that is locked for reading.
#pragma once

#include <android/hardware_buffer.h>

#include <algorithm>
#include <cstdint>
#include <limits>

namespace orlu::recorder {

// Platform formats that the NDK's header does not name.
constexpr uint32_t kFormatYcrcb420Sp = 0x11;
constexpr uint32_t kFormatRaw16 = 0x20;
constexpr uint32_t kFormatRaw10 = 0x25;
constexpr uint32_t kFormatRaw12 = 0x26;
constexpr uint32_t kFormatYcbcrP010 = 0x36;
constexpr uint32_t kFormatYv12 = 0x32315659;

constexpr uint64_t kMostBytes = std::numeric_limits<int32_t>::max();
// Maximum number of unused rows that a device may insert between two planes for alignment.
constexpr uint64_t kMostUnusedRows = 128;

// Returns the size of a row in bytes, padding included; 0 if unknown. For many formats the platform sets no
// row stride in `plane`; for some of these formats, `desc` gives the stride.
inline uint64_t rowBytes(const AHardwareBuffer_Desc& desc, const AHardwareBuffer_Plane& plane) {
  if (plane.rowStride != 0) return plane.rowStride;
  switch (desc.format) {
    case AHARDWAREBUFFER_FORMAT_BLOB:
      return desc.width;
    case kFormatRaw16:
      return uint64_t{desc.stride} * 2;
    case kFormatRaw10:
    case kFormatRaw12:
      return desc.stride;  // in bytes for RAW10 and RAW12
    default:
      return 0;
  }
}

inline bool is420(uint32_t format) {
  return format == AHARDWAREBUFFER_FORMAT_Y8Cb8Cr8_420 || format == kFormatYcrcb420Sp ||
         format == kFormatYv12 || format == kFormatYcbcrP010;
}

// Returns the number of bytes from the first plane's start to the end of the last plane's last row, padding
// included. Returns 0 if the layout is unknown, if planes overlap without being interleaved, if more than
// kMostUnusedRows unused rows separate them, or if the extent exceeds kMostBytes.
inline uint64_t pixelExtent(const AHardwareBuffer_Desc& desc, const AHardwareBuffer_Planes& planes) {
  const auto start = [&](int i) { return uint64_t{reinterpret_cast<uintptr_t>(planes.planes[i].data)}; };
  if (planes.planeCount == 0 || start(0) == 0) return 0;
  const uint64_t row = rowBytes(desc, planes.planes[0]);
  uint64_t bytes = row * desc.height;
  if (planes.planeCount == 3 && is420(desc.format)) {
    // The two chroma planes may be interleaved, sample by sample.
    const uint64_t first = std::min(start(1), start(2));
    const uint64_t second = std::max(start(1), start(2));
    const bool isShared = second - first < planes.planes[1].pixelStride;
    const uint64_t chromaStart = isShared ? first : second;
    const uint64_t chromaRow = std::max(planes.planes[1].rowStride, planes.planes[2].rowStride);
    const uint64_t chroma = chromaRow * ((uint64_t{desc.height} + 1) / 2);
    const uint64_t most = bytes + kMostUnusedRows * row;
    if (first < start(0) + bytes || first > start(0) + most) return 0;
    if (!isShared && second - first < chroma) return 0;
    if (chromaStart > first + chroma + kMostUnusedRows * chromaRow) return 0;
    bytes = chromaStart - start(0) + chroma;
  } else if (planes.planeCount != 1) {
    return 0;
  }
  return bytes > kMostBytes ? 0 : bytes;
}

}  // namespace orlu::recorder
