// A sequence of JNI calls that can be made again, bare: the floor under what made it.
//
// Objects, texts and buffers of the calls stand in numbered slots. A call that answers an object puts it into
// a slot of its own, which later calls name; so the sequence works on its own new objects each time.
#pragma once

#include <jni.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace orlu::bench {

constexpr uint32_t kNullSlot = 0;
// A target, five arguments and a method.
constexpr size_t kMaxArguments = 7;

// One argument as it is kept: a slot's number, or the value itself.
union RecordedValue {
  uint32_t slot;
  jmethodID method;
  jfieldID field;
  jlong integer;
  jdouble real;
};

// The types of a Java method's arguments, for those that requests call.
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
  uint32_t result;  // the slot that the answer goes to
  Shape shape;      // of a call of a Java method
};

class JniRecording {
public:
  JniRecording();

  // Makes the calls in [first, last) again, on the thread whose objects they name. All calls before them must
  // have been made.
  void replay(JNIEnv* env, size_t first, size_t last);

  size_t size() const { return mCalls.size(); }
  const std::map<std::string, int>& counts() const { return mCounts; }
  int mostLocalReferences() const { return mMostReferences; }

private:
  friend class JniRecorder;
  friend struct RecorderFunctions;

  uint32_t addSlot(void* value);
  // A copy that lives as long as the recording.
  uint32_t addBytes(const void* bytes, size_t size);

  std::vector<RecordedCall> mCalls;
  std::vector<void*> mSlots;
  std::vector<std::unique_ptr<char[]>> mBytes;
  std::map<std::string, int> mCounts;
  int mMostReferences = 0;
};

}  // namespace orlu::bench
