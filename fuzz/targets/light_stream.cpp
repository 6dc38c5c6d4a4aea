// Fuzz target: the payload of a light-stream callback, complete or truncated, in a JNI environment where any
// call may fail.

#include "algo_native_client.h"
#include "fake_jni.h"
#include "target.h"

using android::hardware::hidl_handle;
using android::hardware::hidl_vec;
namespace fake_jni = orlu::fuzz::fake_jni;
using orlu::fuzz::Input;
using orlu::fuzz::require;

namespace {

constexpr size_t kCallChoices = 96;

struct Handle {
  native_handle_t head;
  int words[2];
};

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static auto* const client = [] {
    orlu::fuzz::silenceLog();
    auto* const made = new orlu::AlgoNativeClient(fake_jni::env(), 1, 2);
    require(fake_jni::globalReferences() == 1);
    return made;
  }();
  Input input(data, size);
  Handle handle = {};
  handle.head.numFds = input.byte() % 4 - 1;
  handle.head.numInts = input.byte() % 4 - 1;
  const hidl_handle borrowed(input.byte() % 2 == 0 ? nullptr : &handle.head);
  const std::string choices = input.text(input.byte() % kCallChoices);
  const std::vector<uint8_t> payload(input.rest().begin(), input.rest().end());

  fake_jni::setChoices(reinterpret_cast<const uint8_t*>(choices.data()), choices.size());
  const size_t references = fake_jni::localReferences();
  client->onPostProcessDataLightStream(payload.data(), static_cast<int>(payload.size()),
                                       hidl_vec<hidl_handle>(std::vector<hidl_handle>{borrowed}));
  require(fake_jni::localReferences() == references);
  return 0;
}
