// Intercepts the creating thread's calls of static void methods while this object lives. The library calls
// one such method: callbackFromNative().
#pragma once

#include <jni.h>

#include <cstdarg>
#include <functional>
#include <utility>

#include "jvm.h"
#include "scoped_jni_functions.h"

namespace orlu::test {

class StaticCallHook {
public:
  explicit StaticCallHook(std::function<void(va_list)> onCall) : mFunctions(env()) {
    hook = std::move(onCall);
    mFunctions.table().CallStaticVoidMethodV = [](JNIEnv*, jclass, jmethodID, va_list arguments) {
      hook(arguments);
    };
  }

private:
  ScopedJniFunctions mFunctions;
  static inline std::function<void(va_list)> hook;
};

}  // namespace orlu::test
