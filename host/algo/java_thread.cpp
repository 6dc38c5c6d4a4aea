#include "java_thread.h"

#include <dlfcn.h>
#include <jni.h>

#include "jni_support.h"

namespace orlu::standin {
namespace {

// Returns the VM, or null. Looks up JNI_GetCreatedJavaVMs() by name, because this library must also load
// without a VM.
JavaVM* findVm() {
  using GetCreatedJavaVms = jint(JNICALL*)(JavaVM**, jsize, jsize*);
  const auto getCreatedVms =
      reinterpret_cast<GetCreatedJavaVms>(dlsym(RTLD_DEFAULT, "JNI_GetCreatedJavaVMs"));
  JavaVM* vm = nullptr;
  jsize count = 0;
  if (getCreatedVms == nullptr || getCreatedVms(&vm, 1, &count) != JNI_OK || count < 1) return nullptr;
  return vm;
}

bool isAttached(JavaVM* vm) {
  void* env = nullptr;
  return vm->GetEnv(&env, JNI_VERSION_1_4) == JNI_OK;
}

}  // namespace

void leaveJavaException() {
  JavaVM* const vm = findVm();
  JNIEnv* env = nullptr;
  if (vm == nullptr || vm->GetEnv(reinterpret_cast<void**>(&env), JNI_VERSION_1_4) != JNI_OK) return;
  if (env->ExceptionCheck()) return;
  const jclass clazz = env->FindClass("java/lang/IllegalStateException");
  env->ThrowNew(clazz, "left by the algorithm library");
  env->DeleteLocalRef(clazz);
}

void attachToJava() {
  JavaVM* const vm = findVm();
  if (vm == nullptr || isAttached(vm)) return;
  char name[] = "orlu-algo";
  JavaVMAttachArgs args = {JNI_VERSION_1_4, name, nullptr};
  JNIEnv* env = nullptr;
  attachThread(vm, &JavaVM::AttachCurrentThreadAsDaemon, &env, &args);
}

void detachFromJava() {
  JavaVM* const vm = findVm();
  JNIEnv* env = nullptr;
  if (vm == nullptr || vm->GetEnv(reinterpret_cast<void**>(&env), JNI_VERSION_1_4) != JNI_OK) return;
  // Otherwise the VM would print the exception that the script left.
  env->ExceptionClear();
  vm->DetachCurrentThread();
}

}  // namespace orlu::standin
