// Host stand-in for the NDK's hardware buffers (libnativewindow.so): memory files with tightly packed rows.
// See native/buffer_handle.h for the native handle.
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

enum AHardwareBuffer_Format {
  AHARDWAREBUFFER_FORMAT_R8G8B8A8_UNORM = 1,
  AHARDWAREBUFFER_FORMAT_RAW16 = 0x20,
  AHARDWAREBUFFER_FORMAT_BLOB = 0x21,
  AHARDWAREBUFFER_FORMAT_Y8Cb8Cr8_420 = 0x23,
};

enum AHardwareBuffer_UsageFlags {
  AHARDWAREBUFFER_USAGE_CPU_READ_OFTEN = 3UL,
};

typedef struct AHardwareBuffer_Desc {
  uint32_t width;   // pixels; bytes for a BLOB
  uint32_t height;  // pixels; 1 for a BLOB
  uint32_t layers;
  uint32_t format;
  uint64_t usage;
  uint32_t stride;  // pixels; filled in by AHardwareBuffer_describe()
  uint32_t rfu0;
  uint64_t rfu1;
} AHardwareBuffer_Desc;

typedef struct AHardwareBuffer AHardwareBuffer;
typedef struct ARect ARect;

typedef struct AHardwareBuffer_Plane {
  void* data;
  uint32_t pixelStride;  // bytes from one sample of this plane to the next
  uint32_t rowStride;    // bytes
} AHardwareBuffer_Plane;

typedef struct AHardwareBuffer_Planes {
  uint32_t planeCount;
  AHardwareBuffer_Plane planes[4];
} AHardwareBuffer_Planes;

// Creates a buffer with one reference, which the caller releases. Returns 0 or a negative errno.
int AHardwareBuffer_allocate(const AHardwareBuffer_Desc* desc, AHardwareBuffer** outBuffer);
void AHardwareBuffer_acquire(AHardwareBuffer* buffer);
// Ignores null. The last release frees the buffer and its handle, and closes the handle's descriptors.
void AHardwareBuffer_release(AHardwareBuffer* buffer);
void AHardwareBuffer_describe(const AHardwareBuffer* buffer, AHardwareBuffer_Desc* outDesc);

// Maps the pixels; each call needs its own AHardwareBuffer_unlock(). `usage` must be CPU_READ_OFTEN, `fence`
// -1, and `rect` null. YUV has three planes: Y, Cb, Cr. Other formats have one plane; as on the device, its
// strides are 0 unless the format is R8G8B8A8. Returns 0 or a negative errno.
int AHardwareBuffer_lockPlanes(AHardwareBuffer* buffer, uint64_t usage, int32_t fence, const ARect* rect,
                               AHardwareBuffer_Planes* outPlanes);
// `fence` must be null. Returns 0 or a negative errno.
int AHardwareBuffer_unlock(AHardwareBuffer* buffer, int32_t* fence);

#ifdef __cplusplus
}
#endif
