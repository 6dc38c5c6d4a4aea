// Clients on several threads of a Java VM send requests for a long time: --requests N. Synchronous,
// full-async, aborted, skipped and timed-out ones are mixed. At the end nothing may be left, and memory must
// stand still.

#include <android/log.h>
#include <orlu/camera3rd_log.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "algo.h"
#include "callback_data.h"
#include "fixtures.h"
#include "jvm.h"
#include "request_processor.h"
#include "soak_watch.h"
#include "stand_in_script.h"

namespace orlu::fuzz {
namespace {

constexpr int kClients = 4;
constexpr int kTimeouts = 2;
constexpr int64_t kFrameFlag = 77;
constexpr char kProcessor[] = "com/orlu/orlu3rdalgoservice/binderserver/RequestProcessor";

jobject kept(jobject local) {
  jobject global = test::env()->NewGlobalRef(local);
  test::env()->DeleteLocalRef(local);
  return global;
}

// What one client sends, as global references.
struct Arguments {
  jobject request;
  jobject images;
  jobject synchronous;
  jobject fullAsync;
  jobject skipped;
  jobject skippedAsync;
  jobject update;  // a composition
  jobject updateList;
  jobject abort;
};

jobject compositionWith(bool isFullAsync, bool isSkipped) {
  jobject composition = test::newComposition();
  test::putKey(composition, "orlu.control.algoType", test::javaStrings({"night", "jpegEncode"}));
  test::putKey(composition, "isFullAsync", test::javaInt(isFullAsync ? 1 : 0));
  test::putKey(composition, "orlu.control.frameFlag", test::javaLong(kFrameFlag));
  if (isSkipped) test::putKey(composition, "orlu.control.image.score", test::javaDoubles({1'000'000.0}));
  return kept(test::javaList({composition}));
}

Arguments makeArguments() {
  test::LocalFrame frame;
  jobject update = test::newComposition();
  jobject abort = test::newComposition();
  test::putKey(abort, "AbortKey", test::javaString("orlu.control.frameFlag"));
  test::putKey(abort, "AbortVal", test::javaLong(kFrameFlag));
  jobject updateList = kept(test::javaList({update}));
  return {kept(test::newRequest(1, "capture")),
          kept(test::javaList({test::newSmallImage()})),
          compositionWith(false, false),
          compositionWith(true, false),
          compositionWith(false, true),
          compositionWith(true, true),
          kept(update),
          updateList,
          kept(abort)};
}

// One client on a thread of its own.
class SoakClient {
public:
  SoakClient(JNIEnv* env, const Arguments& arguments)
      : mEnv(env),
        mArguments(arguments),
        mInst(RequestProcessor::create(env, nullptr)),
        mProcessor(env->FindClass(kProcessor)),
        mTakeDone(env->GetStaticMethodID(mProcessor, "takeDone", "()J")),
        mLong(env->FindClass("java/lang/Long")) {
    RequestProcessor::init(env, mInst, nullptr);
  }
  SoakClient(const SoakClient&) = delete;
  ~SoakClient() { RequestProcessor::destroy(mEnv, mInst); }

  void send(uint64_t index) {
    mEnv->PushLocalFrame(16);
    const uint64_t kind = index % 20;
    if (kind < 11) {
      process(mArguments.synchronous);
    } else if (kind < 16) {
      process(mArguments.fullAsync);
      update();
    } else if (kind < 18) {
      process(mArguments.fullAsync);
      RequestProcessor::abortRequest(mEnv, mInst, nullptr, mArguments.abort);
      update();
    } else if (kind == 18) {
      process(mArguments.skipped);
    } else {
      process(mArguments.skippedAsync);
      update();
    }
    mEnv->PopLocalFrame(nullptr);
  }

private:
  void process(jobject compositions) {
    RequestProcessor::processImage(mEnv, mInst, mArguments.request, mArguments.images, mArguments.images,
                                   compositions);
  }

  jlong takeDone() {
    const jlong address = mEnv->CallStaticLongMethod(mProcessor, mTakeDone);
    if (mEnv->ExceptionCheck()) std::abort();
    return address;
  }

  // Ends a full-async request, this client's or another's: as many are announced as were sent.
  void update() {
    jlong address = takeDone();
    for (; address < 0; address = takeDone()) std::this_thread::sleep_for(std::chrono::microseconds(50));
    jobject boxed = mEnv->NewObject(mLong, mEnv->GetMethodID(mLong, "<init>", "(J)V"), address);
    jstring key = mEnv->NewStringUTF("nativeRequestAddr");
    jclass composition = mEnv->GetObjectClass(mArguments.update);
    mEnv->CallVoidMethod(
        mArguments.update,
        mEnv->GetMethodID(composition, "putMetadata", "(Ljava/lang/String;Ljava/lang/Object;)V"), key, boxed);
    if (mEnv->ExceptionCheck()) std::abort();
    RequestProcessor::processImageUpdateResult(mEnv, mInst, mArguments.request, mArguments.images,
                                               mArguments.images, mArguments.updateList);
  }

