// Faults of the algorithm library during a request must not harm the process, block the request, or leak.

#include <algorithm>
#include <sstream>
#include <thread>
#include <utility>

#include "callback_data.h"
#include "callback_recorder.h"
#include "case_name.h"
#include "request_scene.h"
#include "static_call_hook.h"

namespace orlu {
namespace {

using test::env;
using test::getKey;
using test::putKey;

class AlgoFaultsTest : public test::RequestScene {
protected:
  // Calls the natives to flush, abort, query data and translate a file. Then releases the client without
  // destroying it.
  void callTheRest() {
    RequestProcessor::flush(env(), mInst, nullptr, nullptr);
    putKey(mCompositions[0], "AbortKey", test::javaString("orlu.control.frameFlag"));
    putKey(mCompositions[0], "AbortVal", test::javaLong(3));
    RequestProcessor::abortRequest(env(), mInst, nullptr, mCompositions[0]);
    RequestProcessor::getData(env(), mInst, mCompositions[0]);
    RequestProcessor::translateParamFiles(env(), mInst, test::newSharedMemory(16), mCompositions[0]);
    RequestProcessor::release(env(), mInst, nullptr);
  }
};

// Omits "process" and "getSize": without them a synchronous request waits for the full timeout of ten
// seconds. Omits "destroyMetadata" and "destroyClient": without them a test could not free its blocks or
// client.
class MissingOperationTest : public AlgoFaultsTest, public testing::WithParamInterface<const char*> {};

TEST_P(MissingOperationTest, IsDoneWithout) {
  mAlgo.script.notOffered = {GetParam()};
  create();
  RequestProcessor::init(env(), mInst, nullptr);
  EXPECT_EQ(0, process());
  EXPECT_NE(nullptr, getKey(mCompositions[0], "orlu.feedback.TunningMode"));
  callTheRest();
}

INSTANTIATE_TEST_SUITE_P(Operations, MissingOperationTest,
                         testing::Values("init", "uninit", "getData", "flush", "command", "createClient",
                                         "createMetadata", "setValue", "getValue", "setRaw",
                                         "translateParamFile", "paramAlgoUpdateToSystem",
                                         "paramSystemDownloadToAlgo"),
                         [](const auto& operation) { return std::string(operation.param); });

struct CallbackCase : test::NamedCase {
  int result;
  int callbacks;
  bool beforeReturn;
  bool attached;
};

class FaultyCallbackTest : public AlgoFaultsTest, public testing::WithParamInterface<CallbackCase> {};

TEST_P(FaultyCallbackTest, EndsARequestOnce) {
  mAlgo.script.processResult = GetParam().result;
  mAlgo.script.callbacks = GetParam().callbacks;
  mAlgo.script.callBackBeforeReturn = GetParam().beforeReturn;
  mAlgo.script.attachThread = GetParam().attached;
  create();
  EXPECT_EQ(0, process());
  EXPECT_EQ(kTuningMode, result());
  EXPECT_FALSE(isKnown(mSubmitted.nativeReq));
  EXPECT_TRUE(test::Algo::waitIdle(60'000));
  EXPECT_FALSE(mLog.contains("time out"));
  EXPECT_FALSE(mLog.contains("GetEnv ERROR"));

  EXPECT_EQ(0, process(1));
  EXPECT_TRUE(test::Algo::waitIdle(60'000));
  EXPECT_TRUE(isKnown(mSubmitted.nativeReq));
  EXPECT_EQ(0, updateResult(mSubmitted.nativeReq));
  EXPECT_EQ(0, updateResult(mSubmitted.nativeReq));
  callTheRest();
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Cases, FaultyCallbackTest, testing::Values(
    CallbackCase{"Error",             -1, 1, false, true},
    CallbackCase{"BeforeReturn",       0, 1, true,  true},
    CallbackCase{"Twice",              0, 2, false, true},
    CallbackCase{"TwiceBeforeReturn",  0, 2, true,  true},
    CallbackCase{"ManyUnattached",     0, 9, false, false}),
    test::CaseName());
// clang-format on

TEST_F(AlgoFaultsTest, ManyThreadsCallBackForOneRequest) {
  mAlgo.script.callbacks = 0;
  create();
  EXPECT_EQ(0, process(1));
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([this, i] {
      test::Algo::sendCallback(mSubmitted.callbackCookie, test::shotCallback(mSubmitted.nativeReq), {},
                               i % 2 == 0);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(isKnown(mSubmitted.nativeReq));
  EXPECT_EQ(0, updateResult(mSubmitted.nativeReq));
}

// Tests operations that throw or leave a Java exception pending. An operation that creates an object
// misbehaves before it creates the object. Any other operation misbehaves after its work.
class UnrulyOperationTest : public AlgoFaultsTest, public testing::WithParamInterface<const char*> {
protected:
  // Calls the natives of a client. Returns a line "announced" if Java was notified, then a line for each
  // value that was set, with its key and first bytes.
  std::string storedIn(test::CallbackRecorder& recorder) {
    mAlgo.forget();
    mAlgo.use();
    native([&] { mInst = RequestProcessor::create(env(), nullptr); });
    native([&] { RequestProcessor::init(env(), mInst, nullptr); });
    // If the entry throws, there are no operations, so a synchronous request would wait for the full timeout.
    const bool isOffered = mAlgo.script.throwing.count("AlgoInterfaceEntry") == 0;
    if (isOffered) native([&] { EXPECT_EQ(0, process()); });
    native([&] { EXPECT_EQ(0, process(1)); });
    EXPECT_TRUE(test::Algo::waitIdle(60'000));
    native([&] { updateResult(mSubmitted.nativeReq); });
    callTheRest();
    native([&] { RequestProcessor::destroy(env(), std::exchange(mInst, 0)); });
    std::string stored = recorder.reports().empty() ? "" : "announced\n";
    for (const test::RecordedCall& call : mAlgo.calls()) {
      if (call.operation == "setValue") stored += call.key + ' ' + hexOf(call.bytes) + '\n';
    }
    return stored;
  }
  static void native(const std::function<void()>& call) {
    call();
    EXPECT_FALSE(env()->ExceptionCheck());
    env()->ExceptionClear();
  }
  static std::string hexOf(const std::vector<uint8_t>& bytes) {
    std::ostringstream text;
    for (size_t i = 0; i < bytes.size() && i < 8; ++i) text << std::hex << int{bytes[i]} << ' ';
    return text.str();
  }

  test::CallbackRecorder mRecorder;
};

TEST_P(UnrulyOperationTest, ThrowsInVain) {
  mAlgo.script.throwing = {GetParam()};
  storedIn(mRecorder);
  EXPECT_TRUE(mLog.contains(GetParam() + std::string(" threw"))) << mLog.text();
}

TEST_P(UnrulyOperationTest, LeavesAJavaExceptionThatChangesNothing) {
  setAlgoList({"night"});
  for (const char* key : {"orlu.control.mirror", "orlu.capture.temperature", "orlu.control.filter.mask"}) {
    putKey(mCompositions[0], key, test::javaInt(33));
  }
  const std::string usual = storedIn(mRecorder);
  mAlgo.script.leaving = {GetParam()};
  EXPECT_EQ(usual, storedIn(mRecorder));
  EXPECT_TRUE(mLog.contains("left a Java exception")) << mLog.text();
}

INSTANTIATE_TEST_SUITE_P(Operations, UnrulyOperationTest,
                         testing::Values("AlgoInterfaceEntry", "init", "process", "uninit", "getData",
                                         "flush", "command", "createClient", "destroyClient",
                                         "translateParamFile", "createMetadata", "destroyMetadata", "getSize",
                                         "setValue", "getValue", "setRaw", "paramSystemDownloadToAlgo"),
                         [](const auto& operation) { return std::string(operation.param); });

TEST_F(AlgoFaultsTest, CallsBackWithAJavaExceptionPending) {
  test::CallbackRecorder recorder;
  mAlgo.script.leaving = {"callback"};
  create();
  EXPECT_EQ(0, process(1));
  EXPECT_TRUE(test::Algo::waitIdle(60'000));
  EXPECT_NE("", recorder.reports());
  EXPECT_TRUE(mLog.contains("left a Java exception"));
  EXPECT_EQ(0, updateResult(mSubmitted.nativeReq));
}

// Java destroys its client normally, but a shot is still in flight: destroyClient() calls back on the calling
// thread and on the library's thread.
TEST_F(AlgoFaultsTest, CallsBackWhileItsClientIsDestroyed) {
  test::CallbackRecorder recorder;
  mAlgo.script.delay = std::chrono::milliseconds(50);
  mAlgo.script.notOffered = {"flush"};
  mAlgo.script.finishInDestroyClient = true;
  mAlgo.script.observer = [this, own = mAlgo.script.observer](const probe::WatchedCall& call) {
    own(call);
    if (call.operation != "destroyClient") return;
    const auto* const callback = reinterpret_cast<const AlgoResultCallback*>(mSubmitted.callbackCookie);
    (*callback)(android::hardware::hidl_vec<uint8_t>(test::shotCallback(mSubmitted.nativeReq)), {}, {});
  };
  create();
  EXPECT_EQ(0, process(1));
  RequestProcessor::destroy(env(), std::exchange(mInst, 0));
  const std::string reports = recorder.reports();
  EXPECT_EQ(2, std::count(reports.begin(), reports.end(), '\n'))
      << "one from this thread, one from the library's thread";
  create();
  EXPECT_EQ(0, updateResult(mSubmitted.nativeReq));
}

// The library calls back after Java has destroyed the client, for example after a timeout.
TEST_F(AlgoFaultsTest, CallsBackWhenItsClientIsGone) {
  test::CallbackRecorder recorder;
  mAlgo.script.callbacks = 0;
  create();
  EXPECT_EQ(0, process(1));
  RequestProcessor::destroy(env(), std::exchange(mInst, 0));
  for (bool attached : {true, false}) {
    test::Algo::sendCallback(mSubmitted.callbackCookie, test::shotCallback(mSubmitted.nativeReq), {},
                             attached);
  }
  EXPECT_EQ("", recorder.reports());
  EXPECT_TRUE(mLog.contains("callback for a client that is gone, 2 so far")) << mLog.text();
}

// Java finishes its request and destroys its client in a callback that arrives before process() returns.
TEST_F(AlgoFaultsTest, JavaGivesUpItsClientDuringProcess) {
  mAlgo.script.callBackBeforeReturn = true;
  create();
  const test::StaticCallHook hook([this](va_list) {
    const test::LocalFrame frame;
    EXPECT_EQ(0, updateResult(mSubmitted.nativeReq));
    EXPECT_EQ(0, RequestProcessor::destroy(env(), std::exchange(mInst, 0)));
  });
  EXPECT_EQ(0, process(1));
  EXPECT_EQ(0, mInst);
}

// The id is not valid while the request is being submitted. After submission, Java may finish the request
// once, even before the library calls back. The request's parameter block lives until the library calls back.
TEST_F(AlgoFaultsTest, NobodyFinishesARequestByGuessingItsId) {
  mAlgo.script.callbacks = 0;
  mAlgo.script.observer = [this, own = mAlgo.script.observer](const probe::WatchedCall& call) {
    own(call);
    if (call.operation != "process") return;
    updateResult(mSubmitted.nativeReq);
    EXPECT_EQ(0, result());
  };
  mAnswers = {
      {"tunning_mode", kTuningMode}
  };
  create();
  EXPECT_EQ(0, process(1));
  EXPECT_TRUE(isKnown(mSubmitted.nativeReq));
  EXPECT_EQ(0, updateResult(mSubmitted.nativeReq));
  EXPECT_EQ(kTuningMode, result()) << "the result was not put";
  EXPECT_FALSE(isKnown(mSubmitted.nativeReq));
  EXPECT_EQ(1, test::Algo::counts().parameterBlocks) << "the library may still use the block";
  EXPECT_EQ(0, updateResult(mSubmitted.nativeReq));
  test::Algo::sendCallback(mSubmitted.callbackCookie, test::shotCallback(mSubmitted.nativeReq), {}, false);
  EXPECT_EQ(0, test::Algo::counts().parameterBlocks);
}

}  // namespace
}  // namespace orlu
