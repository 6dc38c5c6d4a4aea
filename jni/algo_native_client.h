// The object behind a Java client handle: one algorithm context, the Java client's identity, and the result
// callback that wakes a waiting thread or reaches Java.
#pragma once

#include <jni.h>

#include <cstdint>

#include "algo_interface.h"
#include "algo_native_callback.h"
#include "algo_native_context.h"

namespace orlu {

class AlgoNativeClient {
public:
  // Connects to the algorithm library. A null `env` makes a client that never reaches Java.
  AlgoNativeClient(JNIEnv* env, int64_t clientId, int algoContextIndex);
  AlgoNativeClient(const AlgoNativeClient&) = delete;
  AlgoNativeClient& operator=(const AlgoNativeClient&) = delete;
  // Ends the algorithm library's client first, which may still call back meanwhile, then the callbacks, then
  // its full-async requests that were never announced to Java. Must run on a thread that is attached to the
  // VM, else the callback class stays referenced. Java may cause it from a callback.
  virtual ~AlgoNativeClient();

  // The client behind a Java handle, of which a 32-bit machine has the lower half; null for none.
  static AlgoNativeClient* of(int64_t handle);
  int64_t handle() const;

  AlgoNativeContext& context() { return mContext; }
  // What a request hands to the algorithm library to be called back by. Valid until the process ends; when
  // the client is gone, callbacks are ignored.
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
  AlgoNativeClient(JNIEnv* env, JavaVM* javaVm, int64_t clientId, int algoContextIndex);

  AlgoNativeClient* mSelf;
  AlgoNativeContext mContext;
  AlgoNativeCallback* mCallback;  // outlives this object
};

}  // namespace orlu
