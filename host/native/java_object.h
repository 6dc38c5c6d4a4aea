// Helpers for reading Java objects that represent native ones, and for throwing exceptions.
#pragma once

#include <jni.h>

namespace orlu::host {

// Returns whether the object is an instance of the named class; false for null. Leaves no exception pending.
inline bool isInstanceOf(JNIEnv* env, jobject object, const char* className) {
  if (object == nullptr) return false;
  jclass clazz = env->FindClass(className);
  if (clazz == nullptr) {
    env->ExceptionClear();
    return false;
  }
  const bool answer = env->IsInstanceOf(object, clazz) != JNI_FALSE;
  env->DeleteLocalRef(clazz);
  return answer;
}

// Returns the id of a field of the object. If its class has no such field, returns null and leaves no
// exception pending.
inline jfieldID fieldOf(JNIEnv* env, jobject object, const char* name, const char* signature) {
  jclass clazz = env->GetObjectClass(object);
  jfieldID field = env->GetFieldID(clazz, name, signature);
  if (field == nullptr) env->ExceptionClear();
  env->DeleteLocalRef(clazz);
  return field;
}

// Throws a new `className`. If the class can't be found, the exception of the lookup stays pending instead.
inline void throwNew(JNIEnv* env, const char* className, const char* message) {
  jclass clazz = env->FindClass(className);
  if (clazz != nullptr) env->ThrowNew(clazz, message);
}

}  // namespace orlu::host
