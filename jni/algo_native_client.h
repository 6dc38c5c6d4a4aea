// The object behind a Java client handle: one algorithm context, the Java client's identity, and the result
// callback that wakes a waiting thread or reaches Java.
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
  // Connects to the algorithm library. A null `env` makes a client that never reaches Java.
  AlgoNativeClient(JNIEnv* env, int64_t clientId, int algoContextIndex);
  AlgoNativeClient& operator=(const AlgoNativeClient&) = delete;
  // Destroys the algorithm library's client first, which may call back meanwhile, then closes the callback,
  // then finishes the full-async requests that were never announced to Java. Must run on a thread that is
  // attached to the VM, else the callback class stays referenced. Java may cause it from any callback.
  virtual ~AlgoNativeClient();

  // Converts a Java handle to its client; null for 0. On 32 bits only the low half of the handle is used.
  static AlgoNativeClient* of(int64_t handle);
  int64_t handle() const;
  // A second object for the same client. What a native works on must stay valid until the native returns,
  // but Java may destroy the client in any callback; so natives work on a copy. Destroying it has no effect.
  AlgoNativeClient copyForNative() const { return AlgoNativeClient(*this); }

  AlgoNativeContext& context() { return *mContext; }
  // What a request hands to the algorithm library to be called back by. Valid until the process ends; when
  // the client is gone, callbacks are ignored.
  uint64_t callbackCookie() const;

  // Names the client in the request map. Never reused.
  const void* owner() const { return mCallback; }
  // Finishes the client's full-async requests that Java will not finish, and destroys the blocks that only
  // the algorithm library might still have used. For a client that is gone.
  void releaseRequests();

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
  AlgoNativeClient(const AlgoNativeClient& original) = default;

  AlgoNativeClient* mSelf;  // the original, in a copy
  std::shared_ptr<AlgoNativeContext> mContext;
  AlgoNativeCallback* mCallback;  // never freed
};

}  // namespace orlu
