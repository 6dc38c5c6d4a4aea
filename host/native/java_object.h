// Reading the Java objects that stand for native ones, without leaving an exception behind.
#pragma once

#include <jni.h>

namespace orlu::host {

// True when the object is one of the named class; false for null.
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

// The object's field of its own class; null, cleared, when it has none of that name and type.
inline jfieldID fieldOf(JNIEnv* env, jobject object, const char* name, const char* signature) {
  jclass clazz = env->GetObjectClass(object);
  jfieldID field = env->GetFieldID(clazz, name, signature);
  if (field == nullptr) env->ExceptionClear();
  env->DeleteLocalRef(clazz);
  return field;
}

// Throws `className`, unless the class itself can't be found, which throws as well.
inline void throwNew(JNIEnv* env, const char* className, const char* message) {
  jclass clazz = env->FindClass(className);
  if (clazz != nullptr) env->ThrowNew(clazz, message);
}

}  // namespace orlu::host
