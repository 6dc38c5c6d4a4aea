// The library's only exports: the native methods of the Java service. The Java `this` is never used.

#include "request_processor.h"

using orlu::RequestProcessor;

#define ORLU_NATIVE(result, name) \
  extern "C" JNIEXPORT result JNICALL Java_com_orlu_orlu3rdalgoservice_Orlu3rdAlgoService_##name

ORLU_NATIVE(jlong, createNativeClient)(JNIEnv* env, jobject, jobject param) {
  return RequestProcessor::create(env, param);
}

ORLU_NATIVE(jint, destroyNativeClient)(JNIEnv* env, jobject, jlong inst) {
  return RequestProcessor::destroy(env, inst);
}

ORLU_NATIVE(jint, algoInit)(JNIEnv* env, jobject, jlong inst, jobject param) {
  return RequestProcessor::init(env, inst, param);
}

ORLU_NATIVE(jint, algoRelease)(JNIEnv* env, jobject, jlong inst, jobject param) {
  return RequestProcessor::release(env, inst, param);
}

ORLU_NATIVE(jint, flush)(JNIEnv* env, jobject, jlong inst, jobject a, jobject b) {
  return RequestProcessor::flush(env, inst, a, b);
}

ORLU_NATIVE(jint, abort)(JNIEnv* env, jobject, jlong inst, jobject a, jobject param) {
  return RequestProcessor::abortRequest(env, inst, a, param);
}

ORLU_NATIVE(jstring, getData)(JNIEnv* env, jobject, jlong inst, jobject param) {
  return RequestProcessor::getData(env, inst, param);
}

ORLU_NATIVE(jint, translateParamFiles)
(JNIEnv* env, jobject, jlong inst, jobject sharedMemory, jobject param) {
  return RequestProcessor::translateParamFiles(env, inst, sharedMemory, param);
}

ORLU_NATIVE(void, notify)(JNIEnv* env, jobject, jlong inst, jobject param) {
  RequestProcessor::notify(env, inst, param);
}

ORLU_NATIVE(jint, processImage)
(JNIEnv* env, jobject, jlong inst, jobject request, jobject inputs, jobject outputs, jobject compositions) {
  return RequestProcessor::processImage(env, inst, request, inputs, outputs, compositions);
}

ORLU_NATIVE(jint, processImageUpdateResult)
(JNIEnv* env, jobject, jlong inst, jobject request, jobject inputs, jobject outputs, jobject compositions) {
  return RequestProcessor::processImageUpdateResult(env, inst, request, inputs, outputs, compositions);
}

ORLU_NATIVE(jint, getVersion)(JNIEnv*, jobject) {
  return RequestProcessor::kServiceInterfaceVersion;
}
