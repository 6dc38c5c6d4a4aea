#include "request_runner.h"

#include <android/log.h>
#include <orlu/camera3rd_log.h>

#include "answering_algo.h"
#include "jni_recorder.h"
#include "log.h"
#include "log_capture.h"
#include "request_processor.h"

namespace orlu::bench {
namespace {

using test::env;

LogLines gLines;

void countLine(const __android_log_message* message) {
  ++(message->priority >= ANDROID_LOG_ERROR ? gLines.error : gLines.debug);
}

const JniRecording* gRecording = nullptr;
size_t gHandedOver = 0;

void noteAndCallBack(const AlgoProcessRecord& record) {
  gHandedOver = gRecording->size();
  callBack(record.callbackCookie, record.nativeReq);
}

}  // namespace

RequestRunner::RequestRunner(Shot& shot) : mShot(shot) {
  // Creating the client looks up methods. The recorder must see these look-ups to learn the methods' argument
  // types, but they are not part of a request.
  JniRecording ignored;
  JniRecorder recorder(env(), ignored);
  mClient = RequestProcessor::create(env(), shot.firstComposition());
}

RequestRunner::~RequestRunner() {
  RequestProcessor::destroy(env(), mClient);
}

Seconds RequestRunner::run() {
  mShot.refresh();
  const Seconds first = call(RequestProcessor::processImage);
  if (!mShot.plan().isFullAsync) return first;
  putAddress();
  return first + call(RequestProcessor::processImageUpdateResult);
}

void RequestRunner::record() {
  mShot.refresh();
  gRecording = &mFirst;
  setProcessHandler(noteAndCallBack);
  call(RequestProcessor::processImage, mFirst);
  setProcessHandler(nullptr);
  mHandedOver = gHandedOver;
  if (!mShot.plan().isFullAsync) return;
  putAddress();
  call(RequestProcessor::processImageUpdateResult, mSecond);
}

Seconds RequestRunner::replay() {
  mShot.refresh();
  const Seconds first = call(mFirst);
  if (!mShot.plan().isFullAsync) return first;
  putAddress();
  return first + call(mSecond);
}

// Does the service's work between the two calls of a full-async request.
void RequestRunner::putAddress() {
  const NativeFrame frame;
  test::putKey(mShot.firstComposition(), "nativeRequestAddr",
               test::javaLong(static_cast<int64_t>(lastNativeRequest())));
}

Seconds RequestRunner::call(Native native) {
  const NativeFrame frame;
  const auto begin = Clock::now();
  native(env(), mClient, mShot.request(), mShot.inputs(), mShot.outputs(), mShot.compositions());
  mReturned = Clock::now();
  return mReturned - begin;
}

Seconds RequestRunner::call(JniRecording& recording) {
  const NativeFrame frame;
  const auto begin = Clock::now();
  recording.replay(env(), 0, recording.size());
  return Clock::now() - begin;
}

void RequestRunner::call(Native native, JniRecording& into) {
  const NativeFrame frame;
  into = JniRecording();
  const JniRecorder recorder(env(), into);
  native(env(), mClient, mShot.request(), mShot.inputs(), mShot.outputs(), mShot.compositions());
}

HeapUse RequestRunner::heap() {
  mShot.refresh();
  const auto used = [this](Native native) {
    const HeapUse before = heapUse();
    call(native);
    return heapUse() - before;
  };
  HeapUse use = used(RequestProcessor::processImage);
  if (!mShot.plan().isFullAsync) return use;
  putAddress();
  const HeapUse second = used(RequestProcessor::processImageUpdateResult);
  return {use.allocations + second.allocations, use.bytes + second.bytes};
}

LogLines RequestRunner::logLines() {
  gLines = {};
  __android_log_set_logger(countLine);
  __android_log_set_minimum_priority(ANDROID_LOG_DEFAULT);
  gVAFCtrlLogLevel = kFirstSilentLogLevel - 1;
  run();
  silenceLog();
  return gLines;
}

void silenceLog() {
  gVAFCtrlLogLevel = kFirstSilentLogLevel;
  __android_log_set_minimum_priority(ANDROID_LOG_SILENT);
  test::silenceLog();
}

}  // namespace orlu::bench
