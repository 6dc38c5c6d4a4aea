// Java destroys clients and finishes requests at unusual moments: inside the algorithm library's operations,
// around process() and the callback, and on several threads. Sanitizers check memory; the tests count blocks.

#include <algorithm>
#include <atomic>
#include <functional>
#include <set>
#include <thread>
#include <utility>

#include "callback_data.h"
#include "callback_recorder.h"
#include "jni_table.h"
#include "request_scene.h"
#include "static_call_hook.h"

namespace orlu {
namespace {

using test::env;
using test::putKey;

class LifetimesTest : public test::RequestScene {
protected:
  LifetimesTest() {
    mAlgo.script.observer = [this, own = mAlgo.script.observer](const probe::WatchedCall& call) {
      own(call);
      if (call.operation == "process") mBlock = mSubmitted.metadata.front().block;
      if (call.process != nullptr) mSubmittedIds.insert(mSubmitted.nativeReq);
      mAsked.emplace(call.operation);
      if (call.operation == mWatched && mDo) std::exchange(mDo, nullptr)();
    };
  }

  // Runs `what` once, inside the next call of the operation.
  void inside(const std::string& operation, std::function<void()> what) {
    mWatched = operation;
    mDo = std::move(what);
  }
  // Calls back like the algorithm library, on this thread.
  void callBack(uint64_t cookie, uint64_t nativeReq) {
    const auto* const callback = reinterpret_cast<const AlgoResultCallback*>(cookie);
    (*callback)(android::hardware::hidl_vec<uint8_t>(test::shotCallback(nativeReq)), {}, {});
  }
  void callBack() { callBack(mSubmitted.callbackCookie, mSubmitted.nativeReq); }
  void destroy() {
    if (mInst != 0) RequestProcessor::destroy(env(), std::exchange(mInst, 0));
  }
  bool isBlockDestroyed() const {
    return std::find(mDestroyed.begin(), mDestroyed.end(), mBlock) != mDestroyed.end();
  }

  // Finishes all requests that Java may finish, then destroys the client.
  void finishAll() {
    if (mInst == 0) create();
    for (uint64_t id : std::exchange(mSubmittedIds, {})) updateResult(id);
    destroy();
  }

