// What is seen of the process as a whole: what is left behind, exceptions, and whether it survives.
#include <dirent.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <exception>
#include <fstream>
#include <random>

#include "checks.h"
#include "known_names.h"
#include "scene.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ORLU_SANITIZED
#endif

namespace orlu::conform {
namespace {

constexpr uint64_t kWarmUp = 50;
constexpr uint64_t kRequests = 200;

// What a process holds; the largest growth that is noise.
struct Holding {
  const char* what;
  int64_t now;
  int64_t slack;
};

int64_t entriesOf(const char* folder) {
  DIR* const open = opendir(folder);
  int64_t count = 0;
  while (open != nullptr && readdir(open) != nullptr) ++count;
  if (open != nullptr) closedir(open);
  return count;
}

int64_t mappings() {
#ifdef ORLU_SANITIZED
  return 0;  // most are the sanitizer's own
#else
  std::ifstream maps("/proc/self/maps");
  int64_t count = 0;
  for (std::string line; std::getline(maps, line);) ++count;
  return count;
#endif
}

int64_t allocatedBytes() {
#ifdef ORLU_SANITIZED
  return 0;  // the sanitizer's own leak check looks at the end
#else
  const auto info = mallinfo2();
  return static_cast<int64_t>(info.uordblks + info.hblkhd);
#endif
}

std::vector<Holding> holdings() {
  // A thread that ends is listed for a moment longer.
  std::this_thread::sleep_for(std::chrono::milliseconds(150));
  return {
      {"descriptors",     entriesOf("/proc/self/fd"),   2              },
      {"threads",         entriesOf("/proc/self/task"), 4              },
 // Freed stacks and arenas are kept for the next thread.
      {"mappings",        mappings(),                   40             },
      {"allocated bytes", allocatedBytes(),             kRequests * 100},
  };
}

void runMany(Client& client, Inbox& inbox, uint64_t first, uint64_t count) {
  const Image input;
  const Image output({}, 2);
  for (uint64_t id = first; id < first + count; ++id) {
    Block parameters;
    parameters.set(kControl, "conform_key", std::string(100, 'k'));
    Request request;
    request.nativeReq = id;
    request.inputs = {&input};
    request.outputs = {&output};
    submit(client, inbox, parameters, request);
    if (!inbox.waitFor(id)) {
      ADD_FAILURE() << "no callback for request " << id;
      return;
    }
    inbox.forget();
  }
}

// Values of random bytes: sizes around those that the service uses, and any other.
class RandomValues {
public:
  explicit RandomValues(unsigned seed) : mRandom(seed) {}

  size_t below(size_t limit) { return std::uniform_int_distribution<size_t>(0, limit - 1)(mRandom); }
  std::string bytes(size_t usual) {
    size_t size = usual;
    if (below(4) == 0) size = below(kMostBytes + 1);
    std::string value(size, '\0');
    // All set, all clear, small numbers and noise are each hostile to something else.
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

void checkLeaks() {
  OPEN_LIBRARY(library);
  Client client;
  Inbox inbox;
  step("the first " + std::to_string(kWarmUp) + " requests");
  runMany(client, inbox, 1, kWarmUp);
  const std::vector<Holding> before = holdings();
  step(std::to_string(kRequests) + " requests more");
  runMany(client, inbox, 1 + kWarmUp, kRequests);
  const std::vector<Holding> after = holdings();
  std::string growth;
  for (size_t i = 0; i < before.size(); ++i) {
    const int64_t grown = after[i].now - before[i].now;
    HOLDS(grown <= after[i].slack) << kRequests << " requests leave " << grown << " " << after[i].what
                                   << " more, " << after[i].now << " in all";
    growth += (i == 0 ? "" : ", ") + std::string(after[i].what) + " " + (grown < 0 ? "" : "+") +
              std::to_string(grown);
  }
  note(growth);
}

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
    step("what a service that is in a hurry sends");
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
  step("the notice that the process ends");
  AlgoCommandRecord notice;
  notice.data.assign(kNotifyKill, kNotifyKill + sizeof kNotifyKill);
  call(-1, table.command, notice);
  for (const std::string& thrown : library->observer().thrown()) ADD_FAILURE() << thrown;
  HOLDS(stuck == 0) << stuck << " visitors and callbacks are called while an exception is being handled";
}

void checkHostile() {
  OPEN_LIBRARY(library);
  const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(options().hostileSeconds);
  RandomValues random(options().seed);
  uint64_t requests = 0;
  uint64_t values = 0;
  Scene scene;
  do {
    step("request " + std::to_string(requests) + " of random parameters, of the seed " +
         std::to_string(options().seed));
    Block parameters;
    random.fill(parameters);
    Request request;
    request.nativeReq = ++requests;
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
