// The client without a Java VM: how it parses callback data, and which threads it wakes.

#include "algo_native_client.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <climits>
#include <memory>
#include <thread>
#include <tuple>

#include "algo.h"
#include "algo_native_request_map.h"
#include "callback_data.h"
#include "log_capture.h"

namespace orlu {
namespace {

using test::callbackData;
using test::shotCallback;

constexpr char kTag[] = "_V_VASJNI-AlgoNativeClient";
constexpr uint64_t kUnknownRequest = 0x1'0000'0000'0077;
constexpr char kShot[] =
    "onPostProcessDataCommonShot: E, clientId = 4294967299, algoContextIndex = 3, nativeReq 281474976710775";
constexpr char kLightStream[] = "onPostProcessDataLightStream: JavaVM GetEnv ERROR";

class AlgoNativeClientTest : public testing::Test {
protected:
  void receive(const std::vector<uint8_t>& data) {
    mClient->onPostProcessData(android::hardware::hidl_vec<uint8_t>(data), {}, {});
  }
  int debugLines(const std::string& message) const { return mLog.count(ANDROID_LOG_DEBUG, kTag, message); }

  test::LogCapture mLog;
  test::Algo mAlgo;
  std::unique_ptr<AlgoNativeClient> mClient = std::make_unique<AlgoNativeClient>(nullptr, 4294967299, 3);
};

TEST_F(AlgoNativeClientTest, FindsTheNameWithinTheData) {
  // {length of the name, bytes after the length, log line of the function that receives the data}
  // clang-format off
  const std::tuple<int32_t, std::string, std::string> kCases[] = {
      {6,       "shotCb",                   kShot},
      {6,       "shotCb payload",           kShot},
      {13,      "lightStreamCb payload",    kLightStream},
      {6,       "",                         ""},
      {0,       "shotCb",                   ""},
      {-6,      "shotCb",                   ""},
      {INT_MIN, "shotCb",                   ""},
      {7,       "shotCb",                   ""},
      {INT_MAX, "shotCb",                   ""},
      {5,       "shotCb",                   ""},
      {7,       std::string("shotCb\0", 7), ""},
      {14,      "lightStreamCbX",           ""},
      {6,       "ShotCb",                   ""},
  };
  // clang-format on
  for (const auto& [length, rest, reached] : kCases) {
    SCOPED_TRACE(std::to_string(length) + ' ' + rest);
    mLog.clear();
    receive(callbackData(kUnknownRequest, length, rest));
    EXPECT_EQ(1, debugLines("on callback " + std::to_string(20 + rest.size()) + " 0"));
    EXPECT_EQ(reached == kShot ? 1 : 0, debugLines(kShot));
    EXPECT_EQ(reached == kLightStream ? 1 : 0, mLog.errors(kTag, kLightStream));
    // No request has this id, so the callback finishes none.
    EXPECT_FALSE(mLog.contains("CommonShot: X"));
    EXPECT_FALSE(mLog.contains("notify reqId"));
  }
}

TEST_F(AlgoNativeClientTest, IgnoresDataThatEndsBeforeTheNameDoes) {
  const std::vector<uint8_t> whole = shotCallback(kUnknownRequest);
  for (std::ptrdiff_t size = 0; size < 26; ++size) receive({whole.begin(), whole.begin() + size});
  EXPECT_EQ(0, debugLines(kShot));
  receive(whole);
  EXPECT_EQ(1, debugLines(kShot));
}

// Only the first page of the data is readable: code that copies the name before it checks the length crashes.
TEST_F(AlgoNativeClientTest, ReadsNoNameOfMoreThanAGigabyte) {
  constexpr size_t kSize = 1'400'000'000;
  void* const memory = mmap(nullptr, kSize, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  ASSERT_NE(MAP_FAILED, memory);
  ASSERT_EQ(0, mprotect(memory, 4096, PROT_READ | PROT_WRITE));
  const std::vector<uint8_t> beginning = callbackData(0, kSize - 20, "shotCb");
  std::memcpy(memory, beginning.data(), beginning.size());
  android::hardware::hidl_vec<uint8_t> data;
  data.setToExternal(static_cast<uint8_t*>(memory), kSize);
  mClient->onPostProcessData(data, {}, {});
  EXPECT_EQ(0, debugLines(kShot));
  munmap(memory, kSize);
}

TEST_F(AlgoNativeClientTest, WakesTheWaiterOfASynchronousRequest) {
  AlgoNativeRequestMap* const map = AlgoNativeRequestMap::getInstance();
  const uint64_t id = map->create(55, nullptr, false);
  // Calls back like the algorithm library, using the cookie.
  test::Algo::sendCallback(mClient->callbackCookie(), shotCallback(id), {}, false);
  EXPECT_TRUE(map->waitForCallback(id));
  EXPECT_FALSE(mLog.contains("time out"));
  EXPECT_EQ(1, debugLines(
                   "onPostProcessDataCommonShot: X, clientId = 4294967299, algoContextIndex = 3, nativeReq " +
                   std::to_string(id) + ", isFullAsync 0"));
  EXPECT_TRUE(map->remove(id));
}

TEST_F(AlgoNativeClientTest, LogsItsConstructionAndDestruction) {
  EXPECT_EQ(1, debugLines("AlgoNativeClient constructor"));
  mClient.reset();
  EXPECT_EQ(1, debugLines("AlgoNativeClient destructor"));
  EXPECT_EQ(1, mLog.errors(kTag, "~AlgoNativeClient: JavaVM GetEnv ERROR"));
}

TEST_F(AlgoNativeClientTest, IgnoresCallbacksAfterItsDestruction) {
  AlgoNativeRequestMap* const map = AlgoNativeRequestMap::getInstance();
  const uint64_t cookie = mClient->callbackCookie();
  const uint64_t waiting = map->create(55, nullptr, false);
  mClient.reset();
  for (int i = 0; i < 2; ++i) test::Algo::sendCallback(cookie, shotCallback(waiting), {}, false);
  EXPECT_EQ(1, mLog.errors(kTag, "callback for a client that is gone, 2 so far")) << mLog.text();
  EXPECT_FALSE(mLog.contains("notify reqId"));
  map->remove(waiting);
}

// Expects nothing itself: AddressSanitizer detects a use after free, and ThreadSanitizer a race.
TEST_F(AlgoNativeClientTest, IsDestroyedWhileThreadsCallBack) {
  for (int round = 0; round < 20; ++round) {
    AlgoNativeClient* const client = new AlgoNativeClient(nullptr, round, 0);
    const uint64_t cookie = client->callbackCookie();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([cookie] {
        for (int k = 0; k < 5; ++k)
          test::Algo::sendCallback(cookie, shotCallback(kUnknownRequest), {}, false);
      });
    }
    delete client;
    for (std::thread& thread : threads) thread.join();
  }
}

// Fails if a client is created without its operations. ThreadSanitizer detects races.
TEST(AlgoNativeClientsTest, AreCreatedOnSeveralThreadsAtOnce) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      for (int k = 0; k < 50; ++k) {
        AlgoNativeClient client(nullptr, k, 0);
        void* const block = client.context().createMetadata();
        EXPECT_NE(nullptr, block);
        client.context().destroyMetadata(block);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(0, test::Algo::counts().clients);
}

}  // namespace
}  // namespace orlu
