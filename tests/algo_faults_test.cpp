// What the algorithm library may do wrong while a request is on its way. None of it may harm the process,
// keep the request from ending, or leave anything behind.

#include <gtest/gtest.h>

#include <thread>

#include "algo.h"
#include "algo_native_request_map.h"
#include "case_name.h"
#include "fixtures.h"
#include "request_processor.h"
#include "shot_callback.h"

namespace orlu {
namespace {

using standin::AlgoCall;
using standin::AlgoCounts;
using test::env;
using test::shotCallback;

class AlgoFaultsTest : public testing::Test {
protected:
  AlgoFaultsTest() : mCounts(test::Algo::counts()) {
    mAlgo.script.runAlgorithms = false;
    mAlgo.script.observer = [this](const AlgoCall& call) {
      if (call.process == nullptr) return;
      mNativeReq = call.process->nativeReq;
      mCookie = call.process->callbackCookie;
    };
    mComposition = test::newComposition();
    test::putKey(mComposition, "orlu.control.algoType", test::javaStrings({"night", "jpegEncode"}));
    test::putKey(mComposition, "orlu.parameter.processedAlgo", test::javaLong(0));
  }

  // Uses the script for a client of its own.
  void makeClient() {
    mAlgo.use();
    mInst = RequestProcessor::create(env(), nullptr);
    RequestProcessor::init(env(), mInst, nullptr);
  }

  int process(bool isFullAsync = false) {
    test::putKey(mComposition, "isFullAsync", test::javaInt(isFullAsync ? 1 : 0));
    return RequestProcessor::processImage(env(), mInst, test::newRequest(5, "capture"), images(), images(),
                                          test::javaList({mComposition}));
  }

  // The second half of a full-async request.
  int update(uint64_t nativeReq) {
    test::putKey(mComposition, "nativeRequestAddr", test::javaLong(static_cast<int64_t>(nativeReq)));
    return RequestProcessor::processImageUpdateResult(env(), mInst, test::newRequest(5, "capture"), images(),
                                                      images(), test::javaList({mComposition}));
  }

  // The other natives, and the end of the client.
  void callTheRest() {
    RequestProcessor::flush(env(), mInst, nullptr, nullptr);
    test::putKey(mComposition, "AbortKey", test::javaString("orlu.control.frameFlag"));
    test::putKey(mComposition, "AbortVal", test::javaLong(3));
    RequestProcessor::abortRequest(env(), mInst, nullptr, mComposition);
    RequestProcessor::getData(env(), mInst, mComposition);
    RequestProcessor::translateParamFiles(env(), mInst, test::newSharedMemory(16), mComposition);
    RequestProcessor::release(env(), mInst, nullptr);
    RequestProcessor::destroy(env(), mInst);
  }

  static jobject images() { return test::javaList({test::newSmallImage()}); }

  static bool isKnown(uint64_t nativeReq) {
    bool unused = false;
    return AlgoNativeRequestMap::getInstance()->getIsFullAsync(nativeReq, unused);
  }

