#include "jni_recording.h"

#include <cstring>

namespace orlu::bench {

JniRecording::JniRecording() {
  mSlots.push_back(nullptr);
}

void JniRecording::replay(JNIEnv* env, size_t first, size_t last) {
  void** const slots = mSlots.data();
  for (size_t i = first; i < last; ++i) mCalls[i].repeat(env, slots, mCalls[i]);
}

uint32_t JniRecording::addSlot(void* value) {
  mSlots.push_back(value);
  return static_cast<uint32_t>(mSlots.size() - 1);
}

uint32_t JniRecording::addBytes(const void* bytes, size_t size) {
  mBytes.push_back(std::make_unique<char[]>(size));
  std::memcpy(mBytes.back().get(), bytes, size);
  return addSlot(mBytes.back().get());
}

}  // namespace orlu::bench
