// Sends hostile requests through the library in a Java VM: --seed N --count M. Request i is made from seed
// N + i alone, so that "--seed S --count 1" runs one again.
//
// After each of them nothing may be left behind: no exception, no parameter block, no map entry, no
// descriptor, no global reference, no word of the VM about a JNI call.

#include <android/log.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "algo.h"
#include "figures.h"
#include "fixtures.h"
#include "hostile_script.h"
#include "java_request.h"
#include "jni_table.h"
#include "jvm.h"
#include "request_processor.h"
#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/common_interface_defs.h>
#endif

// The VM uses segmentation faults for its own purposes, and keeps what it allocates.
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
// Requests that no callback ever comes for take ten seconds each: one of so many.
constexpr uint64_t kTimeoutEvery = 2'000;

volatile uint64_t gSeed = 0;

// Also called by signals and by sanitizers that are about to end the process.
void printSeed() {
  char line[80];
  const int length = std::snprintf(line, sizeof line, "\nfailed at --seed %llu --count 1\n",
                                   static_cast<unsigned long long>(gSeed));
  if (write(STDERR_FILENO, line, static_cast<size_t>(length)) < 0) std::_Exit(1);
}

void onSignal(int signal) {
  printSeed();
  const char* const hung = "the request did not end in time\n";
  if (signal == SIGALRM && write(STDERR_FILENO, hung, std::strlen(hung)) > 0) std::_Exit(1);
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

// The VM complains on descriptor 1.
bool vmComplained() {
  static off_t read = 0;
  struct stat status = {};
  if (fstat(STDOUT_FILENO, &status) != 0 || status.st_size == read) return false;
  std::string text(static_cast<size_t>(status.st_size - read), '\0');
  const ssize_t count = pread(STDOUT_FILENO, text.data(), text.size(), read);
  read = status.st_size;
  if (count <= 0 || text.find("WARNING") == std::string::npos) return false;
  std::fprintf(stderr, "%s", text.c_str());
  return true;
}

// One request and everything around it.
class HostileRequestRun {
public:
  HostileRequestRun(JavaGenerator& generator, uint64_t seed)
      : mGenerator(generator), mSeed(seed), mRandom(seed), mMode(static_cast<int>(mRandom() % 4)) {}

  // The descriptors that stayed open; ends the program when something else was left.
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
      mGenerator.throwFromCallback(chance(mRandom, 10));
      send(firstId);
      expect(table.calls("NewGlobalRef") == table.calls("DeleteGlobalRef"), "a global reference is left");
    }
    expect(entriesBetween(firstId, nextRequestId()) == 0, "an entry of the map is left");
    const standin::AlgoCounts after = test::Algo::counts();
    expect(after.parameterBlocks == counts.parameterBlocks, "a parameter block is left");
    expect(after.cameraBlocks == counts.cameraBlocks, "a camera block is left");
    expect(after.clients == counts.clients, "a client is left");
    expect(!vmComplained(), "-Xcheck:jni is not quiet");
    return settledDescriptors(descriptors) - descriptors;
  }