  void expectNothingLeft() {
    EXPECT_TRUE(test::Algo::waitIdle(15'000));
    EXPECT_FALSE(isKnown(mNativeReq));
    EXPECT_EQ(mCounts.parameterBlocks, test::Algo::counts().parameterBlocks);
    EXPECT_EQ(mCounts.cameraBlocks, test::Algo::counts().cameraBlocks);
    EXPECT_EQ(mCounts.clients, test::Algo::counts().clients);
  }

  test::LocalFrame mFrame;
  test::Algo mAlgo;
  AlgoCounts mCounts;
  jobject mComposition;
  int64_t mInst = 0;
  uint64_t mNativeReq = 0;
  uint64_t mCookie = 0;
};

// "process" and "getSize" are left to the soak: without them a synchronous request waits its ten seconds.
// Without "destroyMetadata" or "destroyClient" there is nobody to free what is left.
class MissingOperationTest : public AlgoFaultsTest, public testing::WithParamInterface<const char*> {};

TEST_P(MissingOperationTest, IsDoneWithout) {
  mAlgo.script.notOffered = {GetParam()};
  makeClient();
  EXPECT_EQ(0, process());
  EXPECT_NE(nullptr, test::getKey(mComposition, "orlu.feedback.TunningMode"));
  EXPECT_EQ(std::string::npos, mAlgo.operations().find(std::string(GetParam()) + " "));
  callTheRest();
  expectNothingLeft();
}

INSTANTIATE_TEST_SUITE_P(Operations, MissingOperationTest,
                         testing::Values("init", "uninit", "getData", "flush", "command", "createClient",
                                         "createMetadata", "setValue", "getValue", "setRaw",
                                         "translateParamFile", "paramAlgoUpdateToSystem",
                                         "paramSystemDownloadToAlgo"),
                         [](const auto& operation) { return std::string(operation.param); });

TEST_F(AlgoFaultsTest, AFullAsyncRequestThatTheLibraryDoesNotTakeCanBeEnded) {
  mAlgo.script.notOffered = {"process"};
  makeClient();
  // An id larger than every other so far is the next one's but one.
  AlgoNativeRequestMap* const map = AlgoNativeRequestMap::getInstance();
  const uint64_t before = map->create(0, nullptr, false);
  map->remove(before);
  EXPECT_EQ(0, process(true));
  EXPECT_TRUE(isKnown(before + 1));
  EXPECT_EQ(0, update(before + 1));
  EXPECT_FALSE(isKnown(before + 1));
  callTheRest();
  expectNothingLeft();
}

struct CallbackCase {
  const char* name;
  int result;
  int callbacks;
  bool beforeReturn;
  bool attached;
};

class FaultyCallbackTest : public AlgoFaultsTest, public testing::WithParamInterface<CallbackCase> {
protected:
  FaultyCallbackTest() {
    mAlgo.script.processResult = GetParam().result;
    mAlgo.script.callbacks = GetParam().callbacks;
    mAlgo.script.callBackBeforeReturn = GetParam().beforeReturn;
    mAlgo.script.attachThread = GetParam().attached;
  }
};

TEST_P(FaultyCallbackTest, EndsASynchronousRequest) {
  makeClient();
  EXPECT_EQ(0, process());
  EXPECT_NE(nullptr, test::getKey(mComposition, "orlu.feedback.TunningMode"));
  callTheRest();
  expectNothingLeft();
}

TEST_P(FaultyCallbackTest, LeavesAFullAsyncRequestToBeEndedOnce) {
  makeClient();
  EXPECT_EQ(0, process(true));
  EXPECT_TRUE(test::Algo::waitIdle(15'000));
  EXPECT_TRUE(isKnown(mNativeReq));
  EXPECT_EQ(0, update(mNativeReq));
  EXPECT_EQ(0, update(mNativeReq));
  callTheRest();
  expectNothingLeft();
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Cases, FaultyCallbackTest, testing::Values(
    CallbackCase{"Error",             -1, 1, false, true},
    CallbackCase{"BeforeReturn",       0, 1, true,  true},
    CallbackCase{"Twice",              0, 2, false, true},
    CallbackCase{"TwiceBeforeReturn",  0, 2, true,  true},
    CallbackCase{"Unattached",         0, 1, false, false},
    CallbackCase{"ManyUnattached",     0, 9, false, false}),
    test::CaseName());
// clang-format on

TEST_F(AlgoFaultsTest, ManyThreadsCallBackForOneRequest) {
  makeClient();
  mAlgo.script.callbacks = 0;
  mAlgo.use();
  EXPECT_EQ(0, process(true));
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back(
        [this, i] { test::Algo::sendCallback(mCookie, shotCallback(mNativeReq), {}, i % 2 == 0); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(isKnown(mNativeReq));
  EXPECT_EQ(0, update(mNativeReq));
  callTheRest();
  expectNothingLeft();
}

// A value of any size: what is missing keeps its initial value, what is too much is not read.
TEST_F(AlgoFaultsTest, ValuesOfTheWrongSizeAreReadAsFarAsTheyGo) {
  const std::vector<uint8_t> huge(100'000, 1);
  mAlgo.script.values = {
      {"orlu.algo.feedback",  "tunning_mode",             {2, 1}      },
      {"orlu.algo.feedback",  "hdr_choosed_frame",        {}          },
      {"orlu.algo.feedback",  "supermoon_capture_result", {5}         },
      {"orlu.algo.feedback",  "frame_select_result",      {0, 0, 0, 0}},
      {"orlu.algo.feedback",  "pure2proc_enabled",        huge        },
      {"orlu.algo.parameter", "processed_algo",           huge        },
      {"orlu.algo.parameter", "frame_clarity_score",      huge        },
      {"orlu.algo.system",    "real_gain",                {}          }
  };
  test::putKey(mComposition, "orlu.control.algoType", test::javaStrings({"hdr"}));
  makeClient();
  EXPECT_EQ(0, process());
  // Little-endian: the bytes that are there replace the lowest ones of 0 or -1.
  EXPECT_EQ(0x0102, test::intOf(test::getKey(mComposition, "orlu.feedback.TunningMode")));
  EXPECT_EQ(-1, test::intOf(test::getKey(mComposition, "orlu.feedback.hdrChoosedFrame")));
  EXPECT_EQ(-251, test::intOf(test::getKey(mComposition, "orlu.feedback.superMoonCaptureResult")));
  EXPECT_EQ(1, test::intOf(test::getKey(mComposition, "orlu.feedback.pure2proc.enabled")));
  EXPECT_EQ(0x0101010101010101, test::longOf(test::getKey(mComposition, "orlu.parameter.processedAlgo")));
  EXPECT_EQ(std::vector<int64_t>{0},
            test::longsOf(test::getKey(mComposition, "orlu.feedback.frameSelectResult")));
  EXPECT_EQ(0.0F, test::floatsOf(test::getKey(mComposition, "orlu.feedback.rawhdrISPAEParams"))[0]);
  callTheRest();
  expectNothingLeft();
}

}  // namespace
}  // namespace orlu
