// RequestProcessor's methods. Those that process images are in request_processor_image.cpp.

#include "request_processor.h"

#include <android/sharedmem_jni.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "jni_support.h"
#include "log.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-RequestProcessor";

// A string of the parameter object in a zero-padded buffer of N bytes, cut to N. A string of N bytes or more
// has no terminator.
template <size_t N>
struct StringParameter {
  StringParameter(CameraMetadataParser& parser, const char* key, jobject param)
      : found(parser.getStringOrlu(data.data(), static_cast<int>(N), key, param) == 0) {}

  std::string text() const { return {data.begin(), std::find(data.begin(), data.end(), '\0')}; }

  std::array<char, N> data = {};
  bool found;
};

// Returns a new descriptor of the memory, or -1. Checks the object's class, because
// ASharedMemory_dupFromJava() does not.
int duplicate(JNIEnv* env, jobject sharedMemory) {
  ScopedLocalRef<jclass> clazz(env, env->FindClass("android/os/SharedMemory"));
  clearException(env);
  return isInstance(env, sharedMemory, clazz.get()) ? ASharedMemory_dupFromJava(env, sharedMemory) : -1;
}

// The modes of AlgoNativeContext::uninit().
enum ReleaseMode { kModeUnknownFormat = 0, kModeProcessed = 1, kModeRaw = 2 };

// android.graphics.ImageFormat's RAW_SENSOR and RAW10.
constexpr int32_t kAndroidRawSensor = 0x20;
constexpr int32_t kAndroidRaw10 = 0x25;

ReleaseMode releaseMode(bool formatFound, int32_t format) {
  if (!formatFound) return kModeUnknownFormat;
  return format == kAndroidRawSensor || format == kAndroidRaw10 ? kModeRaw : kModeProcessed;
}

// Stores "AbortKey" in the block and, if this key names a frame, "AbortVal". Returns whether a frame is to be
// aborted.
bool readAbort(CameraMetadataParser& parser, jobject param, AlgoNativeContext& context, void* metadata) {
  constexpr char kFrameFlag[] = "orlu.control.frameFlag";
  StringParameter<128> key(parser, "AbortKey", param);
  if (key.found) context.setValue(metadata, kControl, "abort_key", key.data.data(), key.data.size());

  bool valid = false;
  int64_t value = 0;
  // Only the key's prefix is compared; other keys are ignored without an error (Oddity 54).
  if (std::memcmp(key.data.data(), kFrameFlag, sizeof kFrameFlag - 1) == 0 &&
      parser.getLongOrlu(value, "AbortVal", param) == 0) {
    context.setValue(metadata, kControl, "abort_val", &value, sizeof value);
    valid = true;
  }
  LOGD_AS("abortRequest", "abort key %s no error %d", key.text().c_str(), valid ? 1 : 0);
  return valid;
}

}  // namespace

int64_t RequestProcessor::create(JNIEnv* env, jobject param) {
  LOGD("create E");
  CameraMetadataParser parser;
  if (parser.initFromEnv(env, false) != 0) LOGE("init parser failed");
  int32_t algoContextIndex = -1;
  int64_t clientId = -1;
  parser.getIntOrlu(algoContextIndex, "algoContextIndex", param);
  parser.getLongOrlu(clientId, "clientId", param);
  auto* client = new AlgoNativeClient(env, clientId, algoContextIndex);
  LOGD("create X, inst %p, clientId %lld, index %d", static_cast<void*>(client),
       static_cast<long long>(clientId), algoContextIndex);
  return client->handle();
}

int RequestProcessor::destroy(JNIEnv* /*env*/, int64_t inst) {
  AlgoNativeClient* const client = AlgoNativeClient::of(inst);
  if (client == nullptr) {
    LOGE("destroy native client failed, client is null!");
    return -1;
  }
  AlgoNativeClient copy = client->copyForNative();
  LOGD("destroy E, %p", static_cast<void*>(client));
  LOGD("destroy flush, %p", static_cast<void*>(client));
  copy.context().flush();
  LOGD("destroy uninit, %p", static_cast<void*>(client));
  // Also runs for a client that was released before (Oddity 45).
  copy.context().uninit(kModeUnknownFormat);
  // Java may have destroyed the client inside flush() or uninit().
  if (!copy.context().isClientDestroyed()) delete client;
  LOGD("destroy X");
  return 0;
}

int RequestProcessor::init(JNIEnv* /*env*/, int64_t inst, jobject /*object*/) {
  AlgoNativeClient* const client = AlgoNativeClient::of(inst);
  if (client == nullptr) {
    LOGE("init failed, client is null!");
    return -1;
  }
  LOGD("init E, %p", static_cast<void*>(client));
  client->copyForNative().context().init();
  LOGD("init X");
  return 0;
}

