#include "algo_native_client.h"

#include "algo_interface_layout.h"
#include "algo_native_request_map.h"
#include "log.h"

namespace orlu {
namespace {

using android::hardware::hidl_handle;
using android::hardware::hidl_vec;

constexpr char kLogTag[] = "_V_VASJNI-AlgoNativeClient";

JavaVM* javaVmOf(JNIEnv* env) {
  JavaVM* javaVm = nullptr;
  if (env != nullptr) env->GetJavaVM(&javaVm);
  return javaVm;
}

}  // namespace

AlgoNativeClient::AlgoNativeClient(JNIEnv* env, int64_t clientId, int algoContextIndex)
    : AlgoNativeClient(env, javaVmOf(env), clientId, algoContextIndex) {}

AlgoNativeClient::AlgoNativeClient(JNIEnv* env, JavaVM* javaVm, int64_t clientId, int algoContextIndex)
    : mSelf(this),
      mContext(std::make_shared<AlgoNativeContext>(javaVm)),
      mCallback(AlgoNativeCallback::create(env, javaVm, mContext, clientId, algoContextIndex)) {
  LOGD("AlgoNativeClient constructor");
}

AlgoNativeClient::~AlgoNativeClient() {
  if (mSelf != this) return;
  LOGD("AlgoNativeClient destructor");
  JNIEnv* const env = mCallback->environment();
  if (env == nullptr) LOGE("%s: JavaVM GetEnv ERROR", __func__);
  // Order matters: the library may call back until its client is destroyed.
  mContext->destroyClient();
  mCallback->close(env);
  releaseRequests();
}

void AlgoNativeClient::releaseRequests() {
  void* block = nullptr;
  while (AlgoNativeRequestMap::getInstance()->releaseOwned(owner(), block)) mContext->destroyMetadata(block);
}

AlgoNativeClient* AlgoNativeClient::of(int64_t handle) {
  return reinterpret_cast<AlgoNativeClient*>(static_cast<uintptr_t>(handle));
}

int64_t AlgoNativeClient::handle() const {
  return static_cast<int64_t>(reinterpret_cast<uintptr_t>(mSelf));
}

uint64_t AlgoNativeClient::callbackCookie() const {
  return mCallback->cookie();
}

void AlgoNativeClient::onPostProcessData(const hidl_vec<uint8_t>& data, const hidl_vec<uint8_t>& /*extra*/,
                                         const hidl_vec<hidl_handle>& handles) {
  mCallback->onPostProcessData(data, handles);
}

void AlgoNativeClient::onPostProcessDataLightStream(const uint8_t* payload, int size,
                                                    const hidl_vec<hidl_handle>& handles) {
  mCallback->onPostProcessDataLightStream(payload, size, handles);
}

void AlgoNativeClient::onPostProcessDataCommonShot(uint64_t nativeReq) {
  mCallback->onPostProcessDataCommonShot(nativeReq);
}

}  // namespace orlu
