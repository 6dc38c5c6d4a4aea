// libandroid.so: hardware buffers of Java.

#include <android/hardware_buffer_jni.h>

#include "java_object.h"

namespace {

constexpr char kClass[] = "android/hardware/HardwareBuffer";

}  // namespace

AHardwareBuffer* AHardwareBuffer_fromHardwareBuffer(JNIEnv* env, jobject hardwareBuffer) {
  if (!orlu::host::isInstanceOf(env, hardwareBuffer, kClass)) return nullptr;
  const jfieldID field = orlu::host::fieldOf(env, hardwareBuffer, "mNativeObject", "J");
  if (field == nullptr) return nullptr;
  return reinterpret_cast<AHardwareBuffer*>(static_cast<uintptr_t>(env->GetLongField(hardwareBuffer, field)));
}

jobject AHardwareBuffer_toHardwareBuffer(JNIEnv* env, AHardwareBuffer* hardwareBuffer) {
  if (hardwareBuffer == nullptr) return nullptr;
  jclass clazz = env->FindClass(kClass);
  const jmethodID constructor = clazz == nullptr ? nullptr : env->GetMethodID(clazz, "<init>", "(J)V");
  if (constructor == nullptr) return nullptr;
  AHardwareBuffer_acquire(hardwareBuffer);
  const auto address = static_cast<jlong>(reinterpret_cast<uintptr_t>(hardwareBuffer));
  jobject object = env->NewObject(clazz, constructor, address);
  env->DeleteLocalRef(clazz);
  if (env->ExceptionCheck()) AHardwareBuffer_release(hardwareBuffer);
  return object;
}
