// A client's request, from Java to a scripted algorithm library and back. Checks for leaks after each test.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "algo.h"
#include "algo_native_request_map.h"
#include "fixtures.h"
#include "log_capture.h"
#include "request_processor.h"

namespace orlu::test {

class RequestScene : public testing::Test {
protected:
  static constexpr int64_t kReqId = 0x2'0000'0001;
  static constexpr int32_t kTuningMode = 64;  // "tunning_mode" in the scripted results

  RequestScene() {
    mAlgo.script.runAlgorithms = false;
    mAlgo.script.values = {
        {"orlu.algo.feedback", "tunning_mode", {kTuningMode, 0, 0, 0}}
    };
    mAlgo.script.observer = [this](const probe::WatchedCall& call) { note(call); };
    setAlgoList({"flip", "custom"});
  }

  // Creates a client that uses the script.
  void create(jobject param = nullptr) {
    mAlgo.use();
    mInst = RequestProcessor::create(env(), param);
    mTrace.clear();
    mLog.clear();
  }
  void TearDown() override {
    EXPECT_TRUE(Algo::waitIdle(60'000));
    EXPECT_FALSE(isKnown(mSubmitted.nativeReq));
    if (mInst != 0) RequestProcessor::destroy(env(), mInst);
    const standin::AlgoCounts counts = Algo::counts();
    EXPECT_EQ(0, counts.clients);
    EXPECT_EQ(0, counts.parameterBlocks);
    EXPECT_EQ(0, counts.cameraBlocks);
  }

  void setAlgoList(const std::vector<std::string>& names) {
    putKey(mCompositions[0], "orlu.control.algoType", javaStrings(names));
  }
  int process(int isFullAsync = 0, jobject request = newRequest(kReqId, "capture")) {
    putKey(mCompositions[0], "isFullAsync", javaInt(isFullAsync));
    return RequestProcessor::processImage(env(), mInst, request, mInputs, mOutputs, javaList(mCompositions));
  }
  // Fetches the results of a full-async request.
  int updateResult(uint64_t nativeReq) {
    putKey(mCompositions[0], "nativeRequestAddr", javaLong(static_cast<int64_t>(nativeReq)));
    return RequestProcessor::processImageUpdateResult(env(), mInst, newRequest(kReqId, "capture"), mInputs,
                                                      mOutputs, javaList(mCompositions));
  }
  int32_t result(const char* key = "orlu.feedback.TunningMode") const {
    const jobject value = getKey(mCompositions[0], key);
    return value == nullptr ? -999 : intOf(value);
  }
  AlgoNativeClient& client() const {
    return *reinterpret_cast<AlgoNativeClient*>(static_cast<uintptr_t>(mInst));
  }
  static bool isKnown(uint64_t nativeReq) {
    bool unused = false;
    return AlgoNativeRequestMap::getInstance()->getIsFullAsync(nativeReq, unused);
  }
  // Returns the id of the newest request: one less than the next id.
  static uint64_t newestRequest() {
    const uint64_t next = AlgoNativeRequestMap::getInstance()->create(0, nullptr, false);
    AlgoNativeRequestMap::getInstance()->remove(next);
    return next - 1;
  }

  const LocalFrame mFrame;
  LogCapture mLog;
  Algo mAlgo;
  std::vector<jobject> mCompositions = {newComposition()};
  const jobject mInputs = javaList({newSmallImage()});
  const jobject mOutputs = javaList({newSmallImage(), newSmallImage()});
  int64_t mInst = 0;
  std::map<std::string, int32_t> mAnswers;  // by key; getValue() returns these, not the stored values
  // Calls to the algorithm library with their main arguments. An operation on a value is included only if its
  // key begins with "abort_" or its block is null.
  std::string mTrace;
  std::vector<void*> mDestroyed;      // destroyed blocks, in order
  AlgoProcessRecord mSubmitted = {};  // argument of the last process()
  std::vector<uint8_t> mAbortKey;     // the last value of "abort_key"
  std::vector<uint8_t> mRaw;          // bytes of the last setRaw()
  int mFile = -1;                     // descriptor of the last translateParamFile()

private:
  void note(const probe::WatchedCall& call) {
    const probe::ValueArguments value = call.value == nullptr ? probe::ValueArguments{} : *call.value;
    const std::string key = value.key == nullptr ? "" : value.key;
    const auto* const bytes = static_cast<const uint8_t*>(value.data);
    if (call.process != nullptr) mSubmitted = *call.process;
    if (call.translateParamFile != nullptr) mFile = call.translateParamFile->fd;
    if (call.operation == "destroyMetadata") mDestroyed.push_back(*call.block);
    const auto answer = call.operation == "getValue" ? mAnswers.find(key) : mAnswers.end();
    if (answer != mAnswers.end()) std::memcpy(const_cast<void*>(value.data), &answer->second, 4);
    if (call.operation == "setRaw") mRaw.assign(bytes, bytes + value.size);
    if (key == "abort_key") mAbortKey.assign(bytes, bytes + value.size);
    const bool isOfValue = call.operation.find("Value") != std::string_view::npos ||
                           call.operation.find("param") == 0 || call.operation == "getSize";
    if (isOfValue && call.block != nullptr && *call.block != nullptr && key.find("abort_") != 0) return;
    mTrace += (mTrace.empty() ? "" : ", ") + std::string(call.operation) + about(call);
  }
  static std::string about(const probe::WatchedCall& call) {
    std::ostringstream text;
    if (const auto* const uninit = call.uninit) text << ' ' << uninit->type << '/' << uninit->mode;
    if (const auto* const getData = call.getData) text << ' ' << getData->cmd.size();
    const auto* const file = call.translateParamFile;
    if (file != nullptr) text << ' ' << file->size << ' ' << file->identifier;
    if (const auto* const command = call.command) {
      text << ' ' << command->first << ' ' << command->second << ' ' << command->data.size() << ' '
           << command->metadata.size();
    }
    if (call.operation != "setValue") return text.str();
    text << ' ' << call.value->section << '/' << call.value->key << ' ' << call.value->size;
    int64_t number = 0;
    if (call.value->size == sizeof number) std::memcpy(&number, call.value->data, sizeof number);
    if (call.value->size == sizeof number) text << '=' << number;
    return text.str();
  }
};

}  // namespace orlu::test
