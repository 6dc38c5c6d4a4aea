// Result translation of values of any bytes and sizes in the parameter set, for any number of frames, in a
// Java environment where any call may fail.

#include "result_values.h"
#include "algo_native_client.h"
#include "camera_metadata_parser.h"
#include "fake_jni.h"
#include "result_updater.h"
#include "target.h"
#include "vrequest.h"

using orlu::fuzz::FakeJni;
using orlu::fuzz::Input;
using orlu::fuzz::kResultValues;

namespace {

constexpr const char* kAlgorithms[] = {
    "frameClarOnly", "jpegBokehOnly", "ppt",        "jpegEncode",  "lightstream",
    "hdr",           "dualBokeh",     "bestMoment", "singleBokeh", "refocusJpegPack"};

// Each value: one byte for its size, one that its bytes begin with; the rest follow from that.
void leaveValues(Input& input, orlu::AlgoNativeContext& context, void* block) {
  for (const auto& values : kResultValues) {
    for (const char* key : values.keys) {
      const uint8_t kind = input.byte() % 4;
      if (kind == 0) continue;
      std::string bytes =
          kind == 1 ? input.text(8) : std::string(values.size, static_cast<char>(input.byte()));
      if (kind == 3) bytes += "more than its record";
      context.setValue(block, values.section, key, bytes.data(), static_cast<unsigned>(bytes.size()));
    }
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static auto* const fake = new FakeJni();
  static auto* const client = [] {
    orlu::fuzz::silenceLog();
    return new orlu::AlgoNativeClient(fake->env(), 1, 2);
  }();
  Input input(data, size);
  fake->setChoices(nullptr, 0);
  fake->setNumber(input.byte() % 64);  // also the size of every list
  std::vector<std::string> list;
  for (const char* name : kAlgorithms) {
    if (input.byte() % 2 == 1) list.emplace_back(name);
  }
  void* const block = client->context().createMetadata();
  leaveValues(input, client->context(), block);

  const size_t references = fake->localReferences();
  fake->env()->PushLocalFrame(16);
  {
    const bool hasImages = input.byte() % 4 != 0;
    const bool hasFrames = input.byte() % 4 != 0;
    orlu::VRequest request(fake->env(), nullptr, hasImages ? fake->newLocal() : nullptr,
                           hasImages ? fake->newLocal() : nullptr, hasFrames ? fake->newLocal() : nullptr);
    orlu::CameraMetadataParser parser(fake->env());
    fake->setNumber(static_cast<int32_t>(input.byte()) << (input.byte() % 25));
    fake->setChoices(input.rest(), input.left());
    orlu::ResultUpdater(client, list, request, block, &parser).updateResult();
  }
  fake->setChoices(nullptr, 0);
  fake->env()->PopLocalFrame(nullptr);
  orlu::fuzz::require(fake->localReferences() == references);
  client->context().destroyMetadata(block);
  return 0;
}
