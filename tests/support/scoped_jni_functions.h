// Replaces an environment's JNI function table with a copy while this object lives. Tests may replace
// functions in the copy at any time.
#pragma once

#include <jni.h>

namespace orlu::test {

class ScopedJniFunctions {
public:
  explicit ScopedJniFunctions(JNIEnv* env) : mEnv(env), mOriginal(env->functions), mTable(*env->functions) {
    env->functions = &mTable;
  }
  ScopedJniFunctions(const ScopedJniFunctions&) = delete;
  ScopedJniFunctions& operator=(const ScopedJniFunctions&) = delete;
  ~ScopedJniFunctions() { mEnv->functions = mOriginal; }

  JNIEnv* env() const { return mEnv; }
  const JNINativeInterface_& original() const { return *mOriginal; }
  JNINativeInterface_& table() { return mTable; }

private:
  JNIEnv* mEnv;
  const JNINativeInterface_* mOriginal;
  JNINativeInterface_ mTable;
};

}  // namespace orlu::test
