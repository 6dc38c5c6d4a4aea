// libnativewindow.so: hardware buffers over memory files.

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
#include <vndk/hardware_buffer.h>

#include <cerrno>
#include <cstdint>
#include <limits>
#include <memory>

#include "buffer_handle.h"

struct AHardwareBuffer {
  AHardwareBuffer_Desc desc;
  native_handle_t* handle;  // owned, with its descriptors
};

namespace {

constexpr int kDescriptors = 2;
constexpr int kIntegers = 4;
constexpr off_t kAttributesSize = 4096;
// Sizes and strides are passed as 32-bit integers.
constexpr uint64_t kMaxBytes = std::numeric_limits<int32_t>::max();

// Returns the bytes of a row of the first plane; 0 for an unknown format.
uint64_t rowBytes(const AHardwareBuffer_Desc& desc) {
  switch (desc.format) {
    case AHARDWAREBUFFER_FORMAT_R8G8B8A8_UNORM:
      return uint64_t{desc.width} * 4;
    case AHARDWAREBUFFER_FORMAT_RAW16:
      return uint64_t{desc.width} * 2;
    case AHARDWAREBUFFER_FORMAT_BLOB:
    case AHARDWAREBUFFER_FORMAT_Y8Cb8Cr8_420:
      return desc.width;
    default:
      return 0;
  }
}

// Returns the bytes of all planes; 0 if the buffer is not supported.
uint64_t pixelBytes(const AHardwareBuffer_Desc& desc) {
  const uint64_t row = rowBytes(desc);
  if (row == 0 || desc.height > kMaxBytes / row) return 0;
  const uint64_t firstPlane = row * desc.height;
  const bool hasChroma = desc.format == AHARDWAREBUFFER_FORMAT_Y8Cb8Cr8_420;
  const uint64_t bytes = hasChroma ? firstPlane + (firstPlane + 1) / 2 : firstPlane;
  return bytes > kMaxBytes ? 0 : bytes;
}

// One layer only; a BLOB is one row.
bool isAllocatable(const AHardwareBuffer_Desc& desc) {
  const bool isBlob = desc.format == AHARDWAREBUFFER_FORMAT_BLOB;
  return desc.layers == 1 && (!isBlob || desc.height == 1) && pixelBytes(desc) > 0;
}

// Returns a memory file of this size, or a negative errno.
int memoryFile(const char* name, off_t size) {
  const int fd = memfd_create(name, MFD_CLOEXEC);
  if (fd < 0) return -errno;
  if (ftruncate(fd, size) == 0) return fd;
  const int error = errno;
  close(fd);
  return -error;
}

// Returns the handle of a new buffer, which takes ownership of the descriptors; null if out of memory.
native_handle_t* bufferHandle(const AHardwareBuffer_Desc& desc, int attributes, int pixels) {
  native_handle_t* const handle = native_handle_create(kDescriptors, kIntegers);
  if (handle == nullptr) return nullptr;
  handle->data[orlu::host::kAttributesWord] = attributes;
  handle->data[orlu::host::kPixelsWord] = pixels;
  int* const integers = &handle->data[kDescriptors];
  integers[0] = static_cast<int>(desc.width);
  integers[1] = static_cast<int>(desc.height);
  integers[2] = static_cast<int>(rowBytes(desc));
  integers[3] = static_cast<int>(desc.format);
  return handle;
}

}  // namespace

int AHardwareBuffer_allocate(const AHardwareBuffer_Desc* desc, AHardwareBuffer** outBuffer) {
  if (desc == nullptr || outBuffer == nullptr || !isAllocatable(*desc)) return -EINVAL;
  const int attributes = memoryFile("hardware-buffer-attributes", kAttributesSize);
  if (attributes < 0) return attributes;
  const int pixels = memoryFile("hardware-buffer-pixels", static_cast<off_t>(pixelBytes(*desc)));
  if (pixels < 0) {
    close(attributes);
    return pixels;
  }
  native_handle_t* const handle = bufferHandle(*desc, attributes, pixels);
  if (handle == nullptr) {
    close(attributes);
    close(pixels);
    return -ENOMEM;
  }
  return AHardwareBuffer_createFromHandle(desc, handle, AHARDWAREBUFFER_CREATE_FROM_HANDLE_METHOD_REGISTER,
                                          outBuffer);
}

int AHardwareBuffer_createFromHandle(const AHardwareBuffer_Desc* desc, const native_handle_t* handle,
                                     int32_t method, AHardwareBuffer** outBuffer) {
  if (desc == nullptr || handle == nullptr || outBuffer == nullptr) return -EINVAL;
  if (method != AHARDWAREBUFFER_CREATE_FROM_HANDLE_METHOD_REGISTER) return -EINVAL;
  auto buffer = std::make_unique<AHardwareBuffer>();
  buffer->desc = *desc;
  buffer->desc.stride = desc->width;
  buffer->handle = const_cast<native_handle_t*>(handle);
  *outBuffer = buffer.release();
  return 0;
}

void AHardwareBuffer_release(AHardwareBuffer* buffer) {
  if (buffer == nullptr) return;
  native_handle_close(buffer->handle);
  native_handle_delete(buffer->handle);
  delete buffer;
}

void AHardwareBuffer_describe(const AHardwareBuffer* buffer, AHardwareBuffer_Desc* outDesc) {
  *outDesc = buffer->desc;
}

const native_handle_t* AHardwareBuffer_getNativeHandle(const AHardwareBuffer* buffer) {
  return buffer == nullptr ? nullptr : buffer->handle;
}
