// libandroid.so: native access to Java's HardwareBuffer.

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
