// Carries a shot through the library to its result, and can make the JNI calls of that alone.
#pragma once

#include <cstdint>

#include "heap_count.h"
#include "jni_recording.h"
#include "samples.h"
#include "shot.h"

namespace orlu::bench {

// The references of one native call, which end with it as those of a call out of Java do.
class NativeFrame {
public:
  NativeFrame() { test::env()->PushLocalFrame(16); }
  NativeFrame(const NativeFrame&) = delete;
  NativeFrame& operator=(const NativeFrame&) = delete;
  ~NativeFrame() { test::env()->PopLocalFrame(nullptr); }
};

// The lines that a request writes while all are asked for.
struct LogLines {
  int debug = 0;
  int error = 0;
};

// On the thread that made it. A full-async request is one call of processImage(), with the callback inside,
// and one of processImageUpdateResult(); what the service does between them is not counted.
class RequestRunner {
public:
  explicit RequestRunner(Shot& shot);
  RequestRunner(const RequestRunner&) = delete;
  RequestRunner& operator=(const RequestRunner&) = delete;
  ~RequestRunner();

  // A request to its result.
  Seconds run();

  // Notes the JNI calls of a request; replay() makes them again, nothing else.
  void record();
  Seconds replay();

  const ShotPlan& plan() const { return mShot.plan(); }
  const JniRecording& first() const { return mFirst; }
  const JniRecording& second() const { return mSecond; }  // of a full-async request
  // The same with a call of `handOver` in the place where the request goes to the algorithms. Synchronous
  // only.
  template <typename HandOver>
  void replay(HandOver&& handOver) {
    mShot.refresh();
    const NativeFrame frame;
    mFirst.replay(test::env(), 0, mHandedOver);
    handOver();
    mFirst.replay(test::env(), mHandedOver, mFirst.size());
    mReturned = Clock::now();
  }
  // When the last call of the library, or the last replay of it, ended.
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

// Nothing that is logged is formatted or goes anywhere.
void silenceLog();

}  // namespace orlu::bench
