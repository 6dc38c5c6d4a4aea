#include "algo_native_callback.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <mutex>
#include <utility>

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

// Local references that one call into Java needs: the parser's classes, a map and its values.
constexpr jint kCallbackReferences = 96;

// Guards the list of all AlgoNativeCallback objects, and the context and counters of each object.
std::mutex gMutex;
AlgoNativeCallback* gLatest = nullptr;

template <size_t N>
bool isName(const uint8_t* name, size_t length, const char (&known)[N]) {
  return length == N - 1 && std::memcmp(name, known, length) == 0;
}

// Reads the first word of the first handle. Returns false if this handle is missing, invalid or empty.
bool firstHandleWord(const hidl_vec<hidl_handle>& handles, int32_t& word) {
  if (handles.size() == 0 || handles.data() == nullptr) return false;
  const native_handle_t* handle = handles[0].getNativeHandle();
  if (handle == nullptr || handle->numFds < 0 || handle->numInts < 0 ||
      (handle->numFds == 0 && handle->numInts == 0)) {
    return false;
  }
  word = handle->data[0];
  return true;
}

}  // namespace

// Keeps the callback class referenced while a callback uses it.
class AlgoNativeCallback::InsideJava {
public:
  InsideJava(AlgoNativeCallback& callback, JNIEnv* env) : mCallback(callback), mEnv(env) {
    const std::lock_guard<std::mutex> lock(gMutex);
    mIsIn = mCallback.mContext != nullptr;
    if (mIsIn) ++mCallback.mInsideJava;
  }
  InsideJava(const InsideJava&) = delete;
  InsideJava& operator=(const InsideJava&) = delete;
  ~InsideJava() {
    if (!mIsIn) return;
    {
      const std::lock_guard<std::mutex> lock(gMutex);
      if (--mCallback.mInsideJava > 0 || mCallback.mContext) return;
    }
    mEnv->DeleteGlobalRef(mCallback.mCallbackClass);
  }

  // False if the client had already been destroyed.
  explicit operator bool() const { return mIsIn; }

private:
  AlgoNativeCallback& mCallback;
  JNIEnv* mEnv;
  bool mIsIn;
};

AlgoNativeCallback* AlgoNativeCallback::create(JNIEnv* env, JavaVM* javaVm,
                                               std::shared_ptr<AlgoNativeContext> context, int64_t clientId,
                                               int algoContextIndex) {
  auto* const callback = new AlgoNativeCallback(env, javaVm, std::move(context), clientId, algoContextIndex);
  const std::lock_guard<std::mutex> lock(gMutex);
  callback->mPrevious = std::exchange(gLatest, callback);
  return callback;
}

AlgoNativeCallback::AlgoNativeCallback(JNIEnv* env, JavaVM* javaVm,
                                       std::shared_ptr<AlgoNativeContext> context, int64_t clientId,
                                       int algoContextIndex)
    : mClientId(clientId),
      mJavaVm(javaVm),
      mAlgoContextIndex(algoContextIndex),
      mContext(std::move(context)) {
  mResultCallback = [this](const hidl_vec<uint8_t>& data, const hidl_vec<uint8_t>& /*extra*/,
                           const hidl_vec<hidl_handle>& handles) {
    try {
      onPostProcessData(data, handles);
    } catch (...) {
      LOGE_AS("onPostProcessData", "onPostProcessData threw");
    }
  };
  if (env != nullptr) findCallbackMethod(env);
}

void AlgoNativeCallback::findCallbackMethod(JNIEnv* env) {
  ScopedLocalRef<jclass> found(env, env->FindClass(kCallbackClass));
  clearException(env);
  if (!found) return;
  mCallbackClass = static_cast<jclass>(env->NewGlobalRef(found.get()));
  if (mCallbackClass == nullptr) return;
  mPostDataMethod = env->GetStaticMethodID(mCallbackClass, kCallbackMethod, kCallbackSignature);
  clearException(env);
}

uint64_t AlgoNativeCallback::cookie() const {
  return reinterpret_cast<uintptr_t>(&mResultCallback);
}

JNIEnv* AlgoNativeCallback::environment() const {
  JNIEnv* env = nullptr;
  if (mJavaVm == nullptr) return nullptr;
  return mJavaVm->GetEnv(reinterpret_cast<void**>(&env), JNI_VERSION_1_4) == JNI_OK ? env : nullptr;
}

void AlgoNativeCallback::close(JNIEnv* env) {
  std::shared_ptr<AlgoNativeContext> context;  // released after the mutex is unlocked
  {
    const std::lock_guard<std::mutex> lock(gMutex);
    context.swap(mContext);
    if (mInsideJava > 0) return;
  }
  if (env != nullptr && mCallbackClass != nullptr) env->DeleteGlobalRef(mCallbackClass);
}

std::shared_ptr<AlgoNativeContext> AlgoNativeCallback::open(const char* operation) {
  uint32_t ignored = 0;
  {
    const std::lock_guard<std::mutex> lock(gMutex);
    if (mContext) return mContext;
    ignored = ++mIgnored;
  }
  LOGE_AS(operation, "callback for a client that is gone, %u so far", ignored);
  return nullptr;
}

