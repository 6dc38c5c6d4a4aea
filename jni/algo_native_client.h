// The object behind a Java client handle: one algorithm context, the Java client's identity, and the result
// callback that wakes a waiting thread or reaches Java.
#pragma once

#include <jni.h>

#include <cstdint>

#include "algo_interface.h"
#include "algo_native_context.h"

namespace orlu {

class AlgoNativeClient {
public:
  // Connects to the algorithm library. A null `env` makes a client that never reaches Java.
  AlgoNativeClient(JNIEnv* env, int64_t clientId, int algoContextIndex);
  AlgoNativeClient(const AlgoNativeClient&) = delete;
  AlgoNativeClient& operator=(const AlgoNativeClient&) = delete;
  // Must run on a thread that is attached to the VM, else the callback class stays referenced.
  virtual ~AlgoNativeClient();

  AlgoNativeContext& context() { return mContext; }
  // What a request hands to the algorithm library to be called back by; of use while the client lives.
  uint64_t callbackCookie() const;

  // Every callback of the algorithm library, on its own threads. What is not understood is ignored.
  void onPostProcessData(const android::hardware::hidl_vec<uint8_t>& data,
                         const android::hardware::hidl_vec<uint8_t>& extra,
                         const android::hardware::hidl_vec<android::hardware::hidl_handle>& handles);
  // A light-stream event of `size` payload bytes goes to Java. Payloads under 48 bytes are ignored.
  void onPostProcessDataLightStream(
      const uint8_t* payload, int size,
      const android::hardware::hidl_vec<android::hardware::hidl_handle>& handles);
  // A request is done: wakes its waiting thread, or tells Java when it is a full-async one.
  void onPostProcessDataCommonShot(uint64_t nativeReq);

private:
  // The calling thread's environment, when it can call callbackFromNative(); else null, logged for
  // `function`.
  JNIEnv* callbackEnv(const char* function) const;
  // Tells Java that a full-async request is done. False, logged for `function`, when Java can't be reached.
  bool announceCommonShot(uint64_t nativeReq, const char* function);
  void callBack(JNIEnv* env, int64_t reqId, jobject map);

  AlgoNativeClient* mSelf;
  int64_t mClientId;
  int mAlgoContextIndex;
  AlgoNativeContext mContext;
  AlgoResultCallback mResultCallback;
  JavaVM* mJavaVm = nullptr;
  jclass mCallbackClass = nullptr;  // a global reference, owned
  jmethodID mPostDataMethod = nullptr;
};

}  // namespace orlu
