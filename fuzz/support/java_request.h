// Arguments of the native methods. All objects are local references.
#pragma once

#include "fixtures.h"

namespace orlu::fuzz {

struct JavaRequest {
  jobject self;
  jobject request;
  jobject inputs;
  jobject outputs;
  jobject compositions;
  jobject parameter;
  jobject sharedMemory;
};

// Returns the arguments that HostileRequest.java makes from `seed`. That file explains `mode` and `address`.
inline JavaRequest hostileRequest(uint64_t seed, int mode, uint64_t address) {
  jobject made = test::newObject("com/orlu/fuzz/HostileRequest", "(JIJ)V", static_cast<jlong>(seed), mode,
                                 static_cast<jlong>(address));
  const auto field = [made](const char* name) { return test::objectField(made, name, "Ljava/lang/Object;"); };
  return {made,
          field("request"),
          field("inputs"),
          field("outputs"),
          field("compositions"),
          field("parameter"),
          field("sharedMemory")};
}

// Returns valid arguments for finishing the request whose "nativeRequestAddr" is `address`. `self` and
// `sharedMemory` are null.
inline JavaRequest friendlyRequest(uint64_t address) {
  jobject composition = test::newComposition();
  test::putKey(composition, "nativeRequestAddr", test::javaLong(static_cast<int64_t>(address)));
  jobject none = test::javaList({});
  return {nullptr, test::newRequest(1, "capture"), none, none, test::javaList({composition}), composition,
          nullptr};
}

inline void callVoid(jobject object, const char* method) {
  jmethodID id = test::env()->GetMethodID(test::env()->GetObjectClass(object), method, "()V");
  test::env()->CallVoidMethod(object, id);
  test::expectNoException(method);
}

}  // namespace orlu::fuzz
