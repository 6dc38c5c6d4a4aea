// Clients on several threads of a Java VM send requests for a long time: --requests N. Synchronous,
// full-async, aborted, skipped and timed-out ones are mixed. At the end nothing may be left, and memory must
// stand still.

#include <orlu/camera3rd_log.h>

#include <cstdlib>
#include <functional>

#include "algo.h"
#include "callback_data.h"
#include "fixtures.h"
#include "jvm.h"
#include "log_capture.h"
#include "request_processor.h"
#include "soak_watch.h"

namespace orlu::fuzz {
namespace {

constexpr int kClients = 4;
constexpr int kTimeouts = 2;
constexpr int64_t kFrameFlag = 77;

jobject kept(jobject local) {
  jobject global = test::env()->NewGlobalRef(local);
  test::env()->DeleteLocalRef(local);
  return global;
}

// What one client sends, as global references.
struct Arguments {
  jobject request;
  jobject images;
  jobject abort;
  jobject compositions[kSoakKinds];
};

jobject compositionsOf(SoakKind kind) {
  jobject composition = test::newComposition();
  test::putKey(composition, "orlu.control.algoType", test::javaStrings({"night", "jpegEncode"}));
  test::putKey(composition, "isFullAsync", test::javaInt(isFullAsync(kind) ? 1 : 0));
  test::putKey(composition, "orlu.control.frameFlag", test::javaLong(kFrameFlag));
  if (kind == kSkipped || kind == kSkippedAsync)
    test::putKey(composition, "orlu.control.image.score", test::javaDoubles({1'000'000.0}));
  return kept(test::javaList({composition}));
}

Arguments makeArguments() {
  test::LocalFrame frame;
  jobject abort = test::newComposition();
  test::putKey(abort, "AbortKey", test::javaString("orlu.control.frameFlag"));
  test::putKey(abort, "AbortVal", test::javaLong(kFrameFlag));
  Arguments made = {
      kept(test::newRequest(1, "capture")), kept(test::javaList({test::newSmallImage()})), kept(abort), {}};
  for (int kind = 0; kind < kSoakKinds; ++kind)
    made.compositions[kind] = compositionsOf(static_cast<SoakKind>(kind));
  return made;
}

// One client on a thread of its own.
class SoakClient {
public:
  SoakClient(JNIEnv* env, const Arguments& arguments)
      : mEnv(env),
        mArguments(arguments),
        mInst(RequestProcessor::create(env, nullptr)),
        mCallbacks(env->FindClass("com/orlu/fuzz/Callbacks")),
        mTakeDone(env->GetStaticMethodID(mCallbacks, "takeDone", "()Ljava/util/List;")) {
    RequestProcessor::init(env, mInst, nullptr);
  }
  SoakClient(const SoakClient&) = delete;
  ~SoakClient() { RequestProcessor::destroy(mEnv, mInst); }

  int64_t inst() const { return mInst; }

  void send(SoakKind kind) {
    mEnv->PushLocalFrame(16);
    RequestProcessor::processImage(mEnv, mInst, mArguments.request, mArguments.images, mArguments.images,
                                   mArguments.compositions[kind]);
    if (kind == kAborted) RequestProcessor::abortRequest(mEnv, mInst, nullptr, mArguments.abort);
    if (isFullAsync(kind)) update();
    mEnv->PopLocalFrame(nullptr);
  }

private:
  // Ends a full-async request, this client's or another's: as many are announced as were sent.
  void update() {
    jobject compositions = mEnv->CallStaticObjectMethod(mCallbacks, mTakeDone);
    if (mEnv->ExceptionCheck()) std::abort();
    RequestProcessor::processImageUpdateResult(mEnv, mInst, mArguments.request, mArguments.images,
                                               mArguments.images, compositions);
  }