  JNIEnv* mEnv;
  const Arguments& mArguments;
  int64_t mInst;
  jclass mProcessor;
  jmethodID mTakeDone;
  jclass mLong;
};

void soakOn(SoakWatch& watch, const Arguments& arguments) {
  JNIEnv* env = nullptr;
  test::javaVm()->AttachCurrentThread(reinterpret_cast<void**>(&env), nullptr);
  env->PushLocalFrame(64);
  {
    SoakClient client(env, arguments);
    for (uint64_t i = 0; watch.next(); ++i) {
      client.send(i);
      watch.done();
    }
  }
  env->PopLocalFrame(nullptr);
  test::javaVm()->DetachCurrentThread();
}

// A client of its own sends them, whose requests the library does not take. `firstId` is the first one's; the
// library calls back for that one when nobody waits any more.
void timeOut(const Arguments& arguments, int64_t inst, uint64_t firstId) {
  JNIEnv* env = nullptr;
  test::javaVm()->AttachCurrentThread(reinterpret_cast<void**>(&env), nullptr);
  for (int i = 0; i < kTimeouts; ++i) {
    env->PushLocalFrame(16);
    RequestProcessor::processImage(env, inst, arguments.request, arguments.images, arguments.images,
                                   arguments.synchronous);
    env->PopLocalFrame(nullptr);
    const auto* const client = reinterpret_cast<AlgoNativeClient*>(static_cast<uintptr_t>(inst));
    test::Algo::sendCallback(client->callbackCookie(), test::shotCallback(firstId), {}, i % 2 == 0);
  }
  RequestProcessor::destroy(env, inst);
  test::javaVm()->DetachCurrentThread();
}

void runClients(SoakWatch& watch, const std::vector<Arguments>& arguments, bool withTimeouts) {
  standin::AlgoScript script;
  script.runAlgorithms = false;
  std::vector<std::thread> threads;
  if (withTimeouts) {
    script.notOffered = {"process"};
    setStandInScript(script);
    const int64_t inst = RequestProcessor::create(test::env(), nullptr);
    const uint64_t request = nextRequestId() + 1;
    threads.emplace_back(timeOut, std::cref(arguments[kClients]), inst, request);
    // The others' requests come after its first one.
    while (entriesBetween(request, request + 1) == 0) std::this_thread::yield();
  }
  script.notOffered.clear();
  setStandInScript(script);
  for (size_t i = 0; i < kClients; ++i)
    threads.emplace_back(soakOn, std::ref(watch), std::cref(arguments[i]));
  if (withTimeouts) watch.watch();
  for (std::thread& thread : threads) thread.join();
  test::Algo::waitIdle(15'000);
}

struct Left {
  int descriptors;
  int parameterBlocks;
  int cameraBlocks;
  int clients;
  int globalReferences;
};

Left countNow() {
  test::LocalFrame frame;
  jclass figures = test::findClass("com/orlu/fuzz/Figures");
  const jint globals = test::env()->CallStaticIntMethod(
      figures, test::env()->GetStaticMethodID(figures, "globalReferences", "()I"));
  test::expectNoException("globalReferences");
  const standin::AlgoCounts counts = test::Algo::counts();
  return {openDescriptors(), counts.parameterBlocks, counts.cameraBlocks, counts.clients, globals};
}

bool same(const char* what, int before, int after) {
  std::printf("%-22s %d, then %d\n", what, before, after);
  return before == after;
}

int soak(uint64_t requests) {
  std::vector<Arguments> arguments;
  for (int i = 0; i <= kClients; ++i) arguments.push_back(makeArguments());
  // What is made once, is made here.
  SoakWatch warmUp(500);
  runClients(warmUp, arguments, false);
  countNow();

  const Left before = countNow();
  const uint64_t firstId = nextRequestId();
  SoakWatch watch(requests);
  runClients(watch, arguments, true);
  const Left after = countNow();
  bool sound = same("descriptors", before.descriptors, after.descriptors);
  sound &= same("parameter blocks", before.parameterBlocks, after.parameterBlocks);
  sound &= same("camera blocks", before.cameraBlocks, after.cameraBlocks);
  sound &= same("clients", before.clients, after.clients);
  sound &= same("global references", before.globalReferences, after.globalReferences);
  sound &= same("entries of the map", 0, entriesBetween(firstId, nextRequestId()));
  sound &= watch.memoryStoodStill();
  return sound ? 0 : 1;
}

}  // namespace
}  // namespace orlu::fuzz

int main(int argc, char** argv) {
  uint64_t requests = 200'000;
  if (argc == 3 && std::strcmp(argv[1], "--requests") == 0) requests = std::strtoull(argv[2], nullptr, 10);
  if (!orlu::test::startJvm()) return 2;
  __android_log_set_logger([](const __android_log_message*) {});
  const int result = orlu::fuzz::soak(requests);
  // A callback thread that kept its local references would have been complained of.
  return orlu::test::jvmIsQuiet() ? result : 3;
}