  std::string mWatched;
  std::set<std::string> mAsked;  // names of the operations called
  std::set<uint64_t> mSubmittedIds;
  std::function<void()> mDo;
  void* mBlock = nullptr;  // the newest request's parameter block
};

// The algorithm library calls back inside setRaw, the last operation before process. The library knows the
// cookie from the previous request.
TEST_F(LifetimesTest, CallsBackBeforeProcess) {
  mAlgo.script.callbacks = 0;
  create();
  for (const bool onAnotherThread : {false, true}) {
    SCOPED_TRACE(onAnotherThread);
    const test::LocalFrame frame;
    EXPECT_EQ(0, process(1));
    callBack();
    EXPECT_EQ(0, updateResult(mSubmitted.nativeReq));
    uint64_t id = 0;
    const test::StaticCallHook finishing([this, &id](va_list) {
      const test::LocalFrame callFrame;
      EXPECT_EQ(0, updateResult(id));
    });
    bool isAlive = false;
    const uint64_t cookie = mSubmitted.callbackCookie;
    inside("setRaw", [&] {
      id = newestRequest();
      if (onAnotherThread) {
        test::Algo::sendCallback(cookie, test::shotCallback(id), {}, false);
        EXPECT_EQ(0, updateResult(id)) << "an id is unknown until it is announced";
      } else {
        callBack(cookie, id);
        EXPECT_FALSE(isKnown(id)) << "Java has finished the request";
      }
      inside("process", [&] { isAlive = test::Algo::counts().parameterBlocks == 1; });
    });
    EXPECT_EQ(0, process(1));
    EXPECT_TRUE(isAlive) << "process got a block that was destroyed";
    if (onAnotherThread) updateResult(mSubmitted.nativeReq);
    EXPECT_EQ(0, test::Algo::counts().parameterBlocks);
  }
}

// The call that tells Java of a finished request fails. Destroying the client must finish the request, unless
// Java knows the id from elsewhere and finishes the request first.
TEST_F(LifetimesTest, AnAnnouncementFails) {
  mAlgo.script.callbacks = 0;
  for (const char* failing : {"NewObjectV", "FindClass", "CallStaticVoidMethodV"}) {
    for (const bool byJava : {false, true}) {
      const test::LocalFrame frame;
      SCOPED_TRACE(failing + std::string(byJava ? ", finished by Java" : ""));
      create();
      EXPECT_EQ(0, process(1));
      if (failing == std::string("CallStaticVoidMethodV")) {
        const test::StaticCallHook throwing(
            [](va_list) { env()->ThrowNew(env()->FindClass("java/lang/OutOfMemoryError"), "no heap"); });
        callBack();
      } else {
        test::JniTable table(env());
        table.fail(failing);
        callBack();
        EXPECT_EQ(0, table.calls("CallStaticVoidMethodV")) << "Java was called without a map";
      }
      EXPECT_TRUE(isKnown(mSubmitted.nativeReq));
      if (byJava) updateResult(mSubmitted.nativeReq);
      destroy();
      EXPECT_FALSE(isKnown(mSubmitted.nativeReq));
      EXPECT_EQ(0, test::Algo::counts().parameterBlocks);
    }
  }
}

// Calls each native of the table. Inside each operation that the native calls, destroys the client in use or
// another client.
TEST_F(LifetimesTest, JavaDestroysAClientInsideAnyOperation) {
  const std::pair<const char*, std::function<void(int64_t)>> kNatives[] = {
      {"init",      [](int64_t inst) { RequestProcessor::init(env(), inst, nullptr); }                 },
      {"release",   [](int64_t inst) { RequestProcessor::release(env(), inst, nullptr); }              },
      {"flush",     [](int64_t inst) { RequestProcessor::flush(env(), inst, nullptr, nullptr); }       },
      {"abort",
       [this](int64_t inst) { RequestProcessor::abortRequest(env(), inst, nullptr, mCompositions[0]); }},
      {"getData",   [this](int64_t inst) { RequestProcessor::getData(env(), inst, mCompositions[0]); } },
      {"translate",
       [this](int64_t inst) {
         RequestProcessor::translateParamFiles(env(), inst, test::newSharedMemory(16), mCompositions[0]);
       }                                                                                               },
      {"process",   [this](int64_t) { process(0); }                                                    },
      {"async",     [this](int64_t) { process(1); }                                                    },
      {"update",    [this](int64_t) { updateResult(mSubmitted.nativeReq); }                            },
      {"destroy",
       [this](int64_t inst) {
         if (mInst != 0) RequestProcessor::destroy(env(), inst);
       }                                                                                               },
  };
  putKey(mCompositions[0], "AbortKey", test::javaString("orlu.control.frameFlag"));
  putKey(mCompositions[0], "AbortVal", test::javaLong(3));
  int destroyed = 0;
  for (const auto& [name, native] : kNatives) {
    // Finds the operations that the native calls.
    const test::LocalFrame firstFrame;
    create();
    process(1);
    EXPECT_TRUE(test::Algo::waitIdle(60'000));
    mAsked.clear();
    native(mInst);
    const std::set<std::string> operations = mAsked;
    EXPECT_TRUE(test::Algo::waitIdle(60'000));
    if (std::string(name) == "destroy") mInst = 0;
    finishAll();
    for (const bool isTheClientInUse : {true, false}) {
      for (const std::string& operation : operations) {
        const test::LocalFrame frame;
        SCOPED_TRACE(std::string(name) + ", destroying a client inside " + operation);
        create();
        EXPECT_EQ(0, process(1));
        EXPECT_TRUE(test::Algo::waitIdle(60'000));
        const int64_t used = mInst;
        int64_t other = isTheClientInUse ? 0 : RequestProcessor::create(env(), nullptr);
        inside(operation, [&] {
          ++destroyed;
          if (isTheClientInUse) {
            destroy();
          } else {
            RequestProcessor::destroy(env(), std::exchange(other, 0));
          }
        });
        native(used);
        if (std::string(name) == "destroy") mInst = 0;
        mDo = nullptr;
        if (other != 0) RequestProcessor::destroy(env(), other);
        EXPECT_TRUE(test::Algo::waitIdle(60'000));
        finishAll();
        const standin::AlgoCounts counts = test::Algo::counts();
        EXPECT_EQ(0, counts.clients);
        EXPECT_EQ(0, counts.parameterBlocks);
        EXPECT_EQ(0, counts.cameraBlocks);
      }
    }
  }
  EXPECT_LT(50, destroyed) << "most operations were not reached";
}

TEST_F(LifetimesTest, JavaFinishesARequestAtAnyMoment) {
  enum Moment { kInProcess, kAfterProcess, kInCallback, kAfterCallback, kAfterClient };
  for (const bool callsBackInside : {false, true}) {
    for (const bool isClientGone : {false, true}) {
      for (const Moment moment : {kInProcess, kAfterProcess, kInCallback, kAfterCallback, kAfterClient}) {
        const test::LocalFrame frame;
        SCOPED_TRACE(testing::Message() << moment << ' ' << callsBackInside << ' ' << isClientGone);
        mAlgo.script.callbacks = 0;
        create();
        const auto finish = [this] {
          const test::LocalFrame callFrame;
          EXPECT_EQ(0, updateResult(mSubmitted.nativeReq));
        };
        const test::StaticCallHook hook([&](va_list) {
          if (moment == kInCallback) finish();
          if (moment == kInCallback && isClientGone) destroy();
        });
        inside("process", [&] {
          if (moment == kInProcess) finish();
          if (callsBackInside) callBack();
          EXPECT_FALSE(isBlockDestroyed()) << "process() still uses the block";
        });
        mDestroyed.clear();
        EXPECT_EQ(0, process(1));
        const uint64_t cookie = mSubmitted.callbackCookie;
        if (moment == kAfterProcess) finish();
        if (!callsBackInside) callBack(cookie, mSubmitted.nativeReq);
        if (moment == kAfterCallback) finish();
        if (isClientGone) {
          destroy();
          callBack(cookie, mSubmitted.nativeReq);
          create();
        }
        // Has no effect if the request is already finished: the id is unknown.
        finish();
        EXPECT_EQ(1, std::count(mDestroyed.begin(), mDestroyed.end(), mBlock));
        destroy();
        EXPECT_FALSE(isKnown(mSubmitted.nativeReq));
        EXPECT_EQ(0, test::Algo::counts().parameterBlocks);
      }
    }
  }
}

TEST_F(LifetimesTest, ManyThreadsFinishOneRequest) {
  mAlgo.script.callbacks = 0;
  create();
  for (const size_t count : {2U, 4U}) {
    for (const bool isCalledBack : {false, true}) {
      const test::LocalFrame frame;
      EXPECT_EQ(0, process(1));
      if (isCalledBack) callBack();
      const uint64_t id = mSubmitted.nativeReq;
      std::atomic<int> taken{0};
      std::vector<std::thread> threads;
      for (size_t i = 0; i < count; ++i) {
        threads.emplace_back([&] {
          AlgoNativeRequestMap* const map = AlgoNativeRequestMap::getInstance();
          void* metadata = nullptr;
          std::vector<std::string> list;
          if (!map->takeForFinish(id, metadata, list)) return;
          ++taken;
          client().context().destroyMetadata(map->finish(id));
        });
      }
      for (std::thread& thread : threads) thread.join();
      EXPECT_EQ(1, taken);
      EXPECT_FALSE(isKnown(id));
      EXPECT_EQ(isCalledBack ? 0 : 1, test::Algo::counts().parameterBlocks);
      if (!isCalledBack) callBack();
      EXPECT_EQ(0, test::Algo::counts().parameterBlocks);
    }
  }
}

// On a thread without a JNI environment, the destructor logs this error before it destroys the algorithm
// library's client.
TEST_F(LifetimesTest, LooksForTheEnvironmentFirst) {
  create();
  mLog.clear();
  std::thread([this] { destroy(); }).join();
  const std::string text = mLog.text();
  const size_t destructor = text.find("AlgoNativeClient destructor");
  const size_t error = text.find("~AlgoNativeClient: JavaVM GetEnv ERROR");
  EXPECT_LT(destructor, error) << text;
  EXPECT_LT(error, text.find("destroy client 0x")) << text;
}

}  // namespace
}  // namespace orlu
