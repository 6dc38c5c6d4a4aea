// A function table of our own over a thread's environment, in place for the life of this object: it notes
// every JNI call with its arguments, and counts. What Java calls in turn is not noted.
#pragma once

#include <jni.h>

#include <unordered_map>
#include <vector>

#include "jni_recording.h"
#include "scoped_jni_functions.h"

namespace orlu::bench {

class JniRecorder {
public:
  // One at a time on a thread.
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
  std::unordered_map<const void*, uint32_t> mSlots;  // of what is alive
  std::vector<int> mFrames;                          // references alive when each local frame began
  int mReferences = 0;
  bool mIsInside = false;  // a noted call is under way
};

}  // namespace orlu::bench
