// Small RAII owners and checks for JNI. Use each on the thread of its environment.
#pragma once

#include <jni.h>

#include <algorithm>

namespace orlu {

// Clears a pending Java exception. Returns true if there was one.
inline bool clearException(JNIEnv* env) {
  if (!env->ExceptionCheck()) return false;
  env->ExceptionClear();
  return true;
}

// Returns `result`, and clears the pending exception if `result` is null. For results of JNI functions that
// throw only when they return null.
template <typename T>
T clearIfNull(JNIEnv* env, T result) {
  if (result == nullptr) clearException(env);
  return result;
}

// Calls `attach`: JavaVM::AttachCurrentThread() or AttachCurrentThreadAsDaemon(). Their first parameter is a
// void** in the JDK's jni.h and a JNIEnv** in Android's. `arguments` may be null. Returns the VM's result.
template <typename Env>
jint attachThread(JavaVM* vm, jint (JavaVM::*attach)(Env**, void*), JNIEnv** env,
                  JavaVMAttachArgs* arguments) {
  return (vm->*attach)(reinterpret_cast<Env**>(env), arguments);
}

// Owns one local reference, passed to the constructor or to reset(). All other functions of this library only
// borrow a raw jobject that they receive. If `env` is null, an enclosing local frame must free the reference.
template <typename T = jobject>
class ScopedLocalRef {
public:
  ScopedLocalRef(JNIEnv* env, T object) : mEnv(env), mObject(object) {}
  ScopedLocalRef(ScopedLocalRef&& other) noexcept : mEnv(other.mEnv), mObject(other.release()) {}
  ScopedLocalRef(const ScopedLocalRef&) = delete;
  ScopedLocalRef& operator=(const ScopedLocalRef&) = delete;
  ~ScopedLocalRef() { reset(nullptr); }

  // Frees the owned reference and takes over `object`.
  void reset(T object) {
    if (mObject != nullptr && mEnv != nullptr) mEnv->DeleteLocalRef(mObject);
    mObject = object;
  }

  T get() const { return mObject; }
  explicit operator bool() const { return mObject != nullptr; }

  // Passes ownership of the reference to the caller.
  T release() {
    T object = mObject;
    mObject = nullptr;
    return object;
  }

private:
  JNIEnv* mEnv;
  T mObject;
};

// Frees every local reference that is created during its lifetime. Threads that stay attached never return to
// Java; without such a frame, their references would accumulate until the VM's table overflows.
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

  // False if the VM had no memory for the frame.
  explicit operator bool() const { return mPushed; }

private:
  JNIEnv* mEnv;
  bool mPushed;
};

// Holds the characters of a Java string: zero-terminated, in the VM's modified UTF-8.
class ScopedUtfChars {
public:
  // `string` may be null.
  ScopedUtfChars(JNIEnv* env, jstring string)
      : mEnv(env),
        mString(string),
        mChars(string == nullptr ? nullptr : clearIfNull(env, env->GetStringUTFChars(string, nullptr))) {}
  ScopedUtfChars(const ScopedUtfChars&) = delete;
  ScopedUtfChars& operator=(const ScopedUtfChars&) = delete;
  ~ScopedUtfChars() {
    if (mChars != nullptr) mEnv->ReleaseStringUTFChars(mString, mChars);
  }

  // Null for a null string, or if the VM has no memory for the characters.
  const char* get() const { return mChars; }

private:
  JNIEnv* mEnv;
  jstring mString;
  const char* mChars;
};

// Selects the VM's array functions by element type.
template <typename Element>
struct JniArray;
#define ORLU_JNI_ARRAY(Element, Name)                                               \
  template <>                                                                       \
  struct JniArray<Element> {                                                        \
    using Type = Element##Array;                                                    \
    static constexpr auto kNew = &JNIEnv::New##Name##Array;                         \
    static constexpr auto kGetElements = &JNIEnv::Get##Name##ArrayElements;         \
    static constexpr auto kReleaseElements = &JNIEnv::Release##Name##ArrayElements; \
    static constexpr auto kSetRegion = &JNIEnv::Set##Name##ArrayRegion;             \
  }
ORLU_JNI_ARRAY(jbyte, Byte);
ORLU_JNI_ARRAY(jint, Int);
ORLU_JNI_ARRAY(jlong, Long);
ORLU_JNI_ARRAY(jfloat, Float);
ORLU_JNI_ARRAY(jdouble, Double);
#undef ORLU_JNI_ARRAY

// Holds the elements of a Java array, and writes them back to the array when destroyed.
template <typename Element>
class ScopedElements {
  using Functions = JniArray<Element>;

public:
  ScopedElements(JNIEnv* env, typename Functions::Type array)
      : mEnv(env),
        mArray(array),
        mElements(clearIfNull(env, (env->*Functions::kGetElements)(array, nullptr))),
        mLength(mElements == nullptr ? 0 : env->GetArrayLength(array)) {}
  ScopedElements(const ScopedElements&) = delete;
  ScopedElements& operator=(const ScopedElements&) = delete;
  ~ScopedElements() {
    if (mElements != nullptr) (mEnv->*Functions::kReleaseElements)(mArray, mElements, 0);
  }

  // Null, with length 0, if the VM has no memory for the elements.
  Element* get() const { return mElements; }
  jsize length() const { return mLength; }

  // Copies the first elements, at most `capacity`; none if `capacity` is below 1.
  template <typename T>
  void copyTo(T* out, int capacity) const {
    std::copy_n(mElements, std::max(0, std::min(static_cast<int>(mLength), capacity)), out);
  }

private:
  JNIEnv* mEnv;
  typename Functions::Type mArray;
  Element* mElements;
  jsize mLength;
};

// Reserves `count` local references until the native method returns.
inline void reserveLocalReferences(JNIEnv* env, jint count) {
  if (env->EnsureLocalCapacity(count) != JNI_OK) clearException(env);
}

// Replaces with '?' every byte of `text` that is not part of a complete (modified) UTF-8 character.
// NewStringUTF() may abort on such a byte, or read past the end of `text` if the last character is truncated.
// `text` is zero-terminated.
void mendText(char* text);

// Like IsInstanceOf(), but false for a null object or class.
inline bool isInstance(JNIEnv* env, jobject object, jclass clazz) {
  return object != nullptr && clazz != nullptr && env->IsInstanceOf(object, clazz);
}

}  // namespace orlu
