// liborlu_dng.so: the natives of the Java class DngFile, which ./run uses.

#include <jni.h>

#include <memory>
#include <string>
#include <vector>

#include "dng_file.h"
#include "java_object.h"

namespace {

constexpr char kIoException[] = "java/io/IOException";

// Calls `use` with the DNG file at this path. Problems and C++ exceptions become Java exceptions.
template <typename Use>
void withFile(JNIEnv* env, jbyteArray path, Use use) {
  try {
    const jsize length = env->GetArrayLength(path);
    std::string name(size_t(length), '\0');
    env->GetByteArrayRegion(path, 0, length, reinterpret_cast<jbyte*>(name.data()));
    // On the heap: too large for a thread's stack.
    const auto file = std::make_unique<orlu::host::DngFile>(name.c_str());
    if (file->problem().empty()) use(*file);
    if (!file->problem().empty()) orlu::host::throwNew(env, kIoException, file->problem().c_str());
  } catch (const std::bad_alloc&) {
    orlu::host::throwNew(env, kIoException, "not enough memory to read it");
  } catch (...) {
    orlu::host::throwNew(env, kIoException, "damaged: the decoder failed");
  }
}

// Calls `to.put(int, short[])` for each row, and stops if a call throws.
void putRows(JNIEnv* env, const orlu::host::DngFile& file, const uint16_t* samples, jobject to) {
  jclass clazz = env->GetObjectClass(to);
  const jmethodID put = env->GetMethodID(clazz, "put", "(I[S)V");
  jshortArray row = put == nullptr ? nullptr : env->NewShortArray(file.width());
  if (row == nullptr) return;
  for (int y = 0; y < file.height() && !env->ExceptionCheck(); ++y, samples += file.width()) {
    env->SetShortArrayRegion(row, 0, file.width(), reinterpret_cast<const jshort*>(samples));
    env->CallVoidMethod(to, put, y, row);
  }
}

}  // namespace

#define DNG_FILE(method) Java_com_orlu_orlu3rdalgoservice_tool_imagefile_DngFile_##method

// Returns width, height and bit depth. Returns null after a failure, with a Java exception pending.
extern "C" JNIEXPORT jintArray JNICALL DNG_FILE(nDescribe)(JNIEnv* env, jclass, jbyteArray path) {
  jintArray described = nullptr;
  withFile(env, path, [env, &described](const orlu::host::DngFile& file) {
    const jint numbers[] = {file.width(), file.height(), file.bits()};
    described = env->NewIntArray(3);
    if (described != nullptr) env->SetIntArrayRegion(described, 0, 3, numbers);
  });
  return described;
}

extern "C" JNIEXPORT void JNICALL DNG_FILE(nReadRows)(JNIEnv* env, jclass, jbyteArray path, jobject to) {
  withFile(env, path, [env, to](orlu::host::DngFile& file) {
    const uint16_t* const samples = file.decode();
    if (samples != nullptr) putRows(env, file, samples, to);
  });
}
