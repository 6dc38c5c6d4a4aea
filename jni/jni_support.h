// Small owners and checks for JNI. All of them are used on the thread of the environment they were given.
#pragma once

#include <jni.h>

namespace orlu {

// Clears a pending Java exception. True when there was one.
inline bool clearException(JNIEnv* env) {
  if (!env->ExceptionCheck()) return false;
  env->ExceptionClear();
  return true;
}

// Owns one local reference; a raw jobject parameter anywhere in this library is borrowed.
template <typename T = jobject>
class ScopedLocalRef {
public:
  ScopedLocalRef(JNIEnv* env, T object) : mEnv(env), mObject(object) {}
  ScopedLocalRef(ScopedLocalRef&& other) noexcept : mEnv(other.mEnv), mObject(other.release()) {}
  ScopedLocalRef(const ScopedLocalRef&) = delete;
  ScopedLocalRef& operator=(const ScopedLocalRef&) = delete;
  ~ScopedLocalRef() { reset(nullptr); }

  // Frees what was owned and owns `object` instead.
  void reset(T object) {
    if (mObject != nullptr) mEnv->DeleteLocalRef(mObject);
    mObject = object;
  }

  T get() const { return mObject; }
  explicit operator bool() const { return mObject != nullptr; }

  // Hands the reference to the caller.
  T release() {
    T object = mObject;
    mObject = nullptr;
    return object;
  }

private:
  JNIEnv* mEnv;
  T mObject;
};

// Frees every local reference made during its life. Threads that stay attached for ever never return to
// Java, so without such a frame their references would pile up until the table overflows.
class ScopedLocalFrame {
public:
  ScopedLocalFrame(JNIEnv* env, jint capacity) : mEnv(env), mPushed(env->PushLocalFrame(capacity) == JNI_OK) {
    if (!mPushed) clearException(env);
  }
  ScopedLocalFrame(const ScopedLocalFrame&) = delete;
  ScopedLocalFrame& operator=(const ScopedLocalFrame&) = delete;
  ~ScopedLocalFrame() {
    if (mPushed) mEnv->PopLocalFrame(nullptr);
  }

private:
  JNIEnv* mEnv;
  bool mPushed;
};

// Tells the VM that `count` local references more will be alive until the native method returns.
inline void reserveLocalReferences(JNIEnv* env, jint count) {
  if (env->EnsureLocalCapacity(count) != JNI_OK) clearException(env);
}

// Makes '?' of every byte that belongs to no whole character, in a zero-terminated text that came from
// elsewhere: given to NewStringUTF(), a VM may read past the end of a character that is cut short, or end the
// process.
void mendText(char* text);

// IsInstanceOf() that takes a null object or a class that was not found for "no".
inline bool isInstance(JNIEnv* env, jobject object, jclass clazz) {
  return object != nullptr && clazz != nullptr && env->IsInstanceOf(object, clazz);
}

}  // namespace orlu
