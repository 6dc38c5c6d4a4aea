// Host stand-in for the NDK's bridge from android.os.SharedMemory (libandroid.so).
#pragma once

#include <android/sharedmem.h>
#include <jni.h>

#ifdef __cplusplus
extern "C" {
#endif

// A duplicate of the descriptor behind the Java object, which the caller closes; -1 for null, for a
// closed object and for an object of another class.
int ASharedMemory_dupFromJava(JNIEnv* env, jobject sharedMemory);

#ifdef __cplusplus
}
#endif
