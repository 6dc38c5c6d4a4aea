// A Java environment without a VM, strict where a VM trusts its callers: it ends the process on a use of a
// dead or null reference and on a call with an exception pending. Every object is of every class, unless the
// choices say otherwise.
#pragma once

#include <jni.h>

#include <cstddef>
#include <cstdint>
#include <set>
#include <vector>

namespace orlu::fuzz {

class FakeJni {
public:
  FakeJni();
  FakeJni(const FakeJni&) = delete;
  FakeJni& operator=(const FakeJni&) = delete;
  ~FakeJni();

  JNIEnv* env() { return &mEnv; }
  // One byte for each call: what it does wrong. Past the end nothing goes wrong.
  void setChoices(const uint8_t* bytes, size_t size);
  // What every method answers that answers a number.
  void setNumber(int32_t number) { mNumber = number; }

  jobject newLocal();
  size_t localReferences() const { return mLocals.size(); }
  size_t globalReferences() const { return mGlobals.size(); }

private:
  friend struct FakeJniFunctions;

  bool goesWrong();
  void require(bool holds, const char* what) const;
  void requireAlive(jobject object) const;

  JNINativeInterface_ mTable = {};
  JNIInvokeInterface_ mVmTable = {};
  JNIEnv mEnv = {};
  JavaVM mVm = {};
  std::set<jobject> mLocals;
  std::set<jobject> mGlobals;
  std::vector<std::vector<jobject>> mFrames;
  uintptr_t mNext = 0x1000;
  const uint8_t* mChoices = nullptr;
  size_t mChoiceCount = 0;
  int32_t mNumber = 0;
  bool mIsThrowing = false;
};

}  // namespace orlu::fuzz
