// Host stand-in for the NDK's conversion of the Java class android.hardware.HardwareBuffer to AHardwareBuffer
// (libandroid.so).
#pragma once

#include <android/hardware_buffer.h>
#include <jni.h>

#ifdef __cplusplus
extern "C" {
#endif

// Returns the Java object's buffer, borrowed: the object keeps it alive. Returns null if the object is null,
// closed, or of another class.
AHardwareBuffer* AHardwareBuffer_fromHardwareBuffer(JNIEnv* env, jobject hardwareBuffer);

#ifdef __cplusplus
}
#endif
