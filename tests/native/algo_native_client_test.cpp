// The client without a Java VM: what it makes of callback data, and whom it wakes.

#include "algo_native_client.h"

#include <gtest/gtest.h>

#include <atomic>
#include <climits>
#include <memory>
#include <thread>

#include "algo.h"
#include "algo_native_request_map.h"
#include "callback_data.h"
#include "case_name.h"
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

struct DataCase {
  const char* name;
  int32_t nameLength;
  std::string rest;
  std::string reached;  // a line of the function that the data gets to
};

class AlgoNativeClientDataTest : public AlgoNativeClientTest, public testing::WithParamInterface<DataCase> {};

TEST_P(AlgoNativeClientDataTest, FindsTheNameWithinTheData) {
  const DataCase& c = GetParam();
  receive(callbackData(kUnknownRequest, c.nameLength, c.rest));
  EXPECT_EQ(1, debugLines("on callback " + std::to_string(20 + c.rest.size()) + " 0"));
  EXPECT_EQ(c.reached == kShot ? 1 : 0, debugLines(kShot));
  EXPECT_EQ(c.reached == kLightStream ? 1 : 0, mLog.errors(kTag, kLightStream));
  // Nobody knows the request.
  EXPECT_FALSE(mLog.contains("CommonShot: X"));
  EXPECT_FALSE(mLog.contains("notify reqId"));
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Cases, AlgoNativeClientDataTest,
                         testing::Values(
    DataCase{"Shot",               6,       "shotCb",                       kShot},
    DataCase{"ShotWithPayload",    6,       "shotCb payload",               kShot},
    DataCase{"LightStreamPayload", 13,      "lightStreamCb payload",        kLightStream},
    DataCase{"NothingBehind",      6,       "",                             ""},
    DataCase{"LengthZero",         0,       "shotCb",                       ""},
    DataCase{"LengthNegative",     -6,      "shotCb",                       ""},
    DataCase{"LengthLeast",        INT_MIN, "shotCb",                       ""},
    DataCase{"LengthPastTheEnd",   7,       "shotCb",                       ""},
    DataCase{"LengthMost",         INT_MAX, "shotCb",                       ""},
    DataCase{"NameCutShort",       5,       "shotCb",                       ""},
    DataCase{"NameWithZero",       7,       std::string("shotCb\0", 7),     ""},
    DataCase{"LightStreamGoesOn",  14,      "lightStreamCbX",               ""},
    DataCase{"OtherName",          6,       "ShotCb",                       ""}),
                         test::CaseName());
// clang-format on

TEST_F(AlgoNativeClientTest, IgnoresDataThatEndsBeforeTheNameDoes) {
  const std::vector<uint8_t> whole = shotCallback(kUnknownRequest);
  for (std::ptrdiff_t size = 0; size < 26; ++size) receive({whole.begin(), whole.begin() + size});
  EXPECT_EQ(0, debugLines(kShot));
  receive(whole);
  EXPECT_EQ(1, debugLines(kShot));
}

TEST_F(AlgoNativeClientTest, WakesTheWaiterOfASynchronousRequest) {
  AlgoNativeRequestMap* const map = AlgoNativeRequestMap::getInstance();
  const uint64_t id = map->create(55, nullptr, false);
  // As the algorithm library does it, by the cookie.
  test::Algo::sendCallback(mClient->callbackCookie(), shotCallback(id), {}, false);
  EXPECT_TRUE(map->waitForCallback(id));
  EXPECT_FALSE(mLog.contains("time out"));
  EXPECT_EQ(1, debugLines(
                   "onPostProcessDataCommonShot: X, clientId = 4294967299, algoContextIndex = 3, nativeReq " +
                   std::to_string(id) + ", isFullAsync 0"));
  EXPECT_TRUE(map->remove(id));
}

TEST_F(AlgoNativeClientTest, LivesAsLongAsItsClientOfTheLibrary) {
  EXPECT_EQ(1, debugLines("AlgoNativeClient constructor"));
  EXPECT_EQ(1, test::Algo::counts().clients);
  mClient.reset();
  EXPECT_EQ(0, test::Algo::counts().clients);
  EXPECT_EQ(1, debugLines("AlgoNativeClient destructor"));
  EXPECT_EQ(1, mLog.errors(kTag, "~AlgoNativeClient: JavaVM GetEnv ERROR"));
}

// What goes wrong is a race that ThreadSanitizer sees, or a client without its operations.
TEST(AlgoNativeClientsTest, AreMadeOnSeveralThreadsAtOnce) {
  std::atomic<int> blocks{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&blocks] {
      for (int k = 0; k < 50; ++k) {
        AlgoNativeClient client(nullptr, k, 0);
        void* const block = client.context().createMetadata();
        if (block != nullptr) ++blocks;
        client.context().destroyMetadata(block);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(200, blocks);
  EXPECT_EQ(0, test::Algo::counts().clients);
}

}  // namespace
}  // namespace orlu
