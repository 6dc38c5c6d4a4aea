// While a JniRecorder exists, it counts and records a thread's calls to the JNI functions in jni_functions.h,
// with their arguments. Calls made inside a Java method are not recorded.
#pragma once

#include <jni.h>

#include <unordered_map>
#include <vector>

#include "jni_recording.h"
#include "scoped_jni_functions.h"

namespace orlu::bench {

class JniRecorder {
public:
  // A thread has at most one recorder at a time.
  JniRecorder(JNIEnv* env, JniRecording& recording);
  JniRecorder(const JniRecorder&) = delete;
  JniRecorder& operator=(const JniRecorder&) = delete;
  ~JniRecorder();

private:
  friend struct RecorderFunctions;

  uint32_t slotOf(const void* value) const;
  uint32_t objectSlot(void* object);
  uint32_t textSlot(const char* text);
  void madeReference();
  void freedReference();

  test::ScopedJniFunctions mFunctions;
  JniRecording& mRecording;
  std::unordered_map<const void*, uint32_t> mSlots;  // slots of live objects and buffers
  std::vector<int> mFrames;  // number of live references at the start of each local frame
  int mReferences = 0;
  bool mIsInside = false;  // inside a recorded call
};

}  // namespace orlu::bench
