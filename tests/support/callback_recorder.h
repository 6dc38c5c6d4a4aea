// What reaches the Java side of the callbacks, during the life of this object. For the main thread.
#pragma once

#include <string>

#include "fixtures.h"

namespace orlu::test {

class CallbackRecorder {
public:
  CallbackRecorder() { call("listen", "()V"); }
  CallbackRecorder(const CallbackRecorder&) = delete;
  CallbackRecorder& operator=(const CallbackRecorder&) = delete;
  ~CallbackRecorder() { call("stop", "()V"); }

  // One line for each report: client, context, request, and the map's entries with their types, sorted.
  std::string reports() const { return stringOf(callObject(mRecorder, "reports", "()Ljava/lang/String;")); }
  void setThrows(bool isThrowing) { call("setThrows", "(Z)V", isThrowing); }
  // How many of the reported maps somebody still refers to.
  int mapsInUse() const {
    const int count = env()->CallIntMethod(mRecorder, method("mapsInUse", "()I"));
    expectNoException("mapsInUse");
    return count;
  }

private:
  jmethodID method(const char* name, const char* signature) const {
    jmethodID found = env()->GetMethodID(env()->GetObjectClass(mRecorder), name, signature);
    expectNoException(name);
    return found;
  }
  template <typename... Arguments>
  void call(const char* name, const char* signature, Arguments... arguments) const {
    env()->CallVoidMethod(mRecorder, method(name, signature), arguments...);
    expectNoException(name);
  }

  jobject mRecorder = newObject("com/orlu/test/CallbackRecorder", "()V");
};

}  // namespace orlu::test
