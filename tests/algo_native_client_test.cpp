// Tests AlgoNativeClient with a Java VM: callbacks into Java, the threads of callbacks, and leaks.

#include "algo_native_client.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <thread>

#include "algo.h"
#include "algo_native_request_map.h"
#include "callback_data.h"
#include "callback_recorder.h"
#include "fixtures.h"
#include "jni_table.h"
#include "log_capture.h"
#include "static_call_hook.h"

namespace orlu {
namespace {

using test::env;
using test::javaVm;
using test::shotCallback;

constexpr char kTag[] = "_V_VASJNI-AlgoNativeClient";
#define CALLBACK_CLASS "com/orlu/orlu3rdalgoservice/binderserver/RequestProcessor"
constexpr int64_t kClientId = 0x1'0000'0003;
constexpr int64_t kReqId = 0x2'0000'0001;

// Returns a light-stream callback whose values reveal reads at wrong offsets. Unused bytes are 0xEE.
std::vector<uint8_t> lightStreamCallback(size_t payloadSize = 48) {
  std::string payload(payloadSize < 48 ? 48 : payloadSize, '\xEE');
  const int64_t eventType = 0x1'0000'0002;
  const int32_t crop[] = {1, -2, 640, 480};
  const float zoom = 2.5F;
  std::memcpy(&payload[8], &kReqId, 8);
  std::memcpy(&payload[16], &eventType, 8);
  std::memcpy(&payload[24], crop, 16);
  std::memcpy(&payload[40], &zoom, 4);
  return test::callbackData(0, 13, "lightStreamCb" + payload.substr(0, payloadSize));
}

std::string lightStreamReport(const std::string& sharedFd) {
  return "4294967299 7 8589934593 cropRegion=int[] [1, -2, 640, 480] eventType=Long 4294967298 " + sharedFd +
         "zoomRatio=Float 2.5\n";
}

class AlgoNativeClientJvmTest : public testing::Test {
protected:
  ~AlgoNativeClientJvmTest() override {
    mClient.reset();
    EXPECT_TRUE(AlgoNativeRequestMap::getInstance()->remove(mFullAsync))
        << "only Java may finish the request";
    EXPECT_EQ(0, test::Algo::counts().clients);
  }

  void receive(const std::vector<uint8_t>& data) {
    mClient->onPostProcessData(android::hardware::hidl_vec<uint8_t>(data), {}, {});
  }
  void receiveBoth() {
    receive(shotCallback(mFullAsync));
    receive(lightStreamCallback());
  }
  std::string shotReport() const {
    return "4294967299 7 8589934593 nativeRequestAddr=Long " + std::to_string(mFullAsync) + "\n";
  }
  std::string bothReports() const { return shotReport() + lightStreamReport(""); }
  void expectErrors(int count, const char* error) const {
    for (const char* function : {"onPostProcessDataCommonShot: ", "onPostProcessDataLightStream: "}) {
      EXPECT_EQ(count, mLog.errors(kTag, std::string(function) + error)) << mLog.text();
    }
  }

