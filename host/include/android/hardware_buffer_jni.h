// Host stand-in for the NDK's bridge from android.hardware.HardwareBuffer (libandroid.so).
#pragma once

#include <android/hardware_buffer.h>
#include <jni.h>

#ifdef __cplusplus
extern "C" {
#endif

// Returns the object's buffer, borrowed; null for null, a closed object, or an object of another class.
AHardwareBuffer* AHardwareBuffer_fromHardwareBuffer(JNIEnv* env, jobject hardwareBuffer);

#ifdef __cplusplus
}
#endif
