// Fuzz target: translates parameters to results for up to 63 frames. The parameters have arbitrary bytes and
// may have wrong sizes. The translation's JNI calls may fail.

#include "result_values.h"
#include "algo_native_client.h"
#include "camera_metadata_parser.h"
#include "fake_jni.h"
#include "result_updater.h"
#include "target.h"
#include "vrequest.h"

namespace fake_jni = orlu::fuzz::fake_jni;
using orlu::fuzz::Input;
using orlu::fuzz::kResultAlgorithms;
using orlu::fuzz::kResultValues;
using orlu::fuzz::nameByte;

namespace {

// Reads the algorithm list from the input: the number of names, then a byte for each name.
std::vector<std::string> algorithmList(Input& input) {
  const std::string bytes = input.text(input.byte());
  std::vector<std::string> list;
  for (const char* name : kResultAlgorithms) {
    if (bytes.find(static_cast<char>(nameByte(name))) != std::string::npos) list.emplace_back(name);
  }
  return list;
}

// Stores values in the parameter block. The input contains the number of values; then, for each value, a byte
// for the name, a byte for the kind, and up to 8 bytes as the value (kind 0) or one byte that fills the value
// (kinds 1 and 2). Values of kind 2 are too long.
void leaveValues(Input& input, orlu::AlgoNativeContext& context, void* block) {
  for (int left = input.byte(); left > 0; --left) {
    const uint8_t name = input.byte();
    const uint8_t kind = input.byte() % 3;
    const std::string start = input.text(kind == 0 ? 8 : 1);
    for (const auto& value : kResultValues) {
      if (nameByte(value.key) != name) continue;
      std::string bytes = kind == 0 || start.empty() ? start : std::string(value.size, start[0]);
      if (kind == 2) bytes += "more than its record";
      context.setValue(block, value.section, value.key, bytes.data(), static_cast<unsigned>(bytes.size()));
    }
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static auto* const client = [] {
    orlu::fuzz::silenceLog();
    return new orlu::AlgoNativeClient(fake_jni::env(), 1, 2);
  }();
  Input input(data, size);
  fake_jni::setChoices(nullptr, 0);
  fake_jni::setNumber(input.byte() % 64);  // also the size of every list
  std::vector<std::string> list = algorithmList(input);
  void* const block = client->context().createMetadata();
  leaveValues(input, client->context(), block);

  const size_t references = fake_jni::localReferences();
  fake_jni::env()->PushLocalFrame(16);
  {
    const bool hasImages = input.byte() % 4 != 0;
    const bool hasFrames = input.byte() % 4 != 0;
    orlu::VRequest request(fake_jni::env(), nullptr, hasImages ? fake_jni::newLocal() : nullptr,
                           hasImages ? fake_jni::newLocal() : nullptr,
                           hasFrames ? fake_jni::newLocal() : nullptr);
    orlu::CameraMetadataParser parser(fake_jni::env());
    fake_jni::setNumber(static_cast<int32_t>(input.byte()) << (input.byte() % 25));
    fake_jni::setChoices(reinterpret_cast<const uint8_t*>(input.rest().data()), input.rest().size());
    orlu::ResultUpdater(client, list, request, block, &parser).updateResult();
  }
  fake_jni::setChoices(nullptr, 0);
  fake_jni::env()->PopLocalFrame(nullptr);
  orlu::fuzz::require(fake_jni::localReferences() == references);
  client->context().destroyMetadata(block);
  return 0;
}
