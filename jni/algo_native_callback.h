// Receives the callbacks of one client. Requests identify this object by its cookie. A callback wakes the
// thread that waits for the request, or calls Java.
#pragma once

#include <jni.h>

#include <cstdint>
#include <memory>

#include "algo_interface.h"
#include "algo_native_context.h"

namespace orlu {

// Never freed: the algorithm library may call back at any time, even for a client that Java has destroyed,
// and Java may destroy its client inside a callback. Each object takes 72 bytes on the phone. Everything
// except the context and the counters is written once, before the cookie is passed on.
class AlgoNativeCallback {
public:
  // `javaVm` is the VM of `env`; if `env` is null, Java is never called.
  static AlgoNativeCallback* create(JNIEnv* env, JavaVM* javaVm, std::shared_ptr<AlgoNativeContext> context,
                                    int64_t clientId, int algoContextIndex);
  AlgoNativeCallback(const AlgoNativeCallback&) = delete;
  AlgoNativeCallback& operator=(const AlgoNativeCallback&) = delete;

  // The address of this object's AlgoResultCallback; valid until the process ends.
  uint64_t cookie() const;
  // The calling thread's environment; null if the thread is not attached or there is no VM.
  JNIEnv* environment() const;

  // Ends the client's callbacks: later callbacks are counted and ignored, running callbacks finish as usual.
  // Releases the callback class. If callbacks are inside Java, the last of them releases the class instead.
  // Otherwise, if `env` is null, the class stays referenced.
  void close(JNIEnv* env);

  // See AlgoNativeClient for these functions.
  void onPostProcessData(const android::hardware::hidl_vec<uint8_t>& data,
                         const android::hardware::hidl_vec<android::hardware::hidl_handle>& handles);
  void onPostProcessDataLightStream(
      const uint8_t* payload, int size,
      const android::hardware::hidl_vec<android::hardware::hidl_handle>& handles);
  void onPostProcessDataCommonShot(uint64_t nativeReq);

private:
  class InsideJava;

  AlgoNativeCallback(JNIEnv* env, JavaVM* javaVm, std::shared_ptr<AlgoNativeContext> context,
                     int64_t clientId, int algoContextIndex);
  ~AlgoNativeCallback() = default;

  void findCallbackMethod(JNIEnv* env);
  // Returns the client's context. For a destroyed client, counts and logs the callback and returns null.
  std::shared_ptr<AlgoNativeContext> open(const char* operation);
  // Returns the calling thread's environment if it can call callbackFromNative(); clears a pending exception
  // and logs it. Otherwise logs the reason for `operation` and returns null.
  JNIEnv* callbackEnv(const char* operation) const;
  // Handles the library's callback for a request. The request may be finished already.
  void handleShot(uint64_t nativeReq, AlgoNativeContext& context, const char* operation);
  // Tells Java that it may finish a full-async request. If Java can't be called or the call fails, logs
  // that; the request is finished when its client is destroyed. Returns true if setAnnounced() has marked the
  // request, even if the call to Java fails.
  bool announceCommonShot(uint64_t nativeReq, AlgoNativeContext& context, const char* operation);
  // Calls Java with a map that contains the id. Returns false if the map can't be created or the call threw.
  bool callWithAddress(JNIEnv* env, uint64_t nativeReq, int64_t reqId, const char* operation) const;
  // Returns false if the call threw, and logs that.
  bool callBack(JNIEnv* env, int64_t reqId, jobject map, const char* operation) const;

  const int64_t mClientId;
  AlgoResultCallback mResultCallback;
  JavaVM* const mJavaVm;
  jclass mCallbackClass = nullptr;  // a global reference, owned
  jmethodID mPostDataMethod = nullptr;
  const int mAlgoContextIndex;
  // Guarded by a mutex that all clients share; it is held for a few instructions at a time.
  std::shared_ptr<AlgoNativeContext> mContext;  // null after the client is destroyed
  uint32_t mInsideJava = 0;                     // callbacks that use the class
  uint32_t mIgnored = 0;                        // callbacks after the client was destroyed
  AlgoNativeCallback* mPrevious = nullptr;      // keeps all objects reachable for leak detectors
};

}  // namespace orlu
