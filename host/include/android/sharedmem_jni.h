// Host stand-in for the NDK's bridge from android.os.SharedMemory (libandroid.so).
#pragma once

#include <android/sharedmem.h>
#include <jni.h>

#ifdef __cplusplus
extern "C" {
#endif

// Returns a duplicate descriptor, which the caller closes; -1 for null, a closed object, or another class.
int ASharedMemory_dupFromJava(JNIEnv* env, jobject sharedMemory);

#ifdef __cplusplus
}
#endif
