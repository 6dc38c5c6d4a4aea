// libandroid_runtime.so: the natives of android.os.SharedMemory.

#include <android/sharedmem.h>
#include <jni.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace {

void throwErrno(JNIEnv* env, const char* functionName, int error) {
  jclass clazz = env->FindClass("android/system/ErrnoException");
  const jmethodID constructor =
      clazz == nullptr ? nullptr : env->GetMethodID(clazz, "<init>", "(Ljava/lang/String;I)V");
  jstring name = constructor == nullptr ? nullptr : env->NewStringUTF(functionName);
  if (name == nullptr) return;
  const auto exception = static_cast<jthrowable>(env->NewObject(clazz, constructor, name, error));
  if (!env->ExceptionCheck()) env->Throw(exception);
}

std::string textOf(JNIEnv* env, jstring string) {
  const char* chars = string == nullptr ? nullptr : env->GetStringUTFChars(string, nullptr);
  if (chars == nullptr) return {};
  std::string text(chars);
  env->ReleaseStringUTFChars(string, chars);
  return text;
}

}  // namespace

// Returns a descriptor or a negative errno.
extern "C" JNIEXPORT jint JNICALL Java_android_os_SharedMemory_nCreate(JNIEnv* env, jclass, jstring name,
                                                                       jint size) {
  return ASharedMemory_create(textOf(env, name).c_str(), static_cast<size_t>(size));
}

extern "C" JNIEXPORT void JNICALL Java_android_os_SharedMemory_nClose(JNIEnv*, jclass, jint fd) {
  close(fd);
}

// Returns the descriptor's memory as a direct buffer. Throws ErrnoException if it can't be mapped.
extern "C" JNIEXPORT jobject JNICALL Java_android_os_SharedMemory_nMap(JNIEnv* env, jclass, jint fd,
                                                                       jint size, jboolean writable) {
  void* const address = mmap(nullptr, static_cast<size_t>(size),
                             writable ? PROT_READ | PROT_WRITE : PROT_READ, MAP_SHARED, fd, 0);
  if (address == MAP_FAILED) {
    throwErrno(env, "SharedMemory.map", errno);
    return nullptr;
  }
  return env->NewDirectByteBuffer(address, size);
}

extern "C" JNIEXPORT void JNICALL Java_android_os_SharedMemory_nUnmap(JNIEnv* env, jclass, jobject buffer) {
  void* const address = env->GetDirectBufferAddress(buffer);
  if (address != nullptr) munmap(address, static_cast<size_t>(env->GetDirectBufferCapacity(buffer)));
}
