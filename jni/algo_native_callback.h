// The receiving end of one client's callbacks, which its cookie names: wakes the thread that waits for a
// request, or calls Java.
#pragma once

#include <jni.h>

#include <cstdint>
#include <memory>

#include "algo_interface.h"
#include "algo_native_context.h"

namespace orlu {

// The algorithm library may call back at any time, also for a client that Java has destroyed, and Java may
// destroy its client in a callback; so this object is never freed. It takes 64 bytes for each client on a
// 32-bit machine. All of it but the context and the counters is written once, before anybody knows the
// cookie.
class AlgoNativeCallback {
public:
  // Creates a callback for a client and its context. `javaVm` is the VM of `env`; if `env` is null, Java is
  // never called.
  static AlgoNativeCallback* create(JNIEnv* env, JavaVM* javaVm, std::shared_ptr<AlgoNativeContext> context,
                                    int64_t clientId, int algoContextIndex);
  AlgoNativeCallback(const AlgoNativeCallback&) = delete;
  AlgoNativeCallback& operator=(const AlgoNativeCallback&) = delete;

  // The address of the AlgoResultCallback that ends up here; valid until the process ends.
  uint64_t cookie() const;
  // The calling thread's environment; null when it has none, or there is no VM.
  JNIEnv* environment() const;

  // From now on callbacks are counted and ignored; those under way finish as usual. The callback class is
  // released here, or by the last callback that is inside Java. Without an `env` it stays referenced.
  void close(JNIEnv* env);

  // These are AlgoNativeClient's; see there.
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
  // The client's context, or null, counted and logged for `operation`, if the client is gone.
  std::shared_ptr<AlgoNativeContext> open(const char* operation);
  // The calling thread's environment, when it can call callbackFromNative(), without a pending exception;
  // else null, logged for `operation`.
  JNIEnv* callbackEnv(const char* operation) const;
  // The library has called back for a request, which may be finished already.
  void handleShot(uint64_t nativeReq, AlgoNativeContext& context, const char* operation);
  // Tells Java that it may finish a full-async request. An announcement that does not reach Java is logged
  // for `operation`, and leaves the request to the end of its client. False if it was not tried.
  bool announceCommonShot(uint64_t nativeReq, AlgoNativeContext& context, const char* operation);
  // Makes the map for Java and calls Java with it. False if there was no memory for it, or the call threw.
  bool callWithAddress(JNIEnv* env, uint64_t nativeReq, int64_t reqId, const char* operation) const;
  // False if the call threw, which is logged.
  bool callBack(JNIEnv* env, int64_t reqId, jobject map, const char* operation) const;

  const int64_t mClientId;
  AlgoResultCallback mResultCallback;
  JavaVM* const mJavaVm;
  jclass mCallbackClass = nullptr;  // a global reference, owned
  jmethodID mPostDataMethod = nullptr;
  const int mAlgoContextIndex;
  // Guarded by one mutex for all clients, which is held for a few instructions.
  std::shared_ptr<AlgoNativeContext> mContext;  // null when the client is gone
  uint32_t mInsideJava = 0;                     // callbacks that use the class
  uint32_t mIgnored = 0;                        // callbacks for a client that was gone
  AlgoNativeCallback* mPrevious = nullptr;      // keeps all of them reachable, so that none counts as a leak
};

}  // namespace orlu
