// libnativewindow.so: hardware buffers over memory files.

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vndk/hardware_buffer.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <limits>
#include <memory>
#include <mutex>

#include "buffer_handle.h"

struct AHardwareBuffer {
  AHardwareBuffer_Desc desc;
  native_handle_t* handle;  // owned, with its descriptors
  std::atomic<int> references{1};
  std::mutex mutex;  // guards the members below
  int locks = 0;
  void* pixels = nullptr;  // mapped while there are locks
  size_t size = 0;
};

namespace {

constexpr off_t kAttributesSize = 4096;
// Sizes and strides are passed as 32-bit integers.
constexpr uint64_t kMaxBytes = std::numeric_limits<int32_t>::max();

bool hasChroma(const AHardwareBuffer_Desc& desc) {
  return desc.format == AHARDWAREBUFFER_FORMAT_Y8Cb8Cr8_420;
}

// Returns the size of a sample of the first plane, in bytes; 0 for an unknown format.
uint32_t sampleBytes(const AHardwareBuffer_Desc& desc) {
  switch (desc.format) {
    case AHARDWAREBUFFER_FORMAT_R8G8B8A8_UNORM:
      return 4;
    case AHARDWAREBUFFER_FORMAT_RAW16:
      return 2;
    case AHARDWAREBUFFER_FORMAT_BLOB:
    case AHARDWAREBUFFER_FORMAT_Y8Cb8Cr8_420:
      return 1;
    default:
      return 0;
  }
}

// Returns the size of all planes in bytes, with rows of `stride` samples; 0 if the buffer is not supported.
uint64_t pixelBytes(const AHardwareBuffer_Desc& desc, uint32_t stride) {
  const uint64_t row = uint64_t{stride} * sampleBytes(desc);
  if (row == 0 || desc.height > kMaxBytes / row) return 0;
  const uint64_t rows = desc.height + (hasChroma(desc) ? (uint64_t{desc.height} + 1) / 2 : 0);
  return row * rows > kMaxBytes ? 0 : row * rows;
}

// Accepts known formats with one layer and 1 to kMaxBytes bytes; a BLOB must have one row.
bool isAllocatable(const AHardwareBuffer_Desc& desc) {
  const bool isBlob = desc.format == AHARDWAREBUFFER_FORMAT_BLOB;
  return desc.layers == 1 && (!isBlob || desc.height == 1) && pixelBytes(desc, desc.width) > 0;
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

// Returns a new buffer's handle, which owns the descriptors; null if out of memory.
native_handle_t* bufferHandle(const AHardwareBuffer_Desc& desc, int attributes, int pixels) {
  native_handle_t* const handle = native_handle_create(orlu::host::kDescriptors, orlu::host::kIntegers);
  if (handle == nullptr) return nullptr;
  handle->data[orlu::host::kAttributesWord] = attributes;
  handle->data[orlu::host::kPixelsWord] = pixels;
  int* const integers = &handle->data[orlu::host::kDescriptors];
  integers[0] = static_cast<int>(desc.width);
  integers[1] = static_cast<int>(desc.height);
  integers[2] = static_cast<int>(desc.width * sampleBytes(desc));
  integers[3] = static_cast<int>(desc.format);
  return handle;
}

// Returns the row stride in samples. If the format is unknown, or the handle does not have the layout of
// bufferHandle(), returns the width.
uint32_t rowSamples(const AHardwareBuffer_Desc& desc, const native_handle_t& handle) {
  using namespace orlu::host;
  const bool isOurs = handle.numFds == kDescriptors && handle.numInts == kIntegers && sampleBytes(desc) > 0;
  return isOurs ? static_cast<uint32_t>(handle.data[kRowWord]) / sampleBytes(desc) : desc.width;
}

// Maps the memory file if it contains all rows. Returns 0 or a negative errno.
int mapPixels(AHardwareBuffer& buffer) {
  const uint64_t needed = pixelBytes(buffer.desc, buffer.desc.stride);
  struct stat status = {};
  if (needed == 0 || buffer.desc.stride < buffer.desc.width ||
      buffer.handle->numFds < orlu::host::kDescriptors)
    return -EINVAL;
  const int fd = buffer.handle->data[orlu::host::kPixelsWord];
  if (fstat(fd, &status) != 0) return -errno;
  if (static_cast<uint64_t>(status.st_size) < needed) return -EINVAL;
  void* const pixels = mmap(nullptr, static_cast<size_t>(needed), PROT_READ, MAP_SHARED, fd, 0);
  if (pixels == MAP_FAILED) return -errno;
  buffer.pixels = pixels;
  buffer.size = static_cast<size_t>(needed);
  return 0;
}

// In the chroma rows, Cr and Cb samples alternate, beginning with Cr.
void fillPlanes(const AHardwareBuffer& buffer, AHardwareBuffer_Planes& planes) {
  const AHardwareBuffer_Desc& desc = buffer.desc;
  auto* const start = static_cast<uint8_t*>(buffer.pixels);
  const bool hasStrides = desc.format == AHARDWAREBUFFER_FORMAT_R8G8B8A8_UNORM || hasChroma(desc);
  const uint32_t sample = hasStrides ? sampleBytes(desc) : 0;
  planes.planeCount = 1;
  planes.planes[0] = {start, sample, desc.stride * sample};
  if (!hasChroma(desc)) return;
  uint8_t* const chroma = start + size_t{desc.stride} * desc.height;
  planes.planeCount = 3;
  planes.planes[1] = {chroma + 1, 2, desc.stride};
  planes.planes[2] = {chroma, 2, desc.stride};
}

}  // namespace

int AHardwareBuffer_allocate(const AHardwareBuffer_Desc* desc, AHardwareBuffer** outBuffer) {
  if (desc == nullptr || outBuffer == nullptr || !isAllocatable(*desc)) return -EINVAL;
  const int attributes = memoryFile("hardware-buffer-attributes", kAttributesSize);
  if (attributes < 0) return attributes;
  const int pixels = memoryFile("hardware-buffer-pixels", static_cast<off_t>(pixelBytes(*desc, desc->width)));
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
  buffer->desc.stride = rowSamples(*desc, *handle);
  buffer->handle = const_cast<native_handle_t*>(handle);
  *outBuffer = buffer.release();
  return 0;
}

void AHardwareBuffer_acquire(AHardwareBuffer* buffer) {
  ++buffer->references;
}

void AHardwareBuffer_release(AHardwareBuffer* buffer) {
  if (buffer == nullptr || --buffer->references > 0) return;
  native_handle_close(buffer->handle);
  native_handle_delete(buffer->handle);
  delete buffer;
}

void AHardwareBuffer_describe(const AHardwareBuffer* buffer, AHardwareBuffer_Desc* outDesc) {
  *outDesc = buffer->desc;
}

int AHardwareBuffer_lockPlanes(AHardwareBuffer* buffer, uint64_t usage, int32_t /*fence*/,
                               const ARect* /*rect*/, AHardwareBuffer_Planes* outPlanes) {
  if (buffer == nullptr || outPlanes == nullptr || usage != AHARDWAREBUFFER_USAGE_CPU_READ_OFTEN)
    return -EINVAL;
  const std::lock_guard<std::mutex> lock(buffer->mutex);
  *outPlanes = {};
  const int status = buffer->locks > 0 ? 0 : mapPixels(*buffer);
  if (status != 0) return status;
  ++buffer->locks;
  fillPlanes(*buffer, *outPlanes);
  return 0;
}

int AHardwareBuffer_unlock(AHardwareBuffer* buffer, int32_t* /*fence*/) {
  if (buffer == nullptr) return -EINVAL;
  const std::lock_guard<std::mutex> lock(buffer->mutex);
  if (buffer->locks == 0) return -EINVAL;
  if (--buffer->locks == 0) munmap(buffer->pixels, buffer->size);
  return 0;
}

const native_handle_t* AHardwareBuffer_getNativeHandle(const AHardwareBuffer* buffer) {
  return buffer == nullptr ? nullptr : buffer->handle;
}
