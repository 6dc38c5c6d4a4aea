// Host stand-in for the vendor side of hardware buffers (libnativewindow.so).
#pragma once

#include <android/hardware_buffer.h>
#include <cutils/native_handle.h>

#ifdef __cplusplus
extern "C" {
#endif

// Returns the buffer's handle, borrowed; null for null.
const native_handle_t* AHardwareBuffer_getNativeHandle(const AHardwareBuffer* buffer);

enum CreateFromHandleMethod {
  AHARDWAREBUFFER_CREATE_FROM_HANDLE_METHOD_REGISTER = 2,
};

// Creates a buffer from a handle with any number of descriptors and integers. Supports only the method
// REGISTER: the buffer takes over the handle, and closes and deletes it when the last reference to the buffer
// is released. Returns 0, or a negative errno; on failure, the caller still owns the handle.
int AHardwareBuffer_createFromHandle(const AHardwareBuffer_Desc* desc, const native_handle_t* handle,
                                     int32_t method, AHardwareBuffer** outBuffer);

#ifdef __cplusplus
}
#endif
