// The arguments of the native methods as HostileRequest.java makes them. Objects are local references.
#pragma once

#include "fixtures.h"

namespace orlu::fuzz {

struct JavaRequest {
  explicit JavaRequest(jobject made) : self(made) {}

  jobject self;
  jobject request = field("request");
  jobject inputs = field("inputs");
  jobject outputs = field("outputs");
  jobject compositions = field("compositions");
  jobject parameter = field("parameter");
  jobject sharedMemory = field("sharedMemory");

private:
  jobject field(const char* name) const { return test::objectField(self, name, "Ljava/lang/Object;"); }
};

// `mode` as HostileRequest.java says; `address` goes into the first composition.
inline JavaRequest hostileRequest(uint64_t seed, int mode, uint64_t address) {
  return JavaRequest(test::newObject("com/orlu/fuzz/HostileRequest", "(JIJ)V", static_cast<jlong>(seed), mode,
                                     static_cast<jlong>(address)));
}

inline void callVoid(jobject object, const char* method) {
  jmethodID id = test::env()->GetMethodID(test::env()->GetObjectClass(object), method, "()V");
  test::env()->CallVoidMethod(object, id);
  test::expectNoException(method);
}

}  // namespace orlu::fuzz
