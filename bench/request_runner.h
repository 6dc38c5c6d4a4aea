// Carries a shot through the library to its result, and can make the JNI calls of that alone.
#pragma once

#include <cstdint>

#include "heap_count.h"
#include "jni_recording.h"
#include "samples.h"
#include "shot.h"

namespace orlu::bench {

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

  const JniRecording& first() const { return mFirst; }
  const JniRecording& second() const { return mSecond; }  // of a full-async request
  // The calls behind the hand-over to the algorithms, after all before them.
  Seconds replayTail();
  // When the last call of the library returned.
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