  JNIEnv* mEnv;
  const Arguments& mArguments;
  int64_t mInst;
  jclass mCallbacks;
  jmethodID mTakeDone;
};

using ClientWork = std::function<void(SoakClient&)>;

std::thread startClient(const Arguments& arguments, const ClientWork& work) {
  return std::thread([&arguments, work] {
    const test::AttachedThread attached;
    test::env()->PushLocalFrame(64);
    {
      SoakClient client(test::env(), arguments);
      work(client);
    }
    test::env()->PopLocalFrame(nullptr);
  });
}

// Sends requests that the library does not take. `firstId` is the first one's; the library calls back for
// that one when nobody waits any more.
void timeOut(SoakClient& client, uint64_t firstId) {
  const auto* const native = reinterpret_cast<AlgoNativeClient*>(static_cast<uintptr_t>(client.inst()));
  for (int i = 0; i < kTimeouts; ++i) {
    client.send(kSynchronous);
    test::Algo::sendCallback(native->callbackCookie(), test::shotCallback(firstId), {}, i % 2 == 0);
  }
}

void sendAll(SoakClient& client, SoakWatch& watch) {
  for (uint64_t i = 0; watch.next(); ++i) {
    client.send(soakKind(i));
    watch.done();
  }
}

void runClients(SoakWatch& watch, const std::vector<Arguments>& arguments, bool withTimeouts) {
  standin::AlgoScript script;
  script.runAlgorithms = false;
  std::vector<std::thread> threads;
  if (withTimeouts) {
    script.notOffered = {"process"};
    test::setScript(&script);
    const uint64_t request = nextRequestId() + 1;
    threads.push_back(
        startClient(arguments[kClients], [request](SoakClient& client) { timeOut(client, request); }));
    // The others' requests come after its first one.
    while (entriesBetween(request, request + 1) == 0) std::this_thread::yield();
  }
  script.notOffered.clear();
  // Not through test::Algo, which records every call: a long run has no memory for that.
  test::setScript(&script);
  for (size_t i = 0; i < kClients; ++i)
    threads.push_back(startClient(arguments[i], [&watch](SoakClient& c) { sendAll(c, watch); }));
  if (withTimeouts) watch.watch();
  for (std::thread& thread : threads) thread.join();
  test::Algo::waitIdle(15'000);
}

int globalReferences() {
  test::LocalFrame frame;
  jclass figures = test::findClass("com/orlu/fuzz/Figures");
  const jint count = test::env()->CallStaticIntMethod(
      figures, test::env()->GetStaticMethodID(figures, "globalReferences", "()I"));
  test::expectNoException("globalReferences");
  return count;
}

int soak(uint64_t requests) {
  test::LocalFrame frame;
  test::newObject("com/orlu/fuzz/Callbacks", "(Z)V", JNI_FALSE);
  std::vector<Arguments> arguments;
  for (int i = 0; i <= kClients; ++i) arguments.push_back(makeArguments());
  // What is made once, is made here.
  SoakWatch warmUp(500);
  runClients(warmUp, arguments, false);
  globalReferences();

  const int references = globalReferences();
  const int descriptors = openDescriptors();
  const standin::AlgoCounts counts = test::Algo::counts();
  const uint64_t firstId = nextRequestId();
  SoakWatch watch(requests);
  runClients(watch, arguments, true);
  bool sound = same("descriptors", descriptors, openDescriptors());
  sound &= same("global references", references, globalReferences());
  sound &= nothingIsLeft(counts, firstId);
  sound &= watch.memoryStoodStill();
  return sound ? 0 : 1;
}

}  // namespace
}  // namespace orlu::fuzz

int main(int argc, char** argv) {
  if (!orlu::test::startCheckedJvm({"orlu-fuzz", "orlu-service", "orlu-host-framework"})) return 2;
  orlu::test::silenceLog();
  const int result = orlu::fuzz::soak(orlu::fuzz::requestsAskedFor(argc, argv));
  // A callback thread that kept its local references would have been complained of.
  return orlu::test::jvmIsQuiet() ? result : 3;
}