  const test::LocalFrame mFrame;
  test::LogCapture mLog;
  const test::Algo mAlgo;
  test::CallbackRecorder mRecorder;
  const uint64_t mFullAsync = AlgoNativeRequestMap::getInstance()->create(kReqId, nullptr, true);
  std::unique_ptr<AlgoNativeClient> mClient = std::make_unique<AlgoNativeClient>(env(), kClientId, 7);
};

TEST_F(AlgoNativeClientJvmTest, AnnouncesAFullAsyncRequest) {
  receive(shotCallback(mFullAsync));
  EXPECT_EQ(shotReport(), mRecorder.reports());
  const std::string req = "nativeReq " + std::to_string(mFullAsync);
  const std::string client = "clientId = 4294967299, algoContextIndex = 7, ";
  for (const std::string& line : {"E, " + client + req, client + "reqId = 8589934593, " + req,
                                  "X, " + client + req + ", isFullAsync 1"}) {
    EXPECT_EQ(1, mLog.count(ANDROID_LOG_DEBUG, kTag, "onPostProcessDataCommonShot: " + line)) << mLog.text();
  }
}

TEST_F(AlgoNativeClientJvmTest, PassesZeroFirst) {
  std::vector<int> first;
  const test::StaticCallHook spy([&](va_list arguments) { first.push_back(va_arg(arguments, jint)); });
  receiveBoth();
  EXPECT_EQ((std::vector<int>{0, 0}), first);
}

// AddressSanitizer detects accesses to the client after its destruction.
TEST_F(AlgoNativeClientJvmTest, MayBeDestroyedByJavaFromItsCallback) {
  const test::StaticCallHook destroying([&](va_list) { mClient.reset(); });
  mClient->onPostProcessDataCommonShot(mFullAsync);
  EXPECT_EQ(nullptr, mClient) << "Java was not called";
}

// Destroys the client during its callback: after the callback has found the client, before it calls Java.
TEST_F(AlgoNativeClientJvmTest, FinishesARequestThatItsCallbackCanNoLongerAnnounce) {
  static std::unique_ptr<AlgoNativeClient>* client = nullptr;
  static const JNINativeInterface_* original = nullptr;
  void* const block = mClient->context().createMetadata();
  const uint64_t request = AlgoNativeRequestMap::getInstance()->create(kReqId, block, true, mClient->owner());
  const uint64_t cookie = mClient->callbackCookie();
  client = &mClient;
  {
    test::ScopedJniFunctions functions(env());
    original = &functions.original();
    functions.table().ExceptionCheck = [](JNIEnv* environment) {
      const std::unique_ptr<AlgoNativeClient> ending = std::move(*client);
      return original->ExceptionCheck(environment);
    };
    EXPECT_EQ(nullptr, AlgoNativeRequestMap::getInstance()->releaseBlock(request, kUsedBySubmission));
    (*reinterpret_cast<AlgoResultCallback*>(cookie))(
        android::hardware::hidl_vec<uint8_t>(shotCallback(request)), {}, {});
  }
  EXPECT_EQ(nullptr, mClient);
  EXPECT_EQ("", mRecorder.reports());
  EXPECT_FALSE(AlgoNativeRequestMap::getInstance()->remove(request)) << "the request was not finished";
  EXPECT_EQ(0, test::Algo::counts().parameterBlocks);
}

// An attached thread stays attached and accumulates no local references; the VM would report them
// (-Xcheck:jni). On a detached thread, the callback does not call Java, and the thread stays detached.
TEST_F(AlgoNativeClientJvmTest, LeavesAThreadAsItWas) {
  std::string expected;
  std::thread([&] {
    JNIEnv* before = nullptr;
    JNIEnv* after = nullptr;
    javaVm()->AttachCurrentThread(reinterpret_cast<void**>(&before), nullptr);
    for (int i = 0; i < 300; ++i) {
      receiveBoth();
      expected += bothReports();
    }
    EXPECT_EQ(JNI_OK, javaVm()->GetEnv(reinterpret_cast<void**>(&after), JNI_VERSION_1_4));
    EXPECT_EQ(before, after);
    javaVm()->DetachCurrentThread();
  }).join();
  EXPECT_EQ(expected, mRecorder.reports());

  std::thread([&] {
    JNIEnv* after = nullptr;
    receiveBoth();
    EXPECT_EQ(JNI_EDETACHED, javaVm()->GetEnv(reinterpret_cast<void**>(&after), JNI_VERSION_1_4));
    mClient.reset();
  }).join();
  EXPECT_EQ(expected, mRecorder.reports()) << "Java was called from a thread that is not attached";
  expectErrors(1, "JavaVM GetEnv ERROR");
  EXPECT_EQ(1, mLog.errors(kTag, "~AlgoNativeClient: JavaVM GetEnv ERROR"));
}

TEST_F(AlgoNativeClientJvmTest, LightStreamTellsTheFirstWordOfTheFirstHandle) {
  // {descriptors, integers, first word} of each handle. A handle with -1 descriptors is null.
  using Handles = std::vector<std::array<int, 3>>;
  // clang-format off
  const std::pair<Handles, std::string> kCases[] = {
      {Handles{},                       "-1"},
      {Handles{{1, 0, 7}},              "7"},
      {Handles{{1, 2, 0}},              "0"},
      {Handles{{0, 2, -9}},             "-9"},
      {Handles{{1, 1, 7}, {1, 0, 8}},   "7"},
      {Handles{{0, 0, 0}, {1, 0, 8}},   "-1"},
      {Handles{{-1, 0, 0}},             "-1"},
  };
  // clang-format on
  std::string expected;
  for (const auto& [specs, word] : kCases) {
    mLog.clear();
    std::vector<const native_handle_t*> handles;
    for (const auto& [descriptors, integers, first] : specs) {
      native_handle_t* const handle = descriptors < 0 ? nullptr : native_handle_create(descriptors, integers);
      if (handle != nullptr && descriptors + integers > 0) handle->data[0] = first;
      handles.push_back(handle);
    }
    test::Algo::sendCallback(mClient->callbackCookie(), lightStreamCallback(), handles, true);
    for (const native_handle_t* handle : handles) native_handle_delete(const_cast<native_handle_t*>(handle));
    expected += lightStreamReport(word == "-1" ? "" : "sharedFd=Integer " + word + " ");
    EXPECT_EQ(expected, mRecorder.reports());
    const std::string line = "onPostProcessDataLightStream: sharedFd: " + word +
                             ", clientId = 4294967299, algoContextIndex = 7, reqId = 8589934593, "
                             "eventType:4294967298 zoomRatio:2.500000, "
                             "cropRegion:[l=1 t=-2 w=640 h=480], dataSize: 48";
    EXPECT_EQ(1, mLog.count(ANDROID_LOG_DEBUG, kTag, line)) << mLog.text();
  }
}

TEST_F(AlgoNativeClientJvmTest, HandlesWithoutABufferAreNone) {
  android::hardware::hidl_vec<android::hardware::hidl_handle> handles;
  handles.setToExternal(nullptr, 3);
  mClient->onPostProcessData(android::hardware::hidl_vec<uint8_t>(lightStreamCallback()), {}, handles);
  EXPECT_EQ(lightStreamReport(""), mRecorder.reports());
}

TEST_F(AlgoNativeClientJvmTest, LightStreamNeedsItsFortyEightBytes) {
  for (size_t size : {0U, 1U, 47U}) receive(lightStreamCallback(size));
  EXPECT_EQ("", mRecorder.reports());
  receive(lightStreamCallback(61));
  EXPECT_EQ(lightStreamReport(""), mRecorder.reports());
  EXPECT_TRUE(mLog.contains("dataSize: 61"));
}

TEST_F(AlgoNativeClientJvmTest, ClearsWhatTheCallbackThrows) {
  mRecorder.setThrows(true);
  for (const std::vector<uint8_t>& data : {shotCallback(mFullAsync), lightStreamCallback()}) {
    receive(data);
    EXPECT_FALSE(env()->ExceptionCheck());
    env()->ExceptionClear();
  }
  EXPECT_EQ(2, mLog.errors(kTag, "callbackFromNative threw")) << mLog.text();
}

TEST_F(AlgoNativeClientJvmTest, TellsOfAnIncompleteParser) {
  test::JniTable table(env());
  table.hide("android/util/Rational");
  receiveBoth();
  EXPECT_EQ(2, mLog.errors(kTag, "init parser failed"));
  for (const char* operation : {"onPostProcessDataCommonShot", "onPostProcessDataLightStream"}) {
    EXPECT_TRUE(mLog.contains(std::string(operation) + "() init parser failed")) << operation;
  }
}

TEST_F(AlgoNativeClientJvmTest, KeepsOneReferenceAndGivesItBack) {
  int failed = 0;
  for (const std::string hidden : {CALLBACK_CLASS, CALLBACK_CLASS ".callbackFromNative", ""}) {
    SCOPED_TRACE(hidden);
    const int references = hidden == CALLBACK_CLASS ? 0 : 1;
    mClient.reset();
    test::JniTable table(env());
    table.hide(hidden);
    mClient = std::make_unique<AlgoNativeClient>(env(), kClientId, 7);
    EXPECT_EQ(references, table.calls("NewGlobalRef"));
    EXPECT_EQ(0, table.localReferences());
    receiveBoth();
    failed += hidden.empty() ? 0 : 1;
    expectErrors(failed, "postDataMethod not find");
    const int deleted = table.calls("DeleteGlobalRef");
    mClient.reset();
    EXPECT_EQ(references, table.calls("DeleteGlobalRef") - deleted);
  }
  EXPECT_EQ(bothReports(), mRecorder.reports());
}

}  // namespace
}  // namespace orlu
