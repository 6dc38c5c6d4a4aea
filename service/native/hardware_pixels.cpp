// liborlu.recorder.so: the native methods of HardwarePixels. Uses only NDK functions.

#include <android/hardware_buffer_jni.h>
#include <jni.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>

#include "pixel_extent.h"

namespace {

// Throws IllegalStateException.
void refuse(JNIEnv* env, const char* reason) {
  jclass clazz = env->FindClass("java/lang/IllegalStateException");
  if (clazz != nullptr) env->ThrowNew(clazz, reason);
}

// Returns whether all pages are mapped. There may be gaps if a device places the planes in separate memories.
bool isMapped(const void* start, uint64_t size) {
  const auto page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
  const uintptr_t offset = reinterpret_cast<uintptr_t>(start) % page;
  void* const first = const_cast<char*>(static_cast<const char*>(start)) - offset;
  return msync(first, static_cast<size_t>(size) + offset, MS_ASYNC) == 0;
}

// Returns the pixels of a locked buffer as a direct buffer; null, with an exception pending, on failure.
jobject pixelsOf(JNIEnv* env, AHardwareBuffer* buffer, const AHardwareBuffer_Planes& planes) {
  AHardwareBuffer_Desc desc = {};
  AHardwareBuffer_describe(buffer, &desc);
  const uint64_t size = orlu::recorder::pixelExtent(desc, planes);
  if (size == 0 || !isMapped(planes.planes[0].data, size)) {
    char reason[96];
    std::snprintf(reason, sizeof reason,
                  "the layout of format 0x%x with %u planes is unknown or not contiguous",
                  static_cast<unsigned>(desc.format), static_cast<unsigned>(planes.planeCount));
    refuse(env, reason);
    return nullptr;
  }
  return env->NewDirectByteBuffer(planes.planes[0].data, static_cast<jlong>(size));
}

}  // namespace

// Locks the buffer for reading and keeps it alive until nUnlock(). Returns its pixels and stores the argument
// for nUnlock() in locked[0]. On failure throws IllegalStateException and leaves nothing locked.
extern "C" JNIEXPORT jobject JNICALL Java_com_orlu_orlu3rdalgoservice_record_HardwarePixels_nLock(
    JNIEnv* env, jclass, jobject hardwareBuffer, jlongArray locked) {
  AHardwareBuffer* const buffer =
      hardwareBuffer == nullptr ? nullptr : AHardwareBuffer_fromHardwareBuffer(env, hardwareBuffer);
  if (buffer == nullptr) {
    refuse(env, "the hardware buffer is closed");
    return nullptr;
  }
  AHardwareBuffer_acquire(buffer);
  AHardwareBuffer_Planes planes = {};
  const int status =
      AHardwareBuffer_lockPlanes(buffer, AHARDWAREBUFFER_USAGE_CPU_READ_OFTEN, -1, nullptr, &planes);
  if (status != 0) {
    AHardwareBuffer_release(buffer);
    char reason[96];
    std::snprintf(reason, sizeof reason, "the hardware buffer can't be locked for reading: error %d", status);
    refuse(env, reason);
    return nullptr;
  }
  jobject pixels = pixelsOf(env, buffer, planes);
  if (pixels == nullptr) {
    AHardwareBuffer_unlock(buffer, nullptr);
    AHardwareBuffer_release(buffer);
    return nullptr;
  }
  const auto address = static_cast<jlong>(reinterpret_cast<uintptr_t>(buffer));
  env->SetLongArrayRegion(locked, 0, 1, &address);
  return pixels;
}

extern "C" JNIEXPORT void JNICALL
Java_com_orlu_orlu3rdalgoservice_record_HardwarePixels_nUnlock(JNIEnv*, jclass, jlong locked) {
  auto* const buffer = reinterpret_cast<AHardwareBuffer*>(static_cast<uintptr_t>(locked));
  AHardwareBuffer_unlock(buffer, nullptr);
  AHardwareBuffer_release(buffer);
}