private:
  void send(uint64_t firstId) {
    mMade = mGenerator.make(mSeed, mMode, firstId);
    native("createNativeClient", [&] { mInst = RequestProcessor::create(env(), mMade.parameter); });
    sendOthers();
    const int64_t inst = chance(mRandom, 2) ? 0 : mInst;
    native("processImage", [&] {
      RequestProcessor::processImage(env(), inst, mMade.request, mMade.inputs, mMade.outputs,
                                     mMade.compositions);
    });
    sendOthers();
    expect(test::Algo::waitIdle(15'000), "the stand-in is still busy");
    const uint64_t lastId = nextRequestId();
    for (uint64_t id = firstId + 1; id < lastId; ++id) finish(id);
    if (chance(mRandom, 30)) update(mMade);
    native("algoRelease", [&] { RequestProcessor::release(env(), mInst, mMade.parameter); });
    native("destroyNativeClient", [&] { RequestProcessor::destroy(env(), mInst); });
    mGenerator.close(mMade);
  }

  // The natives that carry no images, in no order, some of them without a handle.
  void sendOthers() {
    for (int i = 0; i < 3; ++i)
      native("a native method", [&] { sendOther(chance(mRandom, 10) ? 0 : mInst); });
  }

  void sendOther(int64_t inst) {
    switch (mRandom() % 6) {
      case 0:
        RequestProcessor::init(env(), inst, mMade.inputs);
        break;
      case 1:
        RequestProcessor::flush(env(), inst, mMade.outputs, nullptr);
        break;
      case 2:
        RequestProcessor::abortRequest(env(), inst, nullptr, mMade.parameter);
        break;
      case 3:
        RequestProcessor::getData(env(), inst, mMade.parameter);
        break;
      case 4:
        RequestProcessor::translateParamFiles(env(), inst, mMade.sharedMemory, mMade.parameter);
        break;
      default:
        callBack();
        break;
    }
  }

  // Bytes that no algorithm sends, from threads of both kinds.
  void callBack() {
    std::vector<uint8_t> bytes(mRandom() % 90);
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(mRandom());
    const std::string name = chance(mRandom, 50) ? "shotCb" : "lightStreamCb";
    if (bytes.size() > 40) {
      const uint32_t length = chance(mRandom, 80) ? static_cast<uint32_t>(name.size()) : hostileWord(mRandom);
      std::memcpy(&bytes[16], &length, sizeof length);
      std::memcpy(&bytes[20], name.data(), name.size());
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

  // A synchronous request is gone by now. A full-async one is ended by a hostile request, and if that named
  // another one, by a friendly one.
  void finish(uint64_t id) {
    bool isFullAsync = false;
    if (!AlgoNativeRequestMap::getInstance()->getIsFullAsync(id, isFullAsync)) return;
    expect(isFullAsync, "a synchronous request is left");
    const JavaRequest hostile = mGenerator.make(mSeed ^ 0x5555, mMode, id);
    update(hostile);
    mGenerator.close(hostile);
    update(mGenerator.friendly(id));
  }

  // Inside such a frame for local references as a native method gets.
  template <typename Call>
  void native(const char* name, const Call& call) {
    env()->PushLocalFrame(16);
    call();
    env()->PopLocalFrame(nullptr);
    expect(!env()->ExceptionCheck(), name);
  }

  void expect(bool holds, const char* what) {
    if (holds) return;
    printSeed();
    std::fprintf(stderr, "%s (mode %d)\n", what, mMode);
    if (env()->ExceptionCheck()) env()->ExceptionDescribe();
    std::_Exit(1);
  }

  JavaGenerator& mGenerator;
  uint64_t mSeed;
  Random mRandom;
  int mMode;
  test::Algo mAlgo;
  JavaRequest mMade;
  int64_t mInst = 0;
};

// A descriptor that the VM opened for a class of its own stays once; what leaks, leaks every time.
bool sendOne(JavaGenerator& generator, uint64_t seed) {
  gSeed = seed;
  alarm(kSecondsForOne);
  for (int attempt = 0; attempt < 3; ++attempt) {
    if (HostileRequestRun(generator, seed).run() == 0) return true;
  }
  printSeed();
  std::fprintf(stderr, "descriptors stay open\n");
  return false;
}

int sendAll(uint64_t seed, uint64_t count) {
  JavaGenerator generator(env());
  for (uint64_t i = 0; i < count; ++i) {
    if (!sendOne(generator, seed + i)) return 1;
    if ((i + 1) % 500 == 0 || i + 1 == count) {
      std::printf("%llu of %llu requests, seeds from %llu\n", static_cast<unsigned long long>(i + 1),
                  static_cast<unsigned long long>(count), static_cast<unsigned long long>(seed));
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
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string option = argv[i];
    if (option == "--seed") seed = std::strtoull(argv[i + 1], nullptr, 10);
    if (option == "--count") count = std::strtoull(argv[i + 1], nullptr, 10);
  }
  if (!orlu::test::startJvm()) return 2;
  __android_log_set_logger([](const __android_log_message*) {});
  orlu::fuzz::watchForDeath();
  const int result = orlu::fuzz::sendAll(seed, count);
  return orlu::test::jvmIsQuiet() ? result : 3;
}
