// The object behind a Java client handle: one algorithm context, the Java client's identity, and the result
// callback that wakes a waiting thread or calls Java.
#pragma once

#include <jni.h>

#include <cstdint>
#include <memory>

#include "algo_interface.h"
#include "algo_native_callback.h"
#include "algo_native_context.h"

namespace orlu {

class AlgoNativeClient {
public:
  // Connects to the algorithm library. If `env` is null, Java is never called.
  AlgoNativeClient(JNIEnv* env, int64_t clientId, int algoContextIndex);
  AlgoNativeClient& operator=(const AlgoNativeClient&) = delete;
  // First destroys the algorithm library's client; the library may call back meanwhile. Then closes the
  // callback and finishes the full-async requests that were never announced to Java. Must run on a thread
  // that is attached to the VM; otherwise the callback class stays referenced. Java may destroy the client
  // inside any callback.
  virtual ~AlgoNativeClient();

  // Converts a Java handle to its client; null for 0. On 32 bits only the low half of the handle is used.
  static AlgoNativeClient* of(int64_t handle);
  int64_t handle() const;
  // Returns a second object for the same client; destroying the copy has no effect. Native methods work on a
  // copy, because Java may destroy the client inside any callback, before the method returns.
  AlgoNativeClient copyForNative() const { return AlgoNativeClient(*this); }

  AlgoNativeContext& context() { return *mContext; }
  // Each request passes this cookie to the algorithm library to identify the callback. Valid until the
  // process ends; after the client is destroyed, callbacks are ignored.
  uint64_t callbackCookie() const;

  // Identifies the client in the request map. The value is never reused.
  const void* owner() const { return mCallback; }
  // For a destroyed client: finishes the full-async requests that Java will not finish. The algorithm library
  // no longer uses the blocks of full-async requests, so each block without another user is destroyed.
  void releaseRequests();

  // Handles a callback on the algorithm library's thread. Ignores malformed and unknown callbacks.
  void onPostProcessData(const android::hardware::hidl_vec<uint8_t>& data,
                         const android::hardware::hidl_vec<uint8_t>& extra,
                         const android::hardware::hidl_vec<android::hardware::hidl_handle>& handles);
  // Passes a light-stream event of `size` payload bytes to Java. Ignores payloads under 48 bytes.
  void onPostProcessDataLightStream(
      const uint8_t* payload, int size,
      const android::hardware::hidl_vec<android::hardware::hidl_handle>& handles);
  // Handles a finished request: wakes its waiting thread, or notifies Java if the request is full-async.
  void onPostProcessDataCommonShot(uint64_t nativeReq);

private:
  AlgoNativeClient(JNIEnv* env, JavaVM* javaVm, int64_t clientId, int algoContextIndex);
  AlgoNativeClient(const AlgoNativeClient& original) = default;

  AlgoNativeClient* mSelf;  // the original, also in a copy
  std::shared_ptr<AlgoNativeContext> mContext;
  AlgoNativeCallback* mCallback;  // never freed
};

}  // namespace orlu
