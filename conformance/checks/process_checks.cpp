// Checks of the whole process: exceptions, and survival of hostile input.
#include <atomic>
#include <cstring>
#include <exception>
#include <random>

#include "checks.h"
#include "known_names.h"
#include "scene.h"

namespace orlu::conform {
namespace {

// Generates random values: three quarters in the size that the service uses, a quarter in random sizes.
class RandomValues {
public:
  explicit RandomValues(unsigned seed) : mRandom(seed) {}

  size_t below(size_t limit) { return std::uniform_int_distribution<size_t>(0, limit - 1)(mRandom); }
  std::string bytes(size_t usual) {
    size_t size = usual;
    if (below(4) == 0) size = below(kMostBytes + 1);
    std::string value(size, '\0');
    // All ones, small numbers, noise and the largest int32_t each break different code.
    const size_t kind = below(4);
    for (size_t i = 0; i < size; ++i) {
      if (kind == 0) value[i] = '\xFF';
      if (kind == 1) value[i] = static_cast<char>(i % 4 == 0 ? below(64) : 0);
      if (kind == 2) value[i] = static_cast<char>(below(256));
      if (kind == 3) value[i] = static_cast<char>(i % 4 == 3 ? 0x7F : 0xFF);
    }
    return value;
  }
  void fill(Block& block) {
    for (const ParameterSize& row : kParameters) {
      if (below(4) != 0) block.set(row.section, row.key, bytes(row.size));
    }
  }
  std::vector<std::string> algorithms() {
    std::vector<std::string> list;
    for (size_t i = below(4); i > 0; --i) list.emplace_back(kAlgorithms[below(std::size(kAlgorithms))]);
    return list;
  }

private:
  std::mt19937 mRandom;
};

}  // namespace

void checkExceptions() {
  OPEN_LIBRARY(library);
  std::atomic<int> stuck{0};
  const auto look = [&stuck] {
    if (std::current_exception() != nullptr || std::uncaught_exceptions() != 0) ++stuck;
  };
  const AlgoInterfaceCallbacks& table = library->table();
  {
    Scene scene;
    scene.inbox.onCallback([&](const Message&) { look(); });
    scene.run(1);
    scene.run(2, {"conformNoSuchThing"});
    scene.run(3, {"frameClarOnly"});
    step("calls with missing or empty arguments");
    int32_t value = 1;
    scene.parameters.get(kFeedback, "conform_never_set", &value, sizeof value);
    scene.parameters.set(kControl, "conform_empty", nullptr, 0);
    const Block raw(kCameraMetadataBlock);
    call(-1, table.metadataOps.setRaw, raw.handle(), "", 0U);
    const AlgoMetadataVisitor visitor = [&](const char*, const char*, void*, unsigned) {
      look();
      return -1;
    };
    call(-1, table.metadataOps.paramAlgoUpdateToSystem, scene.parameters.handle(), visitor);
    call(-1, table.metadataOps.paramSystemDownloadToAlgo, scene.parameters.handle(), visitor);
    AlgoCommandRecord command;
    command.client = scene.client.handle();
    call(-1, table.command, command);
    command.data = {'?', 0};
    call(-1, table.command, command);
    AlgoGetDataRecord query;
    query.cmd = "no such question";
    query.block = scene.parameters.handle();
    query.client = scene.client.handle();
    call(-1, table.getData, query);
    AlgoTranslateParamFileRecord file;
    file.client = scene.client.handle();
    call(-1, table.translateParamFile, file);
    scene.client.uninit(2);
  }
  step("the announcement of the end of the process");
  AlgoCommandRecord notice;
  notice.data.assign(kNotifyKill, kNotifyKill + sizeof kNotifyKill);
  call(-1, table.command, notice);
  for (const std::string& thrown : library->observer().thrown()) ADD_FAILURE() << thrown;
  HOLDS(stuck == 0) << stuck << " visitors and callbacks ran during exception handling";
}

void checkHostile() {
  OPEN_LIBRARY(library);
  const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(options().hostileSeconds);
  RandomValues random(options().seed);
  uint64_t requests = 0;
  uint64_t values = 0;
  Scene scene;
  do {
    step("request " + std::to_string(++requests) + " of random parameters, seed " +
         std::to_string(options().seed));
    Block parameters;
    random.fill(parameters);
    Request request;
    request.nativeReq = requests;
    request.algorithms = random.algorithms();
    request.inputs.assign(random.below(4), &scene.input);
    request.outputs.assign(random.below(3), &scene.output);
    submit(scene.client, scene.inbox, parameters, request);
    if (!scene.inbox.waitFor(request.nativeReq)) {
      ADD_FAILURE() << "no callback for request " << request.nativeReq << " of random parameters";
      return;
    }
    for (const ResultRead& row : kResultReads) {
      std::string value(row.size, '\0');
      parameters.get(row.section, row.key, value.data(), value.size());
    }
    values += std::size(kParameters);
  } while (std::chrono::steady_clock::now() < end);
  note(std::to_string(requests) + " requests, about " + std::to_string(values * 3 / 4) + " random values");
}

}  // namespace orlu::conform
