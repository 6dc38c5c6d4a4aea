#include "java_request.h"

#include "fixtures.h"

namespace orlu::fuzz {
namespace {

jclass globalClass(JNIEnv* env, const char* name) {
  jclass found = test::findClass(name);
  const auto global = static_cast<jclass>(env->NewGlobalRef(found));
  env->DeleteLocalRef(found);
  return global;
}

}  // namespace

JavaGenerator::JavaGenerator(JNIEnv* env)
    : mEnv(env),
      mClass(globalClass(env, "com/orlu/fuzz/HostileRequest")),
      mProcessor(globalClass(env, "com/orlu/orlu3rdalgoservice/binderserver/RequestProcessor")) {}

JavaRequest JavaGenerator::make(uint64_t seed, int mode, uint64_t address) {
  jobject object = mEnv->NewObject(mClass, mEnv->GetMethodID(mClass, "<init>", "(JIJ)V"),
                                   static_cast<jlong>(seed), mode, static_cast<jlong>(address));
  test::expectNoException("HostileRequest");
  return fieldsOf(object);
}

JavaRequest JavaGenerator::friendly(uint64_t address) {
  jmethodID method = mEnv->GetStaticMethodID(mClass, "friendly", "(J)Lcom/orlu/fuzz/HostileRequest;");
  jobject object = mEnv->CallStaticObjectMethod(mClass, method, static_cast<jlong>(address));
  test::expectNoException("HostileRequest.friendly");
  return fieldsOf(object);
}

JavaRequest JavaGenerator::fieldsOf(jobject object) {
  const auto field = [this, object](const char* name) {
    return mEnv->GetObjectField(object, mEnv->GetFieldID(mClass, name, "Ljava/lang/Object;"));
  };
  return {object,
          field("request"),
          field("inputs"),
          field("outputs"),
          field("compositions"),
          field("parameter"),
          field("sharedMemory")};
}

void JavaGenerator::close(const JavaRequest& made) {
  mEnv->CallVoidMethod(made.self, mEnv->GetMethodID(mClass, "close", "()V"));
  test::expectNoException("HostileRequest.close");
}

void JavaGenerator::throwFromCallback(bool doesThrow) {
  jmethodID method = mEnv->GetStaticMethodID(mProcessor, "throwFromNow", "(Z)V");
  mEnv->CallStaticVoidMethod(mProcessor, method, static_cast<jboolean>(doesThrow ? JNI_TRUE : JNI_FALSE));
  test::expectNoException("throwFromNow");
}

}  // namespace orlu::fuzz
