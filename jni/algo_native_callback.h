// The receiving end of one client's callbacks, which its cookie names: wakes the thread that waits for a
// request, or calls Java.
#pragma once

#include <jni.h>

#include <cstdint>

#include "algo_interface.h"

namespace orlu {

// The algorithm library may call back at any time, also for a client that Java has given up, and Java may
// give its client up in a callback; so this is never freed. It takes 56 bytes for each client on a 32-bit
// machine. All of it but the counters is written once, before anybody knows the cookie.
class AlgoNativeCallback {
public:
  // A new one, of which its client is the only owner. A null `env`, whose VM
  // is the other one, makes one that never reaches Java.
  static AlgoNativeCallback* create(JNIEnv* env, JavaVM* javaVm, int64_t clientId, int algoContextIndex);
  AlgoNativeCallback(const AlgoNativeCallback&) = delete;
  AlgoNativeCallback& operator=(const AlgoNativeCallback&) = delete;

  // The address of the AlgoResultCallback that ends up here; valid until the process ends.
  uint64_t cookie() const;
  // The calling thread's environment; null when it has none, or there is no VM.
  JNIEnv* environment() const;

  // From now on callbacks are counted and ignored; those that are under way end as they would have. The
  // callback class is let go, or the last callback that is inside Java does it. Without an `env` it stays
  // referenced.
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

  AlgoNativeCallback(JNIEnv* env, JavaVM* javaVm, int64_t clientId, int algoContextIndex);
  ~AlgoNativeCallback() = default;

  void findCallbackMethod(JNIEnv* env);
  // False, counted and logged for `operation`, when the client is gone.
  bool isOpen(const char* operation);
  // The calling thread's environment, when it can call callbackFromNative(), without a pending exception;
  // else null, logged for `operation`.
  JNIEnv* callbackEnv(const char* operation) const;
  // Tells Java that a full-async request is done. False when Java can't be reached, which is logged for
  // `operation`, or when the client has gone meanwhile and ends the request.
  bool announceCommonShot(uint64_t nativeReq, const char* operation);
  void callBack(JNIEnv* env, int64_t reqId, jobject map, const char* operation) const;

  const int64_t mClientId;
  AlgoResultCallback mResultCallback;
  JavaVM* const mJavaVm;
  jclass mCallbackClass = nullptr;  // a global reference, owned
  jmethodID mPostDataMethod = nullptr;
  const int mAlgoContextIndex;
  // Guarded by one mutex for all clients, which is held for a few instructions.
  bool mIsOpen = true;
  uint32_t mInsideJava = 0;                 // callbacks that use the class
  uint32_t mIgnored = 0;                    // callbacks for a client that was gone
  AlgoNativeCallback* mPrevious = nullptr;  // keeps all of them reachable, so that none counts as a leak
};

}  // namespace orlu
