// Host stand-in for the NDK's bridge from android.hardware.HardwareBuffer (libandroid.so).
#pragma once

#include <android/hardware_buffer.h>
#include <jni.h>

#ifdef __cplusplus
extern "C" {
#endif

// The buffer behind the Java object, borrowed: the object keeps it alive. Null for null, for a closed
// object and for an object of another class.
AHardwareBuffer* AHardwareBuffer_fromHardwareBuffer(JNIEnv* env, jobject hardwareBuffer);

#ifdef __cplusplus
}
#endif
