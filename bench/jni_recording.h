// A recorded sequence of JNI calls. The time of a replay is a lower bound for the time of the code that made
// the calls.
// Objects, strings and buffers are in numbered slots. A call that returns an object stores it in a slot for
// later calls, so each replay uses its own objects.
#pragma once

#include <jni.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace orlu::bench {

constexpr uint32_t kNullSlot = 0;
// A target, five arguments and a method id.
constexpr size_t kMaxArguments = 7;

// A recorded argument: the number of a slot, or the value.
union RecordedValue {
  uint32_t slot;
  jmethodID method;
  jfieldID field;
  jlong integer;
  jdouble real;
};

// The argument types of the Java methods that requests call.
enum class Shape : uint32_t {
  kNone,
  kObject,
  kObjectObject,
  kObjectInt,
  kInt,
  kLong,
  kReal,
  kReport,
  kUnknown
};

struct RecordedCall {
  void (*repeat)(JNIEnv* env, void** slots, const RecordedCall& call);
  RecordedValue arguments[kMaxArguments];
  uint32_t result;  // the slot of the result
  Shape shape;      // the argument types of the called Java method
};

class JniRecording {
public:
  JniRecording();

  // Replays the calls in [first, last). Must run on the thread that owns the objects in the slots, after all
  // earlier calls have been replayed.
  void replay(JNIEnv* env, size_t first, size_t last);

  size_t size() const { return mCalls.size(); }
  const std::map<std::string, int>& counts() const { return mCounts; }
  int mostLocalReferences() const { return mMostReferences; }

private:
  friend class JniRecorder;
  friend struct RecorderFunctions;

  uint32_t addSlot(void* value);
  // Adds the recording's own copy of the bytes.
  uint32_t addBytes(const void* bytes, size_t size);

  std::vector<RecordedCall> mCalls;
  std::vector<void*> mSlots;
  std::vector<std::unique_ptr<char[]>> mBytes;
  std::map<std::string, int> mCounts;
  int mMostReferences = 0;
};

}  // namespace orlu::bench
