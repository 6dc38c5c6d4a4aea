#include "image.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

namespace orlu::conform {
namespace {

constexpr uint8_t kGuard = 0xA5;

bool isYuv(int32_t format) {
  return format == kFormatNv21 || format == kFormatNv12;
}

// Returns the size of the image's longest row in bytes, without padding.
int32_t rowBytes(const ImageShape& shape) {
  switch (shape.format) {
    case kFormatRaw16:
      return 2 * shape.width;
    case kFormatMipiRaw10:
      return (shape.width + 3) / 4 * 5;
    case kFormatMipiRaw12:
      return (shape.width + 1) / 2 * 3;
    case kFormatRgba8888:
      return 4 * shape.width;
    default:
      // A chroma row has two bytes for each two columns; an odd width is rounded up.
      return isYuv(shape.format) ? (shape.width + 1) / 2 * 2 : shape.width;
  }
}

// Returns the number of pixel bytes in each row of a plane.
int32_t pixelBytes(const ImageShape& shape, int plane) {
  return isYuv(shape.format) && plane == 0 ? shape.width : rowBytes(shape);
}

void writeAll(int fd, const std::vector<uint8_t>& bytes, off_t offset) {
  [[maybe_unused]] const ssize_t written = pwrite(fd, bytes.data(), bytes.size(), offset);
}

std::vector<uint8_t> readAll(int fd, size_t size, off_t offset) {
  std::vector<uint8_t> bytes(size);
  const ssize_t got = pread(fd, bytes.data(), size, offset);
  bytes.resize(got < 0 ? 0 : static_cast<size_t>(got));
  return bytes;
}

}  // namespace

std::string describe(const AlgoFrameInfo& frame) {
  return std::to_string(frame.width) + " x " + std::to_string(frame.height) + " of format " +
         std::to_string(frame.format);
}

const std::vector<int32_t>& Image::formats() {
  static const std::vector<int32_t> formats = {kFormatUnknown,   kFormatNv21,  kFormatNv12, kFormatMipiRaw10,
                                               kFormatMipiRaw12, kFormatRaw16, kFormatJpeg, kFormatRgba8888};
  return formats;
}

Image::Image(const ImageShape& shape, int filler) : mShape(shape) {
  mSize = static_cast<size_t>(layOut().size);
  mFd = memfd_create("image", MFD_CLOEXEC);
  mPattern.resize(mSize);
  // A smooth pattern, suitable for JPEG encoding and frame alignment. Neighbouring rows usually differ.
  for (size_t i = 0; i < mSize; ++i)
    mPattern[i] = static_cast<uint8_t>(i / 7 + static_cast<size_t>(filler) * 31);
  writeAll(mFd, mPattern, 0);
  writeAll(mFd, std::vector<uint8_t>(kGuardBytes, kGuard), static_cast<off_t>(mSize));
  if (!shape.isHardwareBuffer) return;
  mOtherFd = memfd_create("attributes", MFD_CLOEXEC);
  mHandle = newHandle();
}

Image::~Image() {
  close(mFd);
  if (mOtherFd >= 0) close(mOtherFd);
  delete mHandle;
}

AlgoFrameInfo Image::layOut() const {
  AlgoFrameInfo frame;
  frame.format = mShape.format;
  frame.width = mShape.width;
  frame.height = mShape.height;
  const int32_t stride = rowBytes(mShape) + mShape.padding;
  frame.stride[0] = stride;
  frame.scanline[0] = mShape.height + mShape.paddingRows;
  frame.planeCount = 1;
  frame.planeSize[0] = stride * frame.scanline[0];
  if (isYuv(mShape.format)) {
    frame.planeCount = 2;
    frame.stride[1] = stride;
    frame.planeSize[1] = stride * ((mShape.height + 1) / 2);
  }
  // The stride of a RAW16 image counts pixels.
  if (mShape.format == kFormatRaw16) frame.stride[0] = mShape.width + mShape.padding / 2;
  for (int32_t size : frame.planeSize) frame.size += size;
  return frame;
}

AlgoNativeHandle* Image::newHandle() const {
  if (!mShape.isHardwareBuffer) return nullptr;
  auto* const handle = new AlgoNativeHandle();
  handle->version = 12;
  handle->numFds = 2;
  handle->numInts = 4;
  handle->data[0] = mFd;
  handle->data[1] = mOtherFd;
  return handle;
}

AlgoFrameInfo Image::frame() const {
  AlgoFrameInfo frame = layOut();
  frame.nativeHandle = mHandle;
  frame.fdCount = 1;
  frame.fd[0] = mFd;
  frame.fdSize[0] = static_cast<int32_t>(mSize);
  return frame;
}

std::vector<uint8_t> Image::bytes() const {
  return readAll(mFd, mSize, 0);
}

bool Image::hasKnownLayout(int32_t format) {
  return format != kFormatUnknown && format != kFormatJpeg;
}

std::vector<PixelRow> Image::rows() const {
  std::vector<PixelRow> rows;
  const AlgoFrameInfo frame = layOut();
  size_t begin = 0;
  for (int plane = 0; plane < frame.planeCount; ++plane) {
    const int32_t height = plane == 0 ? mShape.height : (mShape.height + 1) / 2;
    const auto stride = static_cast<size_t>(rowBytes(mShape)) + static_cast<size_t>(mShape.padding);
    for (int32_t row = 0; row < height; ++row) {
      rows.push_back({plane, row, begin + static_cast<size_t>(row) * stride,
                      static_cast<size_t>(pixelBytes(mShape, plane))});
    }
    begin += static_cast<size_t>(frame.planeSize[plane]);
  }
  return rows;
}

std::string Image::strayWrite() const {
  const std::vector<uint8_t> guard = readAll(mFd, kGuardBytes, static_cast<off_t>(mSize));
  for (size_t i = 0; i < kGuardBytes; ++i) {
    if (i < guard.size() && guard[i] == kGuard) continue;
    return "byte " + std::to_string(mSize + i) + " was written, after the image's " + std::to_string(mSize) +
           " bytes";
  }
  if (!isYuv(mShape.format)) return "";
  const std::vector<uint8_t> now = bytes();
  const AlgoFrameInfo frame = layOut();
  const auto end = static_cast<size_t>(frame.planeSize[0]);
  for (size_t i = end - static_cast<size_t>(frame.stride[0] * mShape.paddingRows); i < end; ++i) {
    if (now[i] != mPattern[i]) return "byte " + std::to_string(i) + " was written, between the planes";
  }
  return "";
}

}  // namespace orlu::conform
