// Host stand-in for the NDK's bridge from android.os.SharedMemory (libandroid.so).
#pragma once

#include <android/sharedmem.h>
#include <jni.h>

#ifdef __cplusplus
extern "C" {
#endif

// Returns a duplicate of the Java object's descriptor; the caller closes the duplicate. Returns -1 for null,
// a closed object, or an object of another class.
int ASharedMemory_dupFromJava(JNIEnv* env, jobject sharedMemory);

#ifdef __cplusplus
}
#endif
