// Compares our headers of shared memory and hardware buffers with Debian's. For hardware buffers, Debian has
// only the pixel formats, named HAL_PIXEL_FORMAT_..., and the conversion from Java objects.
#include <android/hardware_buffer_jni.h>
#include <android/sharedmem_jni.h>
#include <system/graphics-base-v1.0.h>

#include "agreement.h"
#include "ours/android/hardware_buffer_jni.h"
#include "ours/android/sharedmem.h"
#include "ours/android/sharedmem_jni.h"

FUNCTION(ASharedMemory_create);
FUNCTION(ASharedMemory_getSize);
FUNCTION(ASharedMemory_dupFromJava);
FUNCTION(AHardwareBuffer_fromHardwareBuffer);

#define FORMAT(name, platform)                                      \
  static_assert(static_cast<long>(AHARDWAREBUFFER_FORMAT_##name) == \
                static_cast<long>(HAL_PIXEL_FORMAT_##platform))
FORMAT(R8G8B8A8_UNORM, RGBA_8888);
FORMAT(RAW16, RAW16);
FORMAT(BLOB, BLOB);
FORMAT(Y8Cb8Cr8_420, YCBCR_420_888);
