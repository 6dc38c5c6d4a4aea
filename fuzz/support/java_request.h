// The arguments of the native methods as the Java generator makes them. Objects are local references.
#pragma once

#include <jni.h>

#include <cstdint>

namespace orlu::fuzz {

struct JavaRequest {
  jobject self = nullptr;
  jobject request = nullptr;
  jobject inputs = nullptr;
  jobject outputs = nullptr;
  jobject compositions = nullptr;
  jobject parameter = nullptr;
  jobject sharedMemory = nullptr;
};

// Who makes them. `mode` as HostileRequest.java says; `address` goes into the first composition.
class JavaGenerator {
public:
  explicit JavaGenerator(JNIEnv* env);

  JavaRequest make(uint64_t seed, int mode, uint64_t address);
  JavaRequest friendly(uint64_t address);
  // Frees the memory behind the images.
  void close(const JavaRequest& made);
  // Whether the callback into Java throws.
  void throwFromCallback(bool doesThrow);

private:
  JavaRequest fieldsOf(jobject object);

  JNIEnv* mEnv;
  jclass mClass;  // global references, kept until the process ends
  jclass mProcessor;
};

}  // namespace orlu::fuzz
