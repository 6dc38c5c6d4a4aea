// Records the callbacks that reach Java, on any thread, while this object lives. Use this class on the main
// thread only.
#pragma once

#include <string>

#include "fixtures.h"

namespace orlu::test {

class CallbackRecorder {
public:
  CallbackRecorder() { call(mRecorder, "listen", "()V"); }
  CallbackRecorder(const CallbackRecorder&) = delete;
  CallbackRecorder& operator=(const CallbackRecorder&) = delete;
  ~CallbackRecorder() { call(mRecorder, "stop", "()V"); }

  // Returns one line per callback: client, context, request, and the sorted map of values with their types.
  std::string reports() const { return stringOf(callObject(mRecorder, "reports", "()Ljava/lang/String;")); }
  void setThrows(bool isThrowing) { call(mRecorder, "setThrows", "(Z)V", isThrowing); }

private:
  jobject mRecorder = newObject("com/orlu/test/CallbackRecorder", "()V");
};

}  // namespace orlu::test
