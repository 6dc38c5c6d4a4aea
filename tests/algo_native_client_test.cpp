// The client with a Java VM: what reaches Java, from which threads, and what that leaves behind.

#include "algo_native_client.h"

#include <gtest/gtest.h>

#include <array>
#include <future>
#include <memory>
#include <thread>

#include "algo.h"
#include "algo_native_request_map.h"
#include "callback_data.h"
#include "callback_recorder.h"
#include "case_name.h"
#include "fixtures.h"
#include "jni_table.h"
#include "log_capture.h"

namespace orlu {
namespace {

using test::env;
using test::javaVm;
using test::shotCallback;

constexpr char kTag[] = "_V_VASJNI-AlgoNativeClient";
constexpr char kCallbackClass[] = "com/orlu/orlu3rdalgoservice/binderserver/RequestProcessor";
constexpr int64_t kClientId = 0x1'0000'0003;
constexpr int64_t kReqId = 0x2'0000'0001;

// An event with values that tell a wrong offset, and bytes that nobody reads.
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
  ~AlgoNativeClientJvmTest() override { AlgoNativeRequestMap::getInstance()->remove(mFullAsync); }

  void send(const std::vector<uint8_t>& data, bool attachThread = true,
            const std::vector<const native_handle_t*>& handles = {}) {
    test::Algo::sendCallback(mClient->callbackCookie(), data, handles, attachThread);
  }
  void receive(const std::vector<uint8_t>& data) {
    mClient->onPostProcessData(android::hardware::hidl_vec<uint8_t>(data), {}, {});
  }
  std::string shotReport() const {
    return "4294967299 7 8589934593 nativeRequestAddr=Long " + std::to_string(mFullAsync) + "\n";
  }

  const test::LocalFrame mFrame;
  const test::LogCapture mLog;
  const test::Algo mAlgo;
  test::CallbackRecorder mRecorder;
  const uint64_t mFullAsync = AlgoNativeRequestMap::getInstance()->create(kReqId, nullptr, true);
  std::unique_ptr<AlgoNativeClient> mClient = std::make_unique<AlgoNativeClient>(env(), kClientId, 7);
};

TEST_F(AlgoNativeClientJvmTest, AnnouncesAFullAsyncRequest) {
  send(shotCallback(mFullAsync));
  EXPECT_EQ(shotReport(), mRecorder.reports());
  const std::string req = "nativeReq " + std::to_string(mFullAsync);
  const std::string client = "clientId = 4294967299, algoContextIndex = 7, ";
  for (const std::string& line : {"E, " + client + req, client + "reqId = 8589934593, " + req,
                                  "X, " + client + req + ", isFullAsync 1"}) {
    EXPECT_EQ(1, mLog.count(ANDROID_LOG_DEBUG, kTag, "onPostProcessDataCommonShot: " + line)) << mLog.text();
  }
  EXPECT_EQ(kReqId, AlgoNativeRequestMap::getInstance()->getRequestId(mFullAsync)) << "Java finishes it";
}

// Reads the arguments of static calls that the main thread makes.
struct StaticCallSpy {
  StaticCallSpy() : original(env()->functions), table(*original) {
    first = -1;
    table.CallStaticVoidMethodV = [](JNIEnv* jni, jclass clazz, jmethodID method, va_list arguments) {
      va_list copy;
      va_copy(copy, arguments);
      first = va_arg(copy, jint);
      va_end(copy);
      jni->functions = javaTable;
      jni->CallStaticVoidMethodV(clazz, method, arguments);
    };
    javaTable = original;
    env()->functions = &table;
  }
  ~StaticCallSpy() { env()->functions = original; }

