#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <thread>

#include "algo.h"
#include "algo_native_request_map.h"
#include "callback_data.h"
#include "callback_recorder.h"
#include "case_name.h"
#include "descriptors.h"
#include "fixtures.h"
#include "log_capture.h"
#include "request_processor.h"
#include "thread_state.h"

namespace orlu {
namespace {

using test::env;
using test::javaInt;
using test::javaLong;
using test::putKey;

constexpr char kTag[] = "_V_VASJNI-RequestProcessor";
constexpr int64_t kReqId = 0x2'0000'0001;
constexpr int32_t kTuningMode = 64;  // what the algorithms leave

standin::ScriptedValue tuningMode() {
  std::vector<uint8_t> bytes(4);
  std::memcpy(bytes.data(), &kTuningMode, 4);
  return {"orlu.algo.feedback", "tunning_mode", bytes};
}

std::string printed(std::vector<void*> pointers) {
  std::string text;
  for (void* pointer : pointers) {
    char one[32];
    std::snprintf(one, sizeof one, " %p", pointer);
    text += one;
  }
  return text;
}

class RequestProcessorImageTest : public testing::Test {
protected:
  RequestProcessorImageTest() {
    mAlgo.script.runAlgorithms = false;
    mAlgo.script.values = {tuningMode()};
    mAlgo.script.observer = [this](const standin::AlgoCall& call) { note(call); };
    mAlgo.use();
    const jobject param = test::newComposition();
    putKey(param, "clientId", javaLong(9));
    putKey(param, "algoContextIndex", javaInt(2));
    mInst = RequestProcessor::create(env(), param);
    mAlgo.forget();
    setAlgoList({"flip", "custom"});
  }
  ~RequestProcessorImageTest() override {
    EXPECT_TRUE(test::Algo::waitIdle(60'000));
    RequestProcessor::destroy(env(), mInst);
    const standin::AlgoCounts counts = test::Algo::counts();
    EXPECT_EQ(0, counts.clients);
    EXPECT_EQ(0, counts.parameterBlocks);
    EXPECT_EQ(0, counts.cameraBlocks);
    EXPECT_EQ(0, counts.pendingRequests);
  }

  void setAlgoList(const std::vector<std::string>& names) {
    putKey(mCompositions[0], "orlu.control.algoType", test::javaStrings(names));
  }
  int process(const char* type = "capture") {
    return RequestProcessor::processImage(env(), mInst, test::newRequest(kReqId, type), mInputs, mOutputs,
                                          test::javaList(mCompositions));
  }
  int updateResult(uint64_t nativeReq) {
    putKey(mCompositions[0], "nativeRequestAddr", javaLong(static_cast<int64_t>(nativeReq)));
    return RequestProcessor::processImageUpdateResult(env(), mInst, test::newRequest(kReqId, "capture"),
                                                      mInputs, mOutputs, test::javaList(mCompositions));
  }
  // Of the operations those that begin and end something.
  std::string operations() const {
    return mAlgo.operations(
        {"setValue", "getValue", "getSize", "paramAlgoUpdateToSystem", "paramSystemDownloadToAlgo"});
  }
  int32_t result(const char* key = "orlu.feedback.TunningMode") const {
    const jobject value = test::getKey(mCompositions[0], key);
    return value == nullptr ? -999 : test::intOf(value);
  }
  AlgoNativeClient& client() const {
    return *reinterpret_cast<AlgoNativeClient*>(static_cast<uintptr_t>(mInst));
  }
  int debugLines(const std::string& message) const { return mLog.count(ANDROID_LOG_DEBUG, kTag, message); }
  static bool isKnown(uint64_t nativeReq) {
    return AlgoNativeRequestMap::getInstance()->getRequestId(nativeReq) != -1;
  }
  // The id of the newest request, by the one behind it.
  static uint64_t newestRequest() {
    const uint64_t next = AlgoNativeRequestMap::getInstance()->create(0, nullptr, false);
    AlgoNativeRequestMap::getInstance()->remove(next);
    return next - 1;
  }

  const test::LocalFrame mFrame;
  const test::LogCapture mLog;
  test::Algo mAlgo;
  const test::CallbackRecorder mRecorder;
  std::vector<jobject> mCompositions = {test::newComposition()};
  const jobject mInputs = test::javaList({test::newSmallImage()});
  const jobject mOutputs = test::javaList({test::newSmallImage(), test::newSmallImage()});
  int64_t mInst = 0;
  AlgoProcessRecord mSubmitted;
  std::vector<void*> mDestroyed;
  int32_t mHdrType = -1;  // from 0 on: what the library answers instead of what was stored
  int32_t mNightIndex = 0;

private:
  void note(const standin::AlgoCall& call) {
    if (call.process != nullptr) mSubmitted = *call.process;
    if (call.operation == "destroyMetadata") mDestroyed.push_back(call.block);
    if (call.operation != "getValue" || mHdrType < 0) return;
    void* const answer = const_cast<void*>(call.data);
    if (std::string(call.key) == "hdr_process_type") std::memcpy(answer, &mHdrType, 4);
    if (std::string(call.key) == "night_frame_index") std::memcpy(answer, &mNightIndex, 4);
  }
};

TEST_F(RequestProcessorImageTest, SynchronousRequest) {
  const auto descriptors = test::openDescriptors();
  EXPECT_EQ(0, process());
  EXPECT_EQ(descriptors, test::openDescriptors());
  EXPECT_EQ("createMetadata createMetadata setRaw process destroyMetadata destroyMetadata", operations());
  EXPECT_EQ(kTuningMode, result());

  EXPECT_EQ(2, mSubmitted.requestType);
  EXPECT_EQ(static_cast<uint64_t>(kReqId), mSubmitted.reqId);
  EXPECT_EQ(newestRequest(), mSubmitted.nativeReq);
  EXPECT_EQ((std::vector<std::string>{"flip", "custom"}), mSubmitted.algoList);
  EXPECT_EQ(client().callbackCookie(), mSubmitted.callbackCookie);
  EXPECT_EQ(1U, mSubmitted.inputFrames.size());
  EXPECT_EQ(2U, mSubmitted.outputFrames.size());
  EXPECT_EQ((std::vector<void*>{mSubmitted.metadata[1].block, mSubmitted.metadata[0].block}), mDestroyed);
  EXPECT_FALSE(isKnown(mSubmitted.nativeReq));
  EXPECT_EQ(1, debugLines("algo list: flip custom, reqId = 8589934593, nativeReq " +
                          std::to_string(mSubmitted.nativeReq) + ", isAsync 0"));
  EXPECT_EQ(1, debugLines("process image X"));

  // A callback that comes again, too late.
  test::Algo::sendCallback(client().callbackCookie(), test::shotCallback(mSubmitted.nativeReq), {}, true);
  EXPECT_EQ(1, mLog.count(ANDROID_LOG_DEBUG, "_V_VASJNI-AlgoNativeRequestMap", "notify reqId = 8589934593"));
  EXPECT_EQ("", mRecorder.reports());
}

TEST_F(RequestProcessorImageTest, NullArguments) {
  const jobject request = test::newRequest(kReqId, "capture");
  for (int missing = 0; missing < 4; ++missing) {
    const int64_t inst = missing == 0 ? 0 : mInst;
    const jobject inputs = missing == 1 ? nullptr : mInputs;
    const jobject outputs = missing == 2 ? nullptr : mOutputs;
    const jobject compositions = missing == 3 ? nullptr : mCompositions[0];
    EXPECT_EQ(-1, RequestProcessor::processImage(env(), inst, request, inputs, outputs, compositions));
    EXPECT_EQ(
        -1, RequestProcessor::processImageUpdateResult(env(), inst, request, inputs, outputs, compositions));
    void* const handle = missing == 0 ? nullptr : &client();
    const std::string entered = "E," + printed({handle, request, inputs, outputs, compositions});
    const std::string failed = "failed, input is null," + printed({handle, inputs, outputs, compositions});
    for (const std::string function : {"process image ", "process image update result "}) {
      EXPECT_EQ(1, debugLines(function + entered)) << mLog.text();
      EXPECT_EQ(1, mLog.errors(kTag, function + failed)) << mLog.text();
    }
  }
  EXPECT_EQ("", mAlgo.operations());
}

TEST_F(RequestProcessorImageTest, TheRequestMayBeNull) {
  EXPECT_EQ(0, RequestProcessor::processImage(env(), mInst, nullptr, mInputs, mOutputs,
                                              test::javaList(mCompositions)));
  EXPECT_EQ(0U, mSubmitted.reqId);
  EXPECT_EQ(2, mSubmitted.requestType);
  EXPECT_EQ(kTuningMode, result());
}

TEST_F(RequestProcessorImageTest, RequestTypesAreComparedByTheirBeginnings) {
  const std::pair<const char*, int> kTypes[] = {
      {"previewProcess",      1},
      {"previewProcessImage", 1},
      {"previewProces",       2},
      {"stopProcess",         9},
      {"stopProcess2",        9},
      {"stop",                2},
      {"process",             2},
      {"",                    2},
      {"a stopProcess",       2},
  };
  for (const auto& [text, type] : kTypes) {
    EXPECT_EQ(0, process(text));
    EXPECT_EQ(type, mSubmitted.requestType) << text;
  }
}

TEST_F(RequestProcessorImageTest, FullAsyncRequest) {
  setAlgoList({"hdr", "custom"});
  putKey(mCompositions[0], "isFullAsync", javaInt(5));
  const auto descriptors = test::openDescriptors();
  EXPECT_EQ(0, process());
  EXPECT_TRUE(test::Algo::waitIdle(60'000));
  const uint64_t nativeReq = mSubmitted.nativeReq;
  const std::string id = std::to_string(nativeReq);
  EXPECT_EQ("9 2 8589934593 nativeRequestAddr=Long " + id + "\n", mRecorder.reports());
  EXPECT_TRUE(mLog.contains("nativeReq " + id + ", isAsync 5"));
  EXPECT_EQ(-999, result()) << "results before Java asked for them";
  EXPECT_TRUE(isKnown(nativeReq));
  EXPECT_EQ(1, test::Algo::counts().parameterBlocks);

  setAlgoList({"custom"});  // no longer what the request ran
  mAlgo.forget();
  EXPECT_EQ(0, updateResult(nativeReq));
  EXPECT_EQ(descriptors, test::openDescriptors());
  EXPECT_EQ(kTuningMode, result());
  EXPECT_EQ(-1, result("orlu.feedback.hdrChoosedFrame")) << "not by the list of the request";
  EXPECT_EQ("destroyMetadata", operations());
  EXPECT_EQ(mSubmitted.metadata[0].block, mDestroyed.back());
  EXPECT_FALSE(isKnown(nativeReq));
  EXPECT_EQ(1, debugLines("update result algo list: hdr custom, reqId = 8589934593, nativeReq " + id +
                          " getAlgoListResult 1"));
  EXPECT_EQ(1, debugLines("process image update result X"));
}

TEST_F(RequestProcessorImageTest, ResultsOfAnUnknownRequest) {
  setAlgoList({"hdr"});
  EXPECT_EQ(0, updateResult(0x7000'0000'0000'0000));
  EXPECT_EQ(-1, result("orlu.feedback.hdrChoosedFrame"));
  EXPECT_EQ(0, result());
  EXPECT_EQ("", mAlgo.operations()) << "an operation on no block";
  EXPECT_EQ(1, debugLines("update result algo list: hdr, reqId = 8589934593, nativeReq 8070450532247928832 "
                          "getAlgoListResult 0"));
}

// The camera's mark on a request that needs no algorithms.
TEST_F(RequestProcessorImageTest, MarkedToBeSkipped) {
  putKey(mCompositions[0], "orlu.control.image.score", test::javaDoubles({1'000'000.0}));
  EXPECT_EQ(0, process());
  EXPECT_EQ("createMetadata destroyMetadata", operations());
  EXPECT_EQ(0, result()) << "the results are written all the same";
  EXPECT_FALSE(isKnown(newestRequest()));
  EXPECT_EQ("", mRecorder.reports());

  putKey(mCompositions[0], "isFullAsync", javaInt(1));
  EXPECT_EQ(0, process());
  // Java was told before the call returned.
  const uint64_t nativeReq = newestRequest();
  EXPECT_EQ("9 2 8589934593 nativeRequestAddr=Long " + std::to_string(nativeReq) + "\n", mRecorder.reports());
  EXPECT_TRUE(isKnown(nativeReq));
  EXPECT_EQ(0, updateResult(nativeReq));
  EXPECT_EQ("createMetadata destroyMetadata createMetadata destroyMetadata", operations());
  EXPECT_FALSE(isKnown(nativeReq));
}

struct FrameCase {
  const char* name;
  int hdrType;  // -1: as the frames' modes make it
  int nightIndex;
  size_t frame;
};

class RequestProcessorFrameTest : public RequestProcessorImageTest,
                                  public testing::WithParamInterface<FrameCase> {};

TEST_P(RequestProcessorFrameTest, MetadataOfOneFrameGoesAlong) {
  mCompositions.clear();
  for (const int64_t mode : {2, 2, 8, 2, 2}) {
    const jobject metadata = test::newMetadata();
    test::setTag(metadata, "android.sensor.timestamp",
                 javaLong(1000 + static_cast<int64_t>(mCompositions.size())));
    test::setTag(metadata, "orlu.control.currentModeEx", javaLong(mode));
    mCompositions.push_back(test::newComposition(metadata));
  }
  setAlgoList({"night"});
  mHdrType = GetParam().hdrType;
  mNightIndex = GetParam().nightIndex;
  EXPECT_EQ(0, process());

  const jobject expected = test::objectField(mCompositions[GetParam().frame], "mCaptureResult",
                                             "Landroid/hardware/camera2/CaptureResult;");
  const std::vector<uint8_t> bytes = CameraMetadataParser(env()).getMetadata(expected);
  ASSERT_FALSE(bytes.empty());
  EXPECT_EQ(bytes.size(), mSubmitted.metadata[1].size);
  for (const test::RecordedCall& call : mAlgo.calls()) {
    EXPECT_TRUE(call.operation != "setRaw" || call.bytes == bytes);
  }
}

INSTANTIATE_TEST_SUITE_P(Cases, RequestProcessorFrameTest,
                         testing::Values(FrameCase{"FiveFrames", -1, 0, 2}, FrameCase{"First", 6, 1, 1},
                                         FrameCase{"Last", 6, 4, 4}, FrameCase{"PastTheLast", 6, 5, 0},
                                         FrameCase{"Zero", 6, 0, 0}, FrameCase{"Negative", 6, -1, 0},
                                         FrameCase{"OtherHdrType", 2, 3, 0}),
                         test::CaseName());

TEST_F(RequestProcessorImageTest, EndsWellHoweverItIsCalledBack) {
  using Script = standin::AlgoScript;
  const std::pair<const char*, void (*)(Script&)> kWays[] = {
      {"twice",                      [](Script& script) { script.callbacks = 2; }              },
      {"before process returns",     [](Script& script) { script.callBackBeforeReturn = true; }},
      {"from a thread without a VM", [](Script& script) { script.attachThread = false; }       },
      {"after an error",             [](Script& script) { script.processResult = -1; }         },
  };
  const Script usual = mAlgo.script;
  for (const auto& [name, change] : kWays) {
    SCOPED_TRACE(name);
    mAlgo.script = usual;
    change(mAlgo.script);
    mAlgo.use();
    putKey(mCompositions[0], "orlu.feedback.TunningMode", nullptr);
    EXPECT_EQ(0, process());
    EXPECT_EQ(kTuningMode, result());
    EXPECT_FALSE(isKnown(mSubmitted.nativeReq));
  }
  EXPECT_FALSE(mLog.contains("time out"));
  EXPECT_FALSE(mLog.contains("GetEnv ERROR"));
}

// The only ten seconds of all tests. A request that is removed during its wait shares them.
TEST_F(RequestProcessorImageTest, TimesOutAfterTenSeconds) {
  AlgoNativeRequestMap map;
  const uint64_t removed = map.create(77, nullptr, false);
  std::atomic<int> thread{0};
  std::thread waiter([&] {
    thread = test::threadId();
    EXPECT_TRUE(map.waitForCallback(removed));
  });
  test::untilAsleep(thread);
  EXPECT_TRUE(map.remove(removed));
  EXPECT_EQ(-1, map.getRequestId(removed));

  mAlgo.script.callbacks = 0;
  mAlgo.use();
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(0, process());
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
  EXPECT_EQ(kTuningMode, result());
  EXPECT_FALSE(isKnown(mSubmitted.nativeReq));
  waiter.join();
  for (const char* line : {"wait for reqId = 8589934593 time out", "wait for reqId = 77 time out"}) {
    EXPECT_EQ(1, mLog.errors("_V_VASJNI-AlgoNativeRequestMap", line));
  }
}

}  // namespace
}  // namespace orlu
