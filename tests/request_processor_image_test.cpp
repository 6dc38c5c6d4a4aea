#include <chrono>
#include <sstream>
#include <thread>
#include <tuple>

#include "callback_data.h"
#include "callback_recorder.h"
#include "process_figures.h"
#include "request_scene.h"
#include "thread_state.h"

namespace orlu {
namespace {

using test::env;
using test::javaLong;
using test::putKey;

constexpr char kTag[] = "_V_VASJNI-RequestProcessor";

std::string printed(const std::vector<void*>& pointers) {
  std::ostringstream text;
  for (void* pointer : pointers) {
    if (pointer == nullptr) text << " (nil)";
    if (pointer != nullptr) text << ' ' << pointer;
  }
  return text.str();
}

class RequestProcessorImageTest : public test::RequestScene {
protected:
  RequestProcessorImageTest() {
    const jobject param = test::newComposition();
    putKey(param, "clientId", javaLong(9));
    putKey(param, "algoContextIndex", test::javaInt(2));
    create(param);
  }

  int debugLines(const std::string& message) const { return mLog.count(ANDROID_LOG_DEBUG, kTag, message); }

  const test::CallbackRecorder mRecorder;
};

TEST_F(RequestProcessorImageTest, SynchronousRequest) {
  const auto descriptors = test::openDescriptors();
  EXPECT_EQ(0, process());
  EXPECT_EQ(descriptors, test::openDescriptors());
  EXPECT_EQ("createMetadata, createMetadata, setRaw, process, destroyMetadata, destroyMetadata", mTrace);
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

  // The request is finished, so a second callback has no effect.
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
    using P = RequestProcessor;
    EXPECT_EQ(-1, P::processImage(env(), inst, request, inputs, outputs, compositions));
    EXPECT_EQ(-1, P::processImageUpdateResult(env(), inst, request, inputs, outputs, compositions));
    void* const handle = missing == 0 ? nullptr : &client();
    const std::string entered = "E," + printed({handle, request, inputs, outputs, compositions});
    const std::string failed = "failed, input is null," + printed({handle, inputs, outputs, compositions});
    for (const std::string function : {"process image ", "process image update result "}) {
      EXPECT_EQ(1, debugLines(function + entered)) << mLog.text();
      EXPECT_EQ(1, mLog.errors(kTag, function + failed)) << mLog.text();
    }
  }
  EXPECT_EQ("", mTrace);
}

TEST_F(RequestProcessorImageTest, RequestTypesAreComparedByTheirBeginnings) {
  const std::pair<const char*, int> kTypes[] = {
      {"previewProcessImage", 1},
      {"previewProces",       2},
      {"stopProcess2",        9},
      {"a stopProcess",       2},
  };
  for (const auto& [text, type] : kTypes) {
    EXPECT_EQ(0, process(0, test::newRequest(kReqId, text)));
    EXPECT_EQ(type, mSubmitted.requestType) << text;
  }
  EXPECT_EQ(0, process(0, nullptr));
  EXPECT_EQ(0U, mSubmitted.reqId);
  EXPECT_EQ(2, mSubmitted.requestType);
}

TEST_F(RequestProcessorImageTest, FullAsyncRequest) {
  setAlgoList({"hdr", "custom"});
  const auto descriptors = test::openDescriptors();
  EXPECT_EQ(0, process(5));
  EXPECT_TRUE(test::Algo::waitIdle(60'000));
  const uint64_t nativeReq = mSubmitted.nativeReq;
  const std::string id = std::to_string(nativeReq);
  EXPECT_EQ("9 2 8589934593 nativeRequestAddr=Long " + id + "\n", mRecorder.reports());
  EXPECT_TRUE(mLog.contains("nativeReq " + id + ", isAsync 5"));
  EXPECT_EQ(-999, result()) << "results were put before Java requested them";
  EXPECT_TRUE(isKnown(nativeReq));
  EXPECT_EQ(1, test::Algo::counts().parameterBlocks);

  setAlgoList({"custom"});  // not the list that the request was submitted with
  mTrace.clear();
  EXPECT_EQ(0, updateResult(nativeReq));
  EXPECT_EQ(descriptors, test::openDescriptors());
  EXPECT_EQ(kTuningMode, result());
  EXPECT_EQ(-1, result("orlu.feedback.hdrChoosedFrame")) << "the request's own list was not used";
  EXPECT_EQ("destroyMetadata", mTrace);
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
  EXPECT_EQ("", mTrace) << "the algorithm library was called without a block";
  EXPECT_EQ(1, debugLines("update result algo list: hdr, reqId = 8589934593, nativeReq 8070450532247928832 "
                          "getAlgoListResult 0"));
}

// The camera marks requests that need no algorithms.
TEST_F(RequestProcessorImageTest, MarkedToBeSkipped) {
  putKey(mCompositions[0], "orlu.control.image.score", test::javaDoubles({1'000'000.0}));
  EXPECT_EQ(0, process());
  EXPECT_EQ("createMetadata, destroyMetadata", mTrace);
  EXPECT_EQ(0, result()) << "results must be put even if the algorithms are skipped";
  EXPECT_FALSE(isKnown(newestRequest()));
  EXPECT_EQ("", mRecorder.reports());

  EXPECT_EQ(0, process(1));
  // Java was notified before the call returned.
  const uint64_t nativeReq = newestRequest();
  EXPECT_EQ("9 2 8589934593 nativeRequestAddr=Long " + std::to_string(nativeReq) + "\n", mRecorder.reports());
  EXPECT_TRUE(isKnown(nativeReq));
  EXPECT_EQ(0, updateResult(nativeReq));
  EXPECT_EQ("createMetadata, destroyMetadata, createMetadata, destroyMetadata", mTrace);
  EXPECT_FALSE(isKnown(nativeReq));
}

TEST_F(RequestProcessorImageTest, MetadataOfOneFrameGoesAlong) {
  mCompositions.clear();
  for (const int64_t frame : {0, 1, 2, 3, 4}) {
    const jobject metadata = test::newMetadata();
    test::setTag(metadata, "android.sensor.timestamp", javaLong(1000 + frame));
    test::setTag(metadata, "orlu.control.currentModeEx", javaLong(frame == 2 ? 8 : 2));
    mCompositions.push_back(test::newComposition(metadata));
  }
  setAlgoList({"night"});
  // clang-format off
  const std::tuple<const char*, std::map<std::string, int32_t>, size_t> kCases[] = {
      {"by the modes",   {},                                                  2},
      {"first",          {{"hdr_process_type", 6}, {"night_frame_index", 1}},  1},
      {"last",           {{"hdr_process_type", 6}, {"night_frame_index", 4}},  4},
      {"past the last",  {{"hdr_process_type", 6}, {"night_frame_index", 5}},  0},
      {"zero",           {{"hdr_process_type", 6}, {"night_frame_index", 0}},  0},
      {"negative",       {{"hdr_process_type", 6}, {"night_frame_index", -1}}, 0},
      {"other HDR type", {{"hdr_process_type", 2}, {"night_frame_index", 3}},  0},
  };
  // clang-format on
  for (const auto& [name, answers, frame] : kCases) {
    SCOPED_TRACE(name);
    mAnswers = answers;
    EXPECT_EQ(0, process());
    const jobject expected =
        test::objectField(mCompositions[frame], "mCaptureResult", "Landroid/hardware/camera2/CaptureResult;");
    const std::vector<uint8_t> bytes = CameraMetadataParser(env()).getMetadata(expected);
    ASSERT_FALSE(bytes.empty());
    EXPECT_EQ(bytes.size(), mSubmitted.metadata[1].size);
    EXPECT_EQ(bytes, mRaw);
  }
}

// Only this test waits ten seconds for the timeout. Meanwhile, a second thread waits for another request,
// which is removed during the wait. This wait must time out, too.
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
  waiter.join();
  for (const char* line : {"wait for reqId = 8589934593 time out", "wait for reqId = 77 time out"}) {
    EXPECT_EQ(1, mLog.errors("_V_VASJNI-AlgoNativeRequestMap", line));
  }
}

}  // namespace
}  // namespace orlu
