#include "algo_native_client.h"

#include <cstring>
#include <string>

#include "algo_native_request_map.h"
#include "camera_metadata_parser.h"
#include "jni_support.h"
#include "log.h"

namespace orlu {
namespace {

using android::hardware::hidl_handle;
using android::hardware::hidl_vec;

constexpr char kLogTag[] = "_V_VASJNI-AlgoNativeClient";

constexpr char kCallbackClass[] = "com/orlu/orlu3rdalgoservice/binderserver/RequestProcessor";
constexpr char kCallbackMethod[] = "callbackFromNative";
constexpr char kCallbackSignature[] = "(IJIJLjava/util/HashMap;)V";

// Local references that one callback into Java makes: the parser's classes, a map and its values.
constexpr jint kCallbackReferences = 96;

// The first integer of the first handle; false when there is no such handle.
bool firstHandleWord(const hidl_vec<hidl_handle>& handles, int32_t& word) {
  if (handles.size() == 0) return false;
  const native_handle_t* handle = handles[0].getNativeHandle();
  if (handle == nullptr || handle->numFds < 0 || handle->numInts < 0 ||
      (handle->numFds == 0 && handle->numInts == 0)) {
    return false;
  }
  word = handle->data[0];
  return true;
}

}  // namespace

AlgoNativeClient::AlgoNativeClient(JNIEnv* env, int64_t clientId, int algoContextIndex)
    : mSelf(this), mClientId(clientId), mAlgoContextIndex(algoContextIndex) {
  LOGD("AlgoNativeClient constructor");
  mResultCallback = [client = mSelf](const hidl_vec<uint8_t>& data, const hidl_vec<uint8_t>& extra,
                                     const hidl_vec<hidl_handle>& handles) {
    client->onPostProcessData(data, extra, handles);
  };
  if (env == nullptr) return;
  env->GetJavaVM(&mJavaVm);
  ScopedLocalRef<jclass> found(env, env->FindClass(kCallbackClass));
  clearException(env);
  if (!found) return;
  mCallbackClass = static_cast<jclass>(env->NewGlobalRef(found.get()));
  if (mCallbackClass == nullptr) return;
  mPostDataMethod = env->GetStaticMethodID(mCallbackClass, kCallbackMethod, kCallbackSignature);
  clearException(env);
}

AlgoNativeClient::~AlgoNativeClient() {
  LOGD("AlgoNativeClient destructor");
  JNIEnv* env = nullptr;
  if (mJavaVm == nullptr || mJavaVm->GetEnv(reinterpret_cast<void**>(&env), JNI_VERSION_1_4) != JNI_OK) {
    LOGE("%s: JavaVM GetEnv ERROR", __func__);
    return;
  }
  if (mCallbackClass != nullptr) env->DeleteGlobalRef(mCallbackClass);
}

uint64_t AlgoNativeClient::callbackCookie() const {
  return reinterpret_cast<uintptr_t>(&mResultCallback);
}

void AlgoNativeClient::onPostProcessData(const hidl_vec<uint8_t>& data, const hidl_vec<uint8_t>& /*extra*/,
                                         const hidl_vec<hidl_handle>& handles) {
  const size_t size = data.size();
  LOGD("on callback %d %d", static_cast<int>(size), static_cast<int>(handles.size()));
  if (size <= kCallbackNameOffset || data.data() == nullptr) return;

  CallbackHeader header;
  std::memcpy(&header, data.data(), kCallbackNameOffset);
  const size_t room = size - kCallbackNameOffset;
  if (header.nameLength < 1 || static_cast<size_t>(header.nameLength) > room) return;
  const auto nameLength = static_cast<size_t>(header.nameLength);
  const std::string name(reinterpret_cast<const char*>(data.data()) + kCallbackNameOffset, nameLength);
  if (name == kLightStreamCallback) {
    onPostProcessDataLightStream(data.data() + kCallbackNameOffset + nameLength,
                                 static_cast<int>(room - nameLength), handles);
  } else if (name == kShotCallback) {
    onPostProcessDataCommonShot(header.nativeReq);
  }
}

void AlgoNativeClient::onPostProcessDataCommonShot(uint64_t nativeReq) {
  const auto printedReq = static_cast<unsigned long long>(nativeReq);
  // Java may destroy this client from its callback, so what the last line tells is kept here.
  const auto clientId = static_cast<long long>(mClientId);
  const int contextIndex = mAlgoContextIndex;
  LOGD("%s: E, clientId = %lld, algoContextIndex = %d, nativeReq %llu", __func__, clientId, contextIndex,
       printedReq);
  bool isFullAsync = false;
  if (!AlgoNativeRequestMap::getInstance()->getIsFullAsync(nativeReq, isFullAsync)) return;
  if (isFullAsync) {
    if (!announceCommonShot(nativeReq, __func__)) return;
  } else {
    AlgoNativeRequestMap::getInstance()->onCallbackReceived(nativeReq);
  }
  LOGD("%s: X, clientId = %lld, algoContextIndex = %d, nativeReq %llu, isFullAsync %d", __func__, clientId,
       contextIndex, printedReq, isFullAsync ? 1 : 0);
}

bool AlgoNativeClient::announceCommonShot(uint64_t nativeReq, const char* function) {
  JNIEnv* const env = callbackEnv(function);
  if (env == nullptr) return false;
  const int64_t reqId = AlgoNativeRequestMap::getInstance()->getRequestId(nativeReq);
  LOGD("%s: clientId = %lld, algoContextIndex = %d, reqId = %lld, nativeReq %llu", function,
       static_cast<long long>(mClientId), mAlgoContextIndex, static_cast<long long>(reqId),
       static_cast<unsigned long long>(nativeReq));
  ScopedLocalFrame frame(env, kCallbackReferences);
  CameraMetadataParser parser;
  if (parser.initFromEnv(env, true) != 0) LOGE_AS(function, "init parser failed");
  jobject map = parser.createHashMap();
  parser.putLongIntoHashMap(static_cast<int64_t>(nativeReq), "nativeRequestAddr", map);
  callBack(env, reqId, map);
  return true;
}

void AlgoNativeClient::onPostProcessDataLightStream(const uint8_t* payload, int size,
                                                    const hidl_vec<hidl_handle>& handles) {
  JNIEnv* const env = callbackEnv(__func__);
  if (env == nullptr) return;
  LightStreamEvent event;
  if (payload == nullptr || size < static_cast<int>(sizeof event)) return;
  std::memcpy(&event, payload, sizeof event);

  ScopedLocalFrame frame(env, kCallbackReferences);
  CameraMetadataParser parser;
  if (parser.initFromEnv(env, true) != 0) LOGE("init parser failed");
  jobject map = parser.createHashMap();
  int32_t sharedFd = -1;
  if (firstHandleWord(handles, sharedFd)) parser.putIntIntoHashMap(sharedFd, "sharedFd", map);
  parser.putLongIntoHashMap(event.eventType, "eventType", map);
  parser.putFloatIntoHashMap(event.zoomRatio, "zoomRatio", map);
  parser.putIntArrayIntoHashMap(event.cropRegion, 4, "cropRegion", map);
  LOGD(
      "%s: sharedFd: %d, clientId = %lld, algoContextIndex = %d, reqId = %lld, eventType:%lld zoomRatio:%f, "
      "cropRegion:[l=%d t=%d w=%d h=%d], dataSize: %d",
      __func__, sharedFd, static_cast<long long>(mClientId), mAlgoContextIndex,
      static_cast<long long>(event.reqId), static_cast<long long>(event.eventType),
      static_cast<double>(event.zoomRatio), event.cropRegion[0], event.cropRegion[1], event.cropRegion[2],
      event.cropRegion[3], size);
  callBack(env, event.reqId, map);
}

JNIEnv* AlgoNativeClient::callbackEnv(const char* function) const {
  JNIEnv* env = nullptr;
  // A thread that is not attached deliberately gets no further than this: attaching it here would leave it
  // attached for ever. The attach below only confirms the one that is there.
  if (mJavaVm == nullptr || mJavaVm->GetEnv(reinterpret_cast<void**>(&env), JNI_VERSION_1_4) != JNI_OK ||
      mJavaVm->AttachCurrentThread(reinterpret_cast<void**>(&env), nullptr) != JNI_OK) {
    LOGE("%s: JavaVM GetEnv ERROR", function);
    return nullptr;
  }
  if (mPostDataMethod == nullptr) {
    LOGE("%s: postDataMethod not find", function);
    return nullptr;
  }
  return env;
}

void AlgoNativeClient::callBack(JNIEnv* env, int64_t reqId, jobject map) {
  env->CallStaticVoidMethod(mCallbackClass, mPostDataMethod, static_cast<jint>(0),
                            static_cast<jlong>(mClientId), static_cast<jint>(mAlgoContextIndex),
                            static_cast<jlong>(reqId), map);
  if (clearException(env)) LOGE("%s threw", kCallbackMethod);
}

}  // namespace orlu
