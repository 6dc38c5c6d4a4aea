// Tests of the stand-in algorithm library. Other tests might not detect its faults.

#include <android/sharedmem.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <condition_variable>
#include <cstring>
#include <future>
#include <mutex>

#include "algo.h"
#include "algo_native_context.h"

namespace orlu {
namespace {

using test::Algo;

constexpr char kControl[] = "orlu.algo.control";

class StandInTest : public testing::Test {
protected:
  ~StandInTest() override {
    EXPECT_TRUE(Algo::waitIdle(60'000));
    mContext.destroyMetadata(mBlock);
  }

  template <typename T>
  int set(void* block, const char* section, const char* key, T value) {
    return mContext.setValue(block, section, key, &value, sizeof value);
  }
  template <typename T>
  T get(const char* section, const char* key, T initial) {
    mContext.getValue(mBlock, section, key, &initial, sizeof initial);
    return initial;
  }

  void process(uint64_t nativeReq, void* block, const std::vector<std::string>& algorithms = {},
               const std::vector<AlgoFrameInfo>& inputs = {},
               const std::vector<AlgoFrameInfo>& outputs = {}) {
    mContext.process(kRequestCapture, algorithms, nativeReq, inputs, outputs, block,
                     reinterpret_cast<uintptr_t>(&mCallback), 0, {});
  }

  // Waits up to 60 seconds for `count` callbacks. Returns the requests in the order of their callbacks.
  std::vector<uint64_t> waitFor(size_t count) {
    std::unique_lock<std::mutex> lock(mMutex);
    mChanged.wait_for(lock, std::chrono::seconds(60), [&] { return mDone.size() >= count; });
    return mDone;
  }

  Algo mAlgo;
  AlgoNativeContext mContext;
  void* mBlock = mContext.createMetadata();
  // Called on the callback thread before the request counts as done.
  std::function<void(uint64_t nativeReq)> mOnCallback = [](uint64_t) {};

private:
  AlgoResultCallback mCallback = [this](const auto& data, const auto&, const auto&) {
    uint64_t nativeReq = 0;
    std::memcpy(&nativeReq, &data[8], sizeof nativeReq);
    mOnCallback(nativeReq);
    const std::lock_guard<std::mutex> lock(mMutex);
    mDone.push_back(nativeReq);
    mChanged.notify_all();
  };
  std::mutex mMutex;
  std::condition_variable mChanged;
  std::vector<uint64_t> mDone;
};

TEST_F(StandInTest, KeepsTheLastValueOfASectionAndKey) {
  EXPECT_EQ(0, set<int32_t>(mBlock, "orlu.algo.parameter", "key", 5));
  EXPECT_EQ(0, set<int64_t>(mBlock, kControl, "key", 6));
  EXPECT_EQ(6, get<int64_t>(kControl, "key", -1));
  EXPECT_EQ(0, set<uint8_t>(mBlock, "orlu.algo.parameter", "key", 7));
  EXPECT_EQ(0x01020307, get<int32_t>("orlu.algo.parameter", "key", 0x01020304));
  EXPECT_EQ(-1, get<int32_t>("orlu.algo.feedback", "key", -1));
}

TEST_F(StandInTest, AbortsOnlyTheQueuedRequestWithTheFlag) {
  std::promise<void> entered;
  std::promise<void> released;
  mOnCallback = [&](uint64_t nativeReq) {
    if (nativeReq != 1) return;
    entered.set_value();
    released.get_future().wait();
  };
  process(1, mBlock);
  entered.get_future().wait();
  void* const aborted = mContext.createMetadata();
  set<int64_t>(aborted, kControl, "frame_flag", 77);
  process(2, aborted);
  set<int64_t>(mBlock, kControl, "frame_flag", 78);
  process(3, mBlock);
  set<int64_t>(mBlock, kControl, "abort_val", 77);
  mContext.abort(0, 0, mBlock);
  EXPECT_EQ(std::vector<uint64_t>{2}, waitFor(1));
  released.set_value();
  EXPECT_EQ((std::vector<uint64_t>{2, 1, 3}), waitFor(3));
  mContext.destroyMetadata(aborted);
}

TEST_F(StandInTest, FlushWaitsForPendingRequests) {
  for (uint64_t i = 1; i <= 5; ++i) process(i, mBlock);
  mContext.flush();
  EXPECT_EQ((std::vector<uint64_t>{1, 2, 3, 4, 5}), waitFor(0));
}

TEST_F(StandInTest, CallsBackDespiteInvalidImages) {
  void (*const kSpoil[])(AlgoFrameInfo&) = {
      [](AlgoFrameInfo& frame) { frame.width = 0; },
      [](AlgoFrameInfo& frame) { frame.width = 0x7FFFFFFF; },
      [](AlgoFrameInfo& frame) { frame.height = -5; },
      [](AlgoFrameInfo& frame) { frame.stride[0] = 0x7FFFFFFF; },
      [](AlgoFrameInfo& frame) { frame.scanline[0] = 0x7FFFFFFF; },
      [](AlgoFrameInfo& frame) { frame.fd[0] = 987; },
      [](AlgoFrameInfo& frame) { frame.fdSize[0] = 0; },
      [](AlgoFrameInfo& frame) { frame.planeSize[0] = 0x7FFFFFFF; },
  };
  AlgoFrameInfo good;
  good.format = 1;
  good.width = 128;
  good.height = 96;
  good.size = good.fdSize[0] = 128 * 96 * 3 / 2;
  good.fdCount = 1;
  good.fd[0] = ASharedMemory_create("stand-in-image", static_cast<size_t>(good.size));
  for (const auto spoil : kSpoil) {
    AlgoFrameInfo odd = good;
    spoil(odd);
    process(1, mBlock, {"night", "flip", "upscale", "jpegEncode", "ppt"}, {odd, good, odd}, {good, odd});
    process(2, mBlock, {"hdr"}, {good, odd}, {odd});
  }
  EXPECT_EQ(16U, waitFor(16).size());
  close(good.fd[0]);
}

}  // namespace
}  // namespace orlu
