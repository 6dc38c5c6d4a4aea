// Runs a shot through the library up to its result, and can replay the JNI calls alone.
#pragma once

#include <cstdint>

#include "heap_count.h"
#include "jni_recording.h"
#include "samples.h"
#include "shot.h"

namespace orlu::bench {

// The local frame of one native call. Frees its references, as the return to Java does.
class NativeFrame {
public:
  NativeFrame() { test::env()->PushLocalFrame(16); }
  NativeFrame(const NativeFrame&) = delete;
  NativeFrame& operator=(const NativeFrame&) = delete;
  ~NativeFrame() { test::env()->PopLocalFrame(nullptr); }
};

// Numbers of lines that a request logs when all log lines are enabled.
struct LogLines {
  int debug = 0;
  int error = 0;
};

// Use only on the creating thread. For a full-async request, measures processImage(), during which the
// callback arrives, and processImageUpdateResult(). Does not measure the service's work between these calls.
class RequestRunner {
public:
  explicit RequestRunner(Shot& shot);
  RequestRunner(const RequestRunner&) = delete;
  RequestRunner& operator=(const RequestRunner&) = delete;
  ~RequestRunner();

  Seconds run();

  // Records the JNI calls of a request; replay() makes only these calls.
  void record();
  Seconds replay();

  const ShotPlan& plan() const { return mShot.plan(); }
  const JniRecording& first() const { return mFirst; }
  const JniRecording& second() const { return mSecond; }  // the second call of a full-async request
  // Like replay(), but calls `handOver` where the request is submitted; for synchronous requests only.
  template <typename HandOver>
  void replay(HandOver&& handOver) {
    mShot.refresh();
    const NativeFrame frame;
    mFirst.replay(test::env(), 0, mHandedOver);
    handOver();
    mFirst.replay(test::env(), mHandedOver, mFirst.size());
    mReturned = Clock::now();
  }
  // Returns the time at which the last run of the library, or the last replay with `handOver`, ended.
  Clock::time_point returned() const { return mReturned; }

  HeapUse heap();
  LogLines logLines();

private:
  using Native = int (*)(JNIEnv*, int64_t, jobject, jobject, jobject, jobject);

  Seconds call(Native native);
  Seconds call(JniRecording& recording);
  void call(Native native, JniRecording& into);
  void putAddress();

  Shot& mShot;
  int64_t mClient;
  JniRecording mFirst;
  JniRecording mSecond;
  size_t mHandedOver = 0;
  Clock::time_point mReturned;
};

// Disables the log, including the formatting of its lines.
void silenceLog();

}  // namespace orlu::bench
