#include "soak_client.h"

#include <chrono>
#include <iterator>
#include <optional>
#include <thread>

#include "algo_native_request_map.h"
#include "fixtures.h"
#include "request_processor.h"
#include "short_wait.h"
#include "soak_log.h"

namespace orlu::fuzz {

// The request that a thread is sending, for observers of the calls on this thread.
struct Current {
  uint64_t request;
  CallbackPool* pool = nullptr;  // receives the callback during process(); may be null
  HeldCallback callback = {};    // observe() fills it in during process()
  bool hasBlock = false;
  void* cameraBlock = nullptr;  // the library destroys it after process() returns
};

namespace {

constexpr int64_t kFrameFlag = 77;
constexpr int kFlushes = 10;  // each waits two seconds at most
constexpr jint kLocalReferences = 16;
constexpr uint64_t kLatestRacer = 20'000;  // limit of the delay, in microseconds; twice the shortened timeout
constexpr char kCallbacksClass[] = "com/orlu/fuzz/Callbacks";

thread_local Current* tCurrent = nullptr;
// Callbacks to send while the library destroys this thread's client.
thread_local const std::vector<HeldCallback>* tInDestroyClient = nullptr;

jobject kept(jobject local) {
  jobject global = test::env()->NewGlobalRef(local);
  test::env()->DeleteLocalRef(local);
  return global;
}

jobject compositionsOf(SoakKind kind) {
  jobject composition = test::newComposition();
  test::putKey(composition, "orlu.control.algoType", test::javaStrings({"night", "jpegEncode"}));
  test::putKey(composition, "isFullAsync", test::javaInt(isFullAsync(kind) ? 1 : 0));
  test::putKey(composition, "orlu.control.frameFlag", test::javaLong(kFrameFlag));
  if (isSkipped(kind))
    test::putKey(composition, "orlu.control.image.score", test::javaDoubles({1'000'000.0}));
  return kept(test::javaList({composition}));
}

// Observes one call to the stand-in. Reports to the ledger the parameter block and the process() call of this
// thread's request, and every destroyed block. During destroyClient, sends the callbacks of tInDestroyClient.
void observe(Ledger& ledger, const probe::WatchedCall& call) {
  if (call.operation == "destroyMetadata") ledger.sawBlockDestroyed(*call.block);
  if (call.operation == "destroyClient" && tInDestroyClient != nullptr) {
    for (const HeldCallback& held : *tInDestroyClient) sendShotCallback(held.cookie, held.nativeReq);
  }
  if (tCurrent == nullptr) return;
  if (call.operation == "setValue" && !tCurrent->hasBlock) {
    tCurrent->hasBlock = true;
    ledger.sawBlock(tCurrent->request, *call.block);
  }
  if (call.operation == "destroyMetadata" && *call.block == tCurrent->cameraBlock) {
    ledger.sawProcessReturn(tCurrent->request);
  }
  if (call.operation == "process") {
    ledger.sawProcess(call.process->reqId);
    tCurrent->cameraBlock = call.process->metadata.back().block;
    tCurrent->callback.cookie = call.process->callbackCookie;
    tCurrent->callback.nativeReq = call.process->nativeReq;
    if (tCurrent->pool != nullptr) tCurrent->pool->hold(tCurrent->callback);
  }
}

void throwFor(uint64_t request) {
  const test::LocalFrame frame;
  test::callStatic(kCallbacksClass, "throwFor", "(J)V", static_cast<jlong>(request));
}

standin::AlgoScript scriptOf(const standin::AlgoScript& plain, const SoakFault* fault) {
  standin::AlgoScript script = plain;
  if (fault != nullptr) (fault->isJava ? script.leaving : script.throwing).insert(fault->operation);
  return script;
}

standin::AlgoScript scriptOf(const standin::AlgoScript& plain, const SoakPlan& plan) {
  standin::AlgoScript script = scriptOf(plain, plan.fault);
  switch (kSoakWays[plan.way].callbacks) {
    case SoakCallbacks::kOnce:
      break;
    case SoakCallbacks::kTwice:
      script.callbacks = 2;
      break;
    case SoakCallbacks::kBeforeReturn:
      script.callBackBeforeReturn = true;
      break;
    case SoakCallbacks::kForeign:
      script.attachThread = false;
      break;
    default:
      script.callbacks = 0;
      break;
  }
  return script;
}

}  // namespace

standin::AlgoScript plainSoakScript(Ledger& ledger) {
  standin::AlgoScript script;
  script.runAlgorithms = false;
  script.observer = [&ledger](const probe::WatchedCall& call) { observe(ledger, call); };
  return script;
}

SoakArguments makeSoakArguments() {
  test::LocalFrame frame;
  jobject abort = test::newComposition();
  test::putKey(abort, "AbortKey", test::javaString("orlu.control.frameFlag"));
  test::putKey(abort, "AbortVal", test::javaLong(kFrameFlag));
  SoakArguments made = {kept(test::javaList({test::newSmallImage()})), kept(abort), {}};
  for (size_t kind = 0; kind < kSoakKinds; ++kind) {
    made.compositions[kind] = compositionsOf(static_cast<SoakKind>(kind));
  }
  return made;
}

SoakClient::SoakClient(SoakShared& shared, const SoakArguments& arguments, uint64_t seed)
    : mEnv(test::env()),
      mShared(shared),
      mArguments(arguments),
      mPlain(plainSoakScript(shared.ledger)),
      mRandom(seed),
      mInst(RequestProcessor::create(mEnv, nullptr)) {
  test::setThreadScript(&mPlain);
  RequestProcessor::init(mEnv, mInst, nullptr);
}

SoakClient::~SoakClient() {
  waitForHeld();
  standin::AlgoScript script = scriptOf(mPlain, &kSoakEndFaults[mRandom() % std::size(kSoakEndFaults)]);
  script.finishInDestroyClient = true;
  test::setThreadScript(&script);
  for (HeldCallback& held : mRacing) mShared.racing.hold(held);
  tInDestroyClient = &mInDestroyClient;
  RequestProcessor::destroy(mEnv, mInst);
  tInDestroyClient = nullptr;
  for (const HeldCallback& held : mLate) mShared.attached.hold(held);
  test::setThreadScript(nullptr);
}

void SoakClient::send(uint64_t request) {
  const SoakPlan plan = mShared.ledger.plan(request);
  const SoakWay& way = kSoakWays[plan.way];
  Current current = {request};
  if (way.callbacks == SoakCallbacks::kReordered) {
    current.pool = &mShared.attached;
    current.callback.pending = &mPending;
    ++mPending;
  } else if (way.callbacks == SoakCallbacks::kReorderedAway) {
    current.pool = &mShared.foreign;
  } else if (way.callbacks == SoakCallbacks::kRacing && !isFullAsync(way.kind)) {
    current.pool = &mShared.racing;
    current.callback.delay = std::chrono::microseconds(mRandom() % kLatestRacer);
  }
  const standin::AlgoScript script = scriptOf(mPlain, plan);
  test::setThreadScript(&script);
  const bool timedOut = processImage(current, way);
  test::setThreadScript(&mPlain);
  if (timedOut) mShared.ledger.sawTimeout(request);
  mShared.ledger.sawReturn(request);
  finish(request, way, current.callback);
}

bool SoakClient::processImage(Current& current, const SoakWay& way) {
  std::optional<ShortWait> shortWait;
  if (way.ending == Ending::kTimedOut || otherEnding(way) == Ending::kTimedOut) shortWait.emplace();
  takeTimeouts();
  mEnv->PushLocalFrame(kLocalReferences);
  jobject request = test::newRequest(static_cast<int64_t>(current.request), "capture");
  tCurrent = &current;
  RequestProcessor::processImage(mEnv, mInst, request, mArguments.images, mArguments.images,
                                 mArguments.compositions[static_cast<size_t>(way.kind)]);
  tCurrent = nullptr;
  mEnv->PopLocalFrame(nullptr);
  return takeTimeouts() > 0;
}

void SoakClient::finish(uint64_t request, const SoakWay& way, const HeldCallback& callback) {
  if (way.kind == SoakKind::kAborted) RequestProcessor::abortRequest(mEnv, mInst, nullptr, mArguments.abort);
  if (isSkipped(way.kind)) return;
  const bool isAsync = isFullAsync(way.kind);
  switch (way.callbacks) {
    case SoakCallbacks::kForeign:
      if (isAsync) finishByName(callback.nativeReq);
      break;
    case SoakCallbacks::kLate:
      isAsync ? mLate.push_back(callback) : mShared.attached.hold(callback);
      break;
    case SoakCallbacks::kRacing:
      if (isAsync) mRacing.push_back(callback);
      break;
    case SoakCallbacks::kInDestroyClient:
      mInDestroyClient.push_back(callback);
      break;
    case SoakCallbacks::kAfterFinish:
      finishByName(callback.nativeReq);
      hold(callback);
      break;
    case SoakCallbacks::kFinishOnly:
      finishByName(callback.nativeReq);
      break;
    case SoakCallbacks::kThrowing:
      throwFor(request);
      hold(callback);
      break;
    case SoakCallbacks::kWithoutMemory:
      hold(callback, true);
      waitForHeld();
      finishByName(callback.nativeReq);
      break;
    default:
      break;
  }
}

// Passes a callback to the pool, which sends it before this client is destroyed.
void SoakClient::hold(HeldCallback callback, bool isWithoutMemory) {
  callback.pending = &mPending;
  callback.isWithoutMemory = isWithoutMemory;
  ++mPending;
  mShared.attached.hold(callback);
}

void SoakClient::waitForHeld() {
  while (mPending.load() > 0) std::this_thread::sleep_for(std::chrono::microseconds(100));
}

bool SoakClient::endOne() {
  test::env()->PushLocalFrame(kLocalReferences);
  const auto done = static_cast<jlongArray>(test::callStatic(kCallbacksClass, "takeDone", "()[J"));
  if (done != nullptr) {
    jlong requestAndAddress[2] = {};
    mEnv->GetLongArrayRegion(done, 0, 2, requestAndAddress);
    mShared.ledger.sawAnnouncement(static_cast<uint64_t>(requestAndAddress[0]));
    end(requestAndAddress[1]);
  }
  mEnv->PopLocalFrame(nullptr);
  return done != nullptr;
}

void SoakClient::end(int64_t address) {
  test::LocalFrame frame;
  jobject compositions =
      test::callStatic(kCallbacksClass, "toEnd", "(J)Ljava/util/List;", static_cast<jlong>(address));
  RequestProcessor::processImageUpdateResult(mEnv, mInst, test::newRequest(0, "capture"), mArguments.images,
                                             mArguments.images, compositions);
}

// Finishes an unannounced request by its id, as if Java had guessed the id. Tries kFlushes times at most,
// each time after a flush, until the request has left the request map.
void SoakClient::finishByName(uint64_t nativeReq) {
  bool isKnown = true;
  for (int i = 0; i < kFlushes && isKnown; ++i) {
    RequestProcessor::flush(mEnv, mInst, nullptr, nullptr);
    end(static_cast<int64_t>(nativeReq));
    bool unused = false;
    isKnown = AlgoNativeRequestMap::getInstance()->getIsFullAsync(nativeReq, unused);
  }
}

}  // namespace orlu::fuzz
