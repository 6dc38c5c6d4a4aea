#include "request.h"

#include <algorithm>
#include <atomic>
#include <utility>

#include "callback_message.h"
#include "java_thread.h"

namespace orlu::standin {
namespace {

constexpr int64_t kEventType = 1;  // type of every light-stream event

// Returns a pseudo-random delay. The sequence of delays is the same in each run.
std::chrono::milliseconds delayOf(const AlgoScript& script) {
  static std::atomic<uint32_t> number{0};
  constexpr uint32_t kSpread = 2654435769;  // 2^32 divided by the golden ratio
  const uint64_t share = number.fetch_add(1) * kSpread;
  const auto jitter = static_cast<uint64_t>(script.jitter.count());
  return script.delay + std::chrono::milliseconds((share & UINT32_MAX) * (jitter + 1) >> 32);
}

}  // namespace

Request::Request(const AlgoProcessRecord& record, std::shared_ptr<const AlgoScript> script,
                 std::shared_ptr<ParameterSet> parameters)
    : mScript(std::move(script)),
      mParameters(parameters ? std::move(parameters) : std::make_shared<ParameterSet>(kParameterBlock)),
      mClient(record.client),
      mNativeReq(record.nativeReq),
      mReqId(record.reqId),
      mCookie(record.callbackCookie),
      mAlgoList(record.algoList),
      mInputs(record.inputFrames.begin(), record.inputFrames.end()),
      mOutputs(record.outputFrames.begin(), record.outputFrames.end()),
      mDue(std::chrono::steady_clock::now() + delayOf(*mScript)) {}

bool Request::asksFor(const char* algorithm) const {
  return std::find(mAlgoList.begin(), mAlgoList.end(), algorithm) != mAlgoList.end();
}

void Request::callBack() const {
  if (mScript->leaving.count("callback") != 0) leaveJavaException();
  sendCallback(mCookie, callbackMessage(mNativeReq, kShotCallback, nullptr, 0), {});
}

void Request::sendLightStreamEvent() const {
  if (!asksFor("lightstream")) return;
  LightStreamEvent event;
  event.reqId = static_cast<int64_t>(mReqId);
  event.eventType = kEventType;
  event.zoomRatio = 1.0F;
  frameSize(event.cropRegion[2], event.cropRegion[3]);
  sendCallback(mCookie, callbackMessage(mNativeReq, kLightStreamCallback, &event, sizeof event), {});
}

void Request::releaseImages() {
  for (Frame& frame : mInputs) frame.release();
  for (Frame& frame : mOutputs) frame.release();
}

void Request::frameSize(int32_t& width, int32_t& height) const {
  const std::vector<Frame>& frames = mInputs.empty() ? mOutputs : mInputs;
  if (frames.empty()) return;
  width = frames[0].info().width;
  height = frames[0].info().height;
}

}  // namespace orlu::standin