  const JNINativeInterface_* original;
  JNINativeInterface_ table;
  static inline const JNINativeInterface_* javaTable = nullptr;
  static inline jint first = -1;
};

TEST_F(AlgoNativeClientJvmTest, PassesZeroFirst) {
  for (const std::vector<uint8_t>& data : {shotCallback(mFullAsync), lightStreamCallback()}) {
    const StaticCallSpy spy;
    receive(data);
    EXPECT_EQ(0, StaticCallSpy::first);
  }
  EXPECT_EQ(shotReport() + lightStreamReport(""), mRecorder.reports());
}

TEST_F(AlgoNativeClientJvmTest, LeavesAThreadAsItWas) {
  std::thread([&] {
    JNIEnv* before = nullptr;
    JNIEnv* after = nullptr;
    javaVm()->AttachCurrentThread(reinterpret_cast<void**>(&before), nullptr);
    receive(shotCallback(mFullAsync));
    EXPECT_EQ(JNI_OK, javaVm()->GetEnv(reinterpret_cast<void**>(&after), JNI_VERSION_1_4));
    EXPECT_EQ(before, after);
    javaVm()->DetachCurrentThread();
  }).join();
  EXPECT_EQ(shotReport(), mRecorder.reports());

  std::thread([&] {
    JNIEnv* after = nullptr;
    receive(shotCallback(mFullAsync));
    receive(lightStreamCallback());
    EXPECT_EQ(JNI_EDETACHED, javaVm()->GetEnv(reinterpret_cast<void**>(&after), JNI_VERSION_1_4));
  }).join();
  EXPECT_EQ(shotReport(), mRecorder.reports()) << "Java was called from a thread that is not attached";
  EXPECT_EQ(1, mLog.errors(kTag, "onPostProcessDataCommonShot: JavaVM GetEnv ERROR"));
  EXPECT_EQ(1, mLog.errors(kTag, "onPostProcessDataLightStream: JavaVM GetEnv ERROR"));
}

struct HandleCase {
  const char* name;
  std::vector<std::array<int, 3>> handles;  // descriptors, integers, first word; -1 descriptors: a null one
  const char* inMap;
  const char* inLog;
};

class AlgoNativeClientHandleTest : public AlgoNativeClientJvmTest,
                                   public testing::WithParamInterface<HandleCase> {};

TEST_P(AlgoNativeClientHandleTest, LightStreamTellsTheFirstWordOfTheFirstHandle) {
  std::vector<const native_handle_t*> handles;
  for (const auto& [descriptors, integers, word] : GetParam().handles) {
    native_handle_t* const handle = descriptors < 0 ? nullptr : native_handle_create(descriptors, integers);
    if (handle != nullptr && descriptors + integers > 0) handle->data[0] = word;
    handles.push_back(handle);
  }
  send(lightStreamCallback(), true, handles);
  for (const native_handle_t* handle : handles) native_handle_delete(const_cast<native_handle_t*>(handle));
  EXPECT_EQ(lightStreamReport(GetParam().inMap), mRecorder.reports());
  EXPECT_EQ(1, mLog.count(ANDROID_LOG_DEBUG, kTag,
                          std::string("onPostProcessDataLightStream: sharedFd: ") + GetParam().inLog +
                              ", clientId = 4294967299, algoContextIndex = 7, reqId = 8589934593, "
                              "eventType:4294967298 zoomRatio:2.500000, cropRegion:[l=1 t=-2 w=640 h=480], "
                              "dataSize: 48"))
      << mLog.text();
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Cases, AlgoNativeClientHandleTest,
                         testing::Values(
    HandleCase{"None",           {},                       "",                     "-1"},
    HandleCase{"Descriptor",     {{1, 0, 7}},              "sharedFd=Integer 7 ",  "7"},
    HandleCase{"DescriptorZero", {{1, 2, 0}},              "sharedFd=Integer 0 ",  "0"},
    HandleCase{"Integers",       {{0, 2, -9}},             "sharedFd=Integer -9 ", "-9"},
    HandleCase{"FirstOfTwo",     {{1, 1, 7}, {1, 0, 8}},   "sharedFd=Integer 7 ",  "7"},
    HandleCase{"WithoutData",    {{0, 0, 0}, {1, 0, 8}},   "",                     "-1"},
    HandleCase{"Null",           {{-1, 0, 0}},             "",                     "-1"}),
                         test::CaseName());
// clang-format on

TEST_F(AlgoNativeClientJvmTest, LightStreamNeedsItsFortyEightBytes) {
  for (size_t size : {0, 1, 47}) send(lightStreamCallback(size));
  EXPECT_EQ("", mRecorder.reports());
  send(lightStreamCallback(61));
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
  mRecorder.setThrows(false);
  receive(shotCallback(mFullAsync));
  EXPECT_EQ(shotReport(), mRecorder.reports());
}

// On a thread that stays attached and never returns to Java. Of what the VM counts on top, it complains when
// the test program ends.
TEST_F(AlgoNativeClientJvmTest, LocalReferencesDoNotPileUp) {
  std::promise<void> called;
  std::promise<void> counted;
  std::thread thread([&] {
    void* attached = nullptr;
    javaVm()->AttachCurrentThread(&attached, nullptr);
    for (int i = 0; i < 1000; ++i) {
      receive(shotCallback(mFullAsync));
      receive(lightStreamCallback());
    }
    called.set_value();
    counted.get_future().wait();
    javaVm()->DetachCurrentThread();
  });
  called.get_future().wait();
  EXPECT_EQ(0, mRecorder.mapsInUse());
  counted.set_value();
  thread.join();
  const std::string reports = mRecorder.reports();
  EXPECT_EQ(2000, std::count(reports.begin(), reports.end(), '\n'));
}

TEST_F(AlgoNativeClientJvmTest, KeepsOneReferenceAndGivesItBack) {
  const std::string method = std::string(kCallbackClass) + ".callbackFromNative";
  int failed = 0;
  for (const auto& [hidden, references] : {
           std::pair(std::string(), 1), {kCallbackClass, 0},
             {method,         1}
  }) {
    SCOPED_TRACE(hidden);
    mClient.reset();
    test::JniTable table(env());
    table.hide(hidden);
    mClient = std::make_unique<AlgoNativeClient>(env(), kClientId, 7);
    EXPECT_EQ(references, table.calls("NewGlobalRef"));
    EXPECT_EQ(0, table.localReferences());
    receive(shotCallback(mFullAsync));
    receive(lightStreamCallback());
    failed += hidden.empty() ? 0 : 1;
    EXPECT_EQ(failed, mLog.errors(kTag, "onPostProcessDataCommonShot: postDataMethod not find"));
    EXPECT_EQ(failed, mLog.errors(kTag, "onPostProcessDataLightStream: postDataMethod not find"));
    const int deleted = table.calls("DeleteGlobalRef");
    mClient.reset();
    EXPECT_EQ(references, table.calls("DeleteGlobalRef") - deleted);
  }
  EXPECT_EQ(shotReport() + lightStreamReport(""), mRecorder.reports());
}

TEST_F(AlgoNativeClientJvmTest, EndsOnAThreadThatIsNotAttached) {
  std::thread([&] { mClient.reset(); }).join();
  EXPECT_EQ(1, mLog.errors(kTag, "~AlgoNativeClient: JavaVM GetEnv ERROR"));
  EXPECT_EQ(0, test::Algo::counts().clients);
}

}  // namespace
}  // namespace orlu
