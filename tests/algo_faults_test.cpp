// What the algorithm library may do wrong while a request is on its way. None of it may harm the process,
// keep the request from ending, or leave anything behind.

#include <thread>

#include "callback_data.h"
#include "case_name.h"
#include "request_scene.h"

namespace orlu {
namespace {

using test::env;
using test::getKey;
using test::putKey;

class AlgoFaultsTest : public test::RequestScene {
protected:
  // The other natives, and the end of the client.
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

// "process" and "getSize" are left to the soak: without them a synchronous request waits its ten seconds.
// Without "destroyMetadata" or "destroyClient" there is nobody to free what is left.
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

}  // namespace
}  // namespace orlu
