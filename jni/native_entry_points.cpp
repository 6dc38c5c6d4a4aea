// The library's only exports: the Java service's native methods, which never use Java's `this`. No C++
// exception may reach the VM: a method that catches one (out of memory) logs an error and returns -1, null or
// handle 0. Only notify() ends the process.

#include <cstdlib>

#include "log.h"
#include "request_processor.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-RequestProcessor";

template <typename Result, typename... Parameters, typename... Arguments>
Result guarded(const char* operation, Result failed, Result (*member)(Parameters...),
               Arguments... arguments) {
  try {
    return member(arguments...);
  } catch (...) {
    LOGE_AS(operation, "%s threw", operation);
    return failed;
  }
}

}  // namespace
}  // namespace orlu

using orlu::guarded;
using orlu::RequestProcessor;

#define ORLU_NATIVE(result, name) \
  extern "C" JNIEXPORT result JNICALL Java_com_orlu_orlu3rdalgoservice_Orlu3rdAlgoService_##name
#define ORLU_FORWARD(failed, member, ...) guarded(#member, failed, &RequestProcessor::member, __VA_ARGS__)

ORLU_NATIVE(jlong, createNativeClient)(JNIEnv* env, jobject, jobject param) {
  return ORLU_FORWARD(int64_t{0}, create, env, param);
}

ORLU_NATIVE(jint, destroyNativeClient)(JNIEnv* env, jobject, jlong inst) {
  return ORLU_FORWARD(-1, destroy, env, inst);
}

ORLU_NATIVE(jint, algoInit)(JNIEnv* env, jobject, jlong inst, jobject param) {
  return ORLU_FORWARD(-1, init, env, inst, param);
}

ORLU_NATIVE(jint, algoRelease)(JNIEnv* env, jobject, jlong inst, jobject param) {
  return ORLU_FORWARD(-1, release, env, inst, param);
}

ORLU_NATIVE(jint, flush)(JNIEnv* env, jobject, jlong inst, jobject a, jobject b) {
  return ORLU_FORWARD(-1, flush, env, inst, a, b);
}

ORLU_NATIVE(jint, abort)(JNIEnv* env, jobject, jlong inst, jobject a, jobject param) {
  return ORLU_FORWARD(-1, abortRequest, env, inst, a, param);
}

ORLU_NATIVE(jstring, getData)(JNIEnv* env, jobject, jlong inst, jobject param) {
  return ORLU_FORWARD(jstring{}, getData, env, inst, param);
}

ORLU_NATIVE(jint, translateParamFiles)
(JNIEnv* env, jobject, jlong inst, jobject sharedMemory, jobject param) {
  return ORLU_FORWARD(-1, translateParamFiles, env, inst, sharedMemory, param);
}

// Always ends the process, even if RequestProcessor::notify() throws before it does so.
ORLU_NATIVE(void, notify)(JNIEnv* env, jobject, jlong inst, jobject param) {
  try {
    RequestProcessor::notify(env, inst, param);
  } catch (...) {
    std::abort();
  }
}

ORLU_NATIVE(jint, processImage)
(JNIEnv* env, jobject, jlong inst, jobject request, jobject inputs, jobject outputs, jobject compositions) {
  return ORLU_FORWARD(-1, processImage, env, inst, request, inputs, outputs, compositions);
}

ORLU_NATIVE(jint, processImageUpdateResult)
(JNIEnv* env, jobject, jlong inst, jobject request, jobject inputs, jobject outputs, jobject compositions) {
  return ORLU_FORWARD(-1, processImageUpdateResult, env, inst, request, inputs, outputs, compositions);
}

ORLU_NATIVE(jint, getVersion)(JNIEnv*, jobject) {
  return RequestProcessor::kServiceInterfaceVersion;
}