void AlgoNativeCallback::onPostProcessData(const hidl_vec<uint8_t>& data,
                                           const hidl_vec<hidl_handle>& handles) {
  const std::shared_ptr<AlgoNativeContext> context = open(__func__);
  if (!context) return;
  const size_t size = data.size();
  LOGD("on callback %d %d", static_cast<int>(size), static_cast<int>(handles.size()));
  if (size <= kCallbackNameOffset || data.data() == nullptr) return;

  CallbackHeader header;
  std::memcpy(&header, data.data(), kCallbackNameOffset);
  const size_t room = size - kCallbackNameOffset;
  if (header.nameLength < 1 || static_cast<size_t>(header.nameLength) > room) return;
  const auto nameLength = static_cast<size_t>(header.nameLength);
  const uint8_t* const name = data.data() + kCallbackNameOffset;
  if (isName(name, nameLength, kLightStreamCallback)) {
    const auto payloadSize = static_cast<int>(std::min<size_t>(room - nameLength, INT_MAX));
    onPostProcessDataLightStream(name + nameLength, payloadSize, handles);
  } else if (isName(name, nameLength, kShotCallback)) {
    handleShot(header.nativeReq, *context, "onPostProcessDataCommonShot");
  }
}

void AlgoNativeCallback::onPostProcessDataCommonShot(uint64_t nativeReq) {
  const std::shared_ptr<AlgoNativeContext> context = open(__func__);
  if (context) handleShot(nativeReq, *context, __func__);
}

void AlgoNativeCallback::handleShot(uint64_t nativeReq, AlgoNativeContext& context, const char* operation) {
  const auto printedReq = static_cast<unsigned long long>(nativeReq);
  const auto clientId = static_cast<long long>(mClientId);
  LOGD_AS(operation, "%s: E, clientId = %lld, algoContextIndex = %d, nativeReq %llu", operation, clientId,
          mAlgoContextIndex, printedReq);
  AlgoNativeRequestMap* const map = AlgoNativeRequestMap::getInstance();
  bool isFullAsync = false;
  const bool isKnown = map->getIsFullAsync(nativeReq, isFullAsync);
  if (isKnown && !isFullAsync) {
    map->onCallbackReceived(nativeReq);
  } else {
    // Also for a request that Java has finished: its block may exist until the algorithm library calls back.
    context.destroyMetadata(map->releaseBlock(nativeReq, kUsedByLibrary));
    if (!isKnown || !announceCommonShot(nativeReq, context, operation)) return;
  }
  LOGD_AS(operation, "%s: X, clientId = %lld, algoContextIndex = %d, nativeReq %llu, isFullAsync %d",
          operation, clientId, mAlgoContextIndex, printedReq, isFullAsync ? 1 : 0);
}

bool AlgoNativeCallback::announceCommonShot(uint64_t nativeReq, AlgoNativeContext& context,
                                            const char* operation) {
  AlgoNativeRequestMap* const map = AlgoNativeRequestMap::getInstance();
  JNIEnv* const env = callbackEnv(operation);
  if (env == nullptr) return false;
  const InsideJava inside(*this, env);
  if (!inside) return false;
  const int64_t reqId = map->getRequestId(nativeReq);
  // Must precede the call to Java, which may finish the request.
  if (!map->setAnnounced(nativeReq)) return false;
  if (!callWithAddress(env, nativeReq, reqId, operation)) {
    context.destroyMetadata(map->withdrawAnnouncement(nativeReq));
  }
  return true;
}

bool AlgoNativeCallback::callWithAddress(JNIEnv* env, uint64_t nativeReq, int64_t reqId,
                                         const char* operation) const {
  LOGD_AS(operation, "%s: clientId = %lld, algoContextIndex = %d, reqId = %lld, nativeReq %llu", operation,
          static_cast<long long>(mClientId), mAlgoContextIndex, static_cast<long long>(reqId),
          static_cast<unsigned long long>(nativeReq));
  ScopedLocalFrame frame(env, kCallbackReferences);
  CameraMetadataParser parser;
  if (parser.initFromEnv(env, true) != 0) LOGE_AS(operation, "init parser failed");
  jobject values = parser.createHashMap();
  if (values == nullptr) return false;
  parser.putLongIntoHashMap(static_cast<int64_t>(nativeReq), "nativeRequestAddr", values);
  return callBack(env, reqId, values, operation);
}

void AlgoNativeCallback::onPostProcessDataLightStream(const uint8_t* payload, int size,
                                                      const hidl_vec<hidl_handle>& handles) {
  JNIEnv* const env = callbackEnv(__func__);
  if (env == nullptr) return;
  LightStreamEvent event;
  if (payload == nullptr || size < static_cast<int>(sizeof event)) return;
  std::memcpy(&event, payload, sizeof event);
  const InsideJava inside(*this, env);
  if (!inside) return;

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
  callBack(env, event.reqId, map, __func__);
}

JNIEnv* AlgoNativeCallback::callbackEnv(const char* operation) const {
  // An unattached thread stops here: attaching it would leave it attached forever (Oddity 47).
  // AttachCurrentThread() only confirms an existing attachment.
  JNIEnv* env = environment();
  if (env == nullptr || attachThread(mJavaVm, &JavaVM::AttachCurrentThread, &env, nullptr) != JNI_OK) {
    LOGE_AS(operation, "%s: JavaVM GetEnv ERROR", operation);
    return nullptr;
  }
  if (clearException(env)) LOGE_AS(operation, "callback left a Java exception");
  if (mPostDataMethod == nullptr) {
    LOGE_AS(operation, "%s: postDataMethod not find", operation);
    return nullptr;
  }
  return env;
}

bool AlgoNativeCallback::callBack(JNIEnv* env, int64_t reqId, jobject map, const char* operation) const {
  // The first argument is 0 for every kind of callback (Oddity 48).
  env->CallStaticVoidMethod(mCallbackClass, mPostDataMethod, static_cast<jint>(0),
                            static_cast<jlong>(mClientId), static_cast<jint>(mAlgoContextIndex),
                            static_cast<jlong>(reqId), map);
  if (!clearException(env)) return true;
  LOGE_AS(operation, "%s threw", kCallbackMethod);
  return false;
}

}  // namespace orlu