int RequestProcessor::release(JNIEnv* env, int64_t inst, jobject param) {
  AlgoNativeClient* const client = AlgoNativeClient::of(inst);
  LOGD("release E, %p", static_cast<void*>(client));
  CameraMetadataParser parser;
  if (parser.initFromEnv(env, false) != 0) LOGE("init parser failed");
  int32_t format = 0;
  const bool found = parser.getIntOrlu(format, "imageFormat", param) == 0;
  LOGD("release format: %d", format);
  if (client == nullptr) {
    LOGE("release failed, client is null!");
    return -1;
  }
  client->copyForNative().context().uninit(releaseMode(found, format));
  LOGD("release X");
  return 0;
}

int RequestProcessor::flush(JNIEnv* /*env*/, int64_t inst, jobject /*a*/, jobject /*b*/) {
  AlgoNativeClient* const client = AlgoNativeClient::of(inst);
  if (client == nullptr) {
    LOGE("flush failed, client is null!");
    return -1;
  }
  LOGD("flush E, %p", static_cast<void*>(client));
  client->copyForNative().context().flush();
  LOGD("flush X");
  return 0;
}

int RequestProcessor::abortRequest(JNIEnv* env, int64_t inst, jobject /*a*/, jobject param) {
  AlgoNativeClient* const client = AlgoNativeClient::of(inst);
  LOGD("abort E, %p", static_cast<void*>(client));
  if (client == nullptr) {
    LOGE("abort failed, client is null!");
    return -1;
  }
  AlgoNativeClient copy = client->copyForNative();
  CameraMetadataParser parser;
  if (parser.initFromEnv(env, false) != 0) LOGE("init parser failed");
  AlgoNativeContext& context = copy.context();
  void* const metadata = context.createMetadata();
  if (readAbort(parser, param, context, metadata)) context.abort(0, 0, metadata);
  context.destroyMetadata(metadata);
  LOGD("abort X");
  return 0;
}

jstring RequestProcessor::getData(JNIEnv* env, int64_t inst, jobject param) {
  AlgoNativeClient* const client = AlgoNativeClient::of(inst);
  if (client == nullptr || param == nullptr) {
    LOGE("get data failed, input is null %p %p", static_cast<void*>(client), static_cast<void*>(param));
    return nullptr;
  }
  CameraMetadataParser parser;
  if (parser.initFromEnv(env, false) != 0) LOGE("init parser failed");
  const std::string cmd = StringParameter<1024>(parser, "cmd", param).text();
  LOGD("cmd %s", cmd.c_str());
  const std::vector<uint8_t> data = client->copyForNative().context().getData(cmd);
  std::string text(data.begin(), std::find(data.begin(), data.end(), 0));
  LOGD("get data ret size %d, %s", static_cast<int>(data.size()), text.c_str());
  if (data.empty()) return nullptr;
  mendText(text.data());
  jstring answer = env->NewStringUTF(text.c_str());
  return clearException(env) ? nullptr : answer;
}

int RequestProcessor::translateParamFiles(JNIEnv* env, int64_t inst, jobject sharedMemory, jobject param) {
  AlgoNativeClient* const client = AlgoNativeClient::of(inst);
  if (client == nullptr) {
    // Logs the text of getData(), and at debug level (Oddity 43).
    LOGD("get data failed, input is null, %p", static_cast<void*>(client));
    return -1;
  }
  const int fd = duplicate(env, sharedMemory);
  const int size = static_cast<int>(ASharedMemory_getSize(fd));
  CameraMetadataParser parser;
  if (parser.initFromEnv(env, false) != 0) LOGE("init parser failed");
  const std::string identifier = StringParameter<128>(parser, "identifier", param).text();
  LOGD("translateParamFiles filefd %d, bufferSize %d algoFlag %s", fd, size, identifier.c_str());
  client->copyForNative().context().translateParamFile(fd, size, identifier);
  // Descriptor 0 stays open (Oddity 44).
  if (fd >= 1) close(fd);
  LOGD("translateParamFiles end");
  return 0;
}

void RequestProcessor::notify(JNIEnv* env, int64_t inst, jobject /*param*/) {
  AlgoNativeClient* const client = AlgoNativeClient::of(inst);
  LOGE("notify inst %p", static_cast<void*>(client));
  std::unique_ptr<AlgoNativeClient> temporary;
  if (client == nullptr) temporary = std::make_unique<AlgoNativeClient>(env, -1, -1);
  (temporary ? *temporary : *client).copyForNative().context().notify();
  temporary.reset();
  LOGE("notify inst %p, service abort", static_cast<void*>(client));
  std::abort();
}

}  // namespace orlu
