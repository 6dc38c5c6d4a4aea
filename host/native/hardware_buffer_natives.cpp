// libandroid_runtime.so: the natives of android.hardware.HardwareBuffer.

#include <android/sharedmem.h>
#include <jni.h>
#include <sys/mman.h>
#include <vndk/hardware_buffer.h>

#include "buffer_handle.h"

namespace {

AHardwareBuffer* bufferOf(jlong address) {
  return reinterpret_cast<AHardwareBuffer*>(static_cast<uintptr_t>(address));
}

}  // namespace

// Returns the buffer's address; 0 on failure.
extern "C" JNIEXPORT jlong JNICALL Java_android_hardware_HardwareBuffer_nCreate(JNIEnv*, jclass, jint width,
                                                                                jint height, jint format,
                                                                                jint layers, jlong usage) {
  AHardwareBuffer_Desc desc = {};
  desc.width = static_cast<uint32_t>(width);
  desc.height = static_cast<uint32_t>(height);
  desc.layers = static_cast<uint32_t>(layers);
  desc.format = static_cast<uint32_t>(format);
  desc.usage = static_cast<uint64_t>(usage);
  AHardwareBuffer* buffer = nullptr;
  AHardwareBuffer_allocate(&desc, &buffer);
  return static_cast<jlong>(reinterpret_cast<uintptr_t>(buffer));
}

// Creates a buffer whose native handle consists of `words`. The first `numFds` words are descriptors, and the
// buffer takes ownership of them. Returns the buffer's address; 0 on failure.
extern "C" JNIEXPORT jlong JNICALL Java_android_hardware_HardwareBuffer_nFromHandle(JNIEnv* env, jclass,
                                                                                    jint width, jint height,
                                                                                    jint format, jint numFds,
                                                                                    jintArray words) {
  const jsize count = env->GetArrayLength(words);
  native_handle_t* const handle = numFds > count ? nullptr : native_handle_create(numFds, count - numFds);
  if (handle == nullptr) return 0;
  env->GetIntArrayRegion(words, 0, count, handle->data);
  AHardwareBuffer_Desc desc = {};
  desc.width = static_cast<uint32_t>(width);
  desc.height = static_cast<uint32_t>(height);
  desc.layers = 1;
  desc.format = static_cast<uint32_t>(format);
  AHardwareBuffer* buffer = nullptr;
  AHardwareBuffer_createFromHandle(&desc, handle, AHARDWAREBUFFER_CREATE_FROM_HANDLE_METHOD_REGISTER,
                                   &buffer);
  return static_cast<jlong>(reinterpret_cast<uintptr_t>(buffer));
}

extern "C" JNIEXPORT void JNICALL Java_android_hardware_HardwareBuffer_nRelease(JNIEnv*, jclass,
                                                                                jlong address) {
  AHardwareBuffer_release(bufferOf(address));
}

// Returns width, height and format.
extern "C" JNIEXPORT jintArray JNICALL Java_android_hardware_HardwareBuffer_nDescribe(JNIEnv* env, jclass,
                                                                                      jlong address) {
  AHardwareBuffer_Desc desc = {};
  AHardwareBuffer_describe(bufferOf(address), &desc);
  const jint facts[] = {static_cast<jint>(desc.width), static_cast<jint>(desc.height),
                        static_cast<jint>(desc.format)};
  jintArray array = env->NewIntArray(3);
  if (array != nullptr) env->SetIntArrayRegion(array, 0, 3, facts);
  return array;
}

// Returns the pixels as a direct buffer; null if they can't be mapped. SharedMemory.unmap() ends the mapping.
extern "C" JNIEXPORT jobject JNICALL Java_android_hardware_HardwareBuffer_nMapPixels(JNIEnv* env, jclass,
                                                                                     jlong address) {
  const native_handle_t* handle = AHardwareBuffer_getNativeHandle(bufferOf(address));
  if (handle == nullptr || handle->numFds <= orlu::host::kPixelsWord) return nullptr;
  const int fd = handle->data[orlu::host::kPixelsWord];
  const size_t size = ASharedMemory_getSize(fd);
  void* const pixels = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
  return pixels == MAP_FAILED ? nullptr : env->NewDirectByteBuffer(pixels, static_cast<jlong>(size));
}
