// Sends hostile requests through the library in a Java VM: --seed N --count M. Request i depends only on seed
// S = N + i, so "--seed S --count 1" repeats it. A request must leave no exception, block, client, map
// entry, descriptor or global reference behind, and must cause no warning of the VM about a JNI call.

#include <unistd.h>

#include <cinttypes>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>

#include "algo.h"
#include "figures.h"
#include "fixtures.h"
#include "hostile_script.h"
#include "java_request.h"
#include "jni_table.h"
#include "jvm.h"
#include "log_capture.h"
#include "options.h"
#include "request_processor.h"
#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/common_interface_defs.h>
#endif

// The VM uses segmentation faults internally and never frees some of its memory.
extern "C" const char* __asan_default_options() {
  return "handle_segv=0:detect_leaks=0:allocator_may_return_null=0";
}
extern "C" const char* __ubsan_default_options() {
  return "print_stacktrace=1";
}

namespace orlu::fuzz {
namespace {

using test::env;

constexpr unsigned kSecondsForOne = 60;
// One request in this many gets no callback. A synchronous one waits ten seconds, so these must be rare.
constexpr uint64_t kTimeoutEvery = 2'000;

volatile uint64_t gSeed = 0;

// Signal handlers and sanitizers also call this function before they end the process.
void printSeed() {
  char line[80];
  const int length = std::snprintf(line, sizeof line, "\nfailed at --seed %" PRIu64 " --count 1\n", gSeed);
  if (write(STDERR_FILENO, line, static_cast<size_t>(length)) < 0) std::_Exit(1);
}

// Handles SIGABRT, and SIGALRM, which arrives when a request takes too long.
void onSignal(int signal) {
  printSeed();
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

void watchForDeath() {
  std::signal(SIGABRT, onSignal);
  std::signal(SIGALRM, onSignal);
#if defined(__SANITIZE_ADDRESS__)
  __sanitizer_set_death_callback(printSeed);
#endif
}

// Returns whether the VM has written warnings to standard output since the last call. If so, copies the new
// output to standard error.
bool vmComplained() {
  static off_t read = 0;
  char text[4096] = {};
  const ssize_t count = pread(STDOUT_FILENO, text, sizeof text - 1, read);
  if (count > 0) read += count;
  if (count <= 0 || std::strstr(text, "WARNING") == nullptr) return false;
  std::fputs(text, stderr);
  return true;
}

// Sends one request, with other native calls before and after it.
class HostileRequestRun {
public:
  explicit HostileRequestRun(uint64_t seed)
      : mSeed(seed), mRandom(seed), mMode(static_cast<int>(mRandom() % 4)) {}

  // Returns the number of leaked descriptors. Ends the program if anything else leaked.
  int run() {
    mAlgo.script = hostileScript(mRandom);
    if (mSeed % kTimeoutEvery == kTimeoutEvery - 1) mAlgo.script.callbacks = 0;
    mAlgo.use();
    const int descriptors = openDescriptors();
    const standin::AlgoCounts counts = test::Algo::counts();
    const uint64_t firstId = nextRequestId();
    {
      test::JniTable table(env());
      test::LocalFrame frame;
      jobject callbacks = test::newObject("com/orlu/fuzz/Callbacks", "(Z)V", chance(mRandom, 10));
      send(firstId, hostileRequest(mSeed, mMode, firstId));
      callVoid(callbacks, "stop");
      expect(table.calls("NewGlobalRef") == table.calls("DeleteGlobalRef"), "a global reference is left");
    }
    expect(entriesBetween(firstId, nextRequestId()) == 0, "a request is left in the map");
    const standin::AlgoCounts after = test::Algo::counts();
    expect(after.parameterBlocks == counts.parameterBlocks && after.cameraBlocks == counts.cameraBlocks &&
               after.clients == counts.clients,
           "a block or a client of the stand-in is left");
    expect(!vmComplained(), "-Xcheck:jni printed a warning");
    return settledDescriptors(descriptors) - descriptors;
  }

private:
  void send(uint64_t firstId, const JavaRequest& made) {
    native("createNativeClient", [&] { mInst = RequestProcessor::create(env(), made.parameter); });
    sendOthers(made);
    const int64_t inst = chance(mRandom, 2) ? 0 : mInst;
    native("processImage", [&] {
      RequestProcessor::processImage(env(), inst, made.request, made.inputs, made.outputs, made.compositions);
    });
    sendOthers(made);
    expect(test::Algo::waitIdle(15'000), "the stand-in is still busy");
    const uint64_t lastId = nextRequestId();
    for (uint64_t id = firstId + 1; id < lastId; ++id) finish(id);
    if (chance(mRandom, 30)) update(made);
    native("algoRelease", [&] { RequestProcessor::release(env(), mInst, made.parameter); });
    native("destroyNativeClient", [&] { RequestProcessor::destroy(env(), mInst); });
    callVoid(made.self, "close");
  }

  // Makes three random calls: natives that process no images, some with handle 0, and callbacks.
  void sendOthers(const JavaRequest& made) {
    for (int i = 0; i < 3; ++i) {
      const int64_t inst = chance(mRandom, 10) ? 0 : mInst;
      const std::function<void()> calls[] = {
          [&] { RequestProcessor::init(env(), inst, made.inputs); },
          [&] { RequestProcessor::flush(env(), inst, made.outputs, nullptr); },
          [&] { RequestProcessor::abortRequest(env(), inst, nullptr, made.parameter); },
          [&] { RequestProcessor::getData(env(), inst, made.parameter); },
          [&] { RequestProcessor::translateParamFiles(env(), inst, made.sharedMemory, made.parameter); },
          [&] { callBack(); },
      };
      native("a native method", calls[mRandom() % std::size(calls)]);
    }
  }

  // Sends one callback with random bytes, often with a valid name, on an attached or an unattached thread.
  void callBack() {
    std::vector<uint8_t> bytes(static_cast<size_t>(mRandom() % 90));
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(mRandom());
    const std::string name = chance(mRandom, 50) ? kShotCallback : kLightStreamCallback;
    if (bytes.size() > 40) {
      const uint32_t length = chance(mRandom, 80) ? static_cast<uint32_t>(name.size()) : hostileWord(mRandom);
      std::memcpy(&bytes[offsetof(CallbackHeader, nameLength)], &length, sizeof length);
      std::memcpy(&bytes[kCallbackNameOffset], name.data(), name.size());
    }
    native_handle_t handle = {};
    handle.numFds = chance(mRandom, 50) ? 0 : -1;
    const auto* const client = reinterpret_cast<AlgoNativeClient*>(static_cast<uintptr_t>(mInst));
    test::Algo::sendCallback(client->callbackCookie(), bytes, {&handle, nullptr}, chance(mRandom, 70));
  }

  void update(const JavaRequest& made) {
    native("processImageUpdateResult", [&] {
      RequestProcessor::processImageUpdateResult(env(), mInst, made.request, made.inputs, made.outputs,
                                                 made.compositions);
    });
  }

  // Finishes a full-async request with hostile arguments, and then with valid ones in case the hostile
  // arguments named another request. Synchronous requests are already finished.
  void finish(uint64_t id) {
    bool isFullAsync = false;
    if (!AlgoNativeRequestMap::getInstance()->getIsFullAsync(id, isFullAsync)) return;
    expect(isFullAsync, "a synchronous request is left in the map");
    const JavaRequest hostile = hostileRequest(mSeed ^ 0x5555, mMode, id);
    update(hostile);
    callVoid(hostile.self, "close");
    test::LocalFrame frame;
    update(friendlyRequest(id));
  }

  // Runs `call` in a local frame, as the VM does for native methods.
  void native(const char* name, const std::function<void()>& call) {
    env()->PushLocalFrame(16);
    call();
    env()->PopLocalFrame(nullptr);
    expect(!env()->ExceptionCheck(), (std::string(name) + " left a Java exception").c_str());
  }

  void expect(bool holds, const char* what) {
    if (holds) return;
    printSeed();
    std::fprintf(stderr, "%s (mode %d)\n", what, mMode);
    if (env()->ExceptionCheck()) env()->ExceptionDescribe();
    std::_Exit(1);
  }

  uint64_t mSeed;
  Random mRandom;
  int mMode;
  test::Algo mAlgo;
  int64_t mInst = 0;
};

// Repeats the request if descriptors stayed open: the VM may open a descriptor for its own classes once, but
// a leak happens every time.
bool sendOne(uint64_t seed) {
  gSeed = seed;
  alarm(kSecondsForOne);
  for (int attempt = 0; attempt < 3; ++attempt) {
    if (HostileRequestRun(seed).run() == 0) return true;
  }
  printSeed();
  std::fprintf(stderr, "descriptors stay open\n");
  return false;
}

int sendAll(uint64_t seed, uint64_t count) {
  for (uint64_t i = 0; i < count; ++i) {
    if (!sendOne(seed + i)) return 1;
    if ((i + 1) % 500 == 0 || i + 1 == count) {
      std::printf("%" PRIu64 " of %" PRIu64 " requests, seeds from %" PRIu64 "\n", i + 1, count, seed);
    }
  }
  alarm(0);
  return 0;
}

}  // namespace
}  // namespace orlu::fuzz

int main(int argc, char** argv) {
  uint64_t seed = 1;
  uint64_t count = 1'000;
  const std::vector<orlu::fuzz::NumberOption> options = {
      {"seed",  &seed,  0},
      {"count", &count, 1}
  };
  orlu::fuzz::readNumbers(argc, argv, options);
  if (!orlu::test::startCheckedJvm({"orlu-fuzz", "orlu-service", "orlu-host-framework"})) return 2;
  orlu::test::silenceLog();
  orlu::fuzz::watchForDeath();
  const int result = orlu::fuzz::sendAll(seed, count);
  return orlu::test::jvmIsQuiet() ? result : 3;
}
