#include "algo_native_request_map.h"

#include <gtest/gtest.h>
#include <orlu/camera3rd_log.h>
#include <pthread.h>

#include <atomic>
#include <set>
#include <thread>

#include "log_capture.h"
#include "thread_state.h"

namespace orlu {
namespace {

constexpr char kTag[] = "_V_VASJNI-AlgoNativeRequestMap";

using List = std::vector<std::string>;

// A test fails if a wait times out. RequestProcessorImageTest tests the timeout itself. Every test removes
// its requests, because the map's destructor does not free them.
class AlgoNativeRequestMapTest : public testing::Test {
protected:
  ~AlgoNativeRequestMapTest() override {
    gVAFCtrlLogLevel = 3;
    EXPECT_FALSE(timedOut());
  }

  bool timedOut() const { return mLog.contains("time out"); }

  test::LogCapture mLog;
  AlgoNativeRequestMap mMap;
};

TEST_F(AlgoNativeRequestMapTest, KeepsWhatBelongsToEachRequest) {
  int block = 0;
  EXPECT_EQ(0U, mMap.create(70, &block, false));
  EXPECT_EQ(1U, mMap.create(71, nullptr, false));
  EXPECT_EQ(2U, mMap.create(-0x100000001, nullptr, true));
  EXPECT_TRUE(mMap.setAlgoList(2, {"hdr", "flip"}));
  EXPECT_TRUE(mMap.remove(1));
  EXPECT_EQ(1, mLog.count(ANDROID_LOG_DEBUG, kTag, "remove from map reqId = 71"));
  EXPECT_EQ(3U, mMap.create(71, nullptr, false)) << "an id was reused";

  EXPECT_EQ(70, mMap.getRequestId(0));
  EXPECT_EQ(-0x100000001, mMap.getRequestId(2));
  EXPECT_EQ(&block, mMap.getMetadataHandle(0));
  bool isFullAsync = true;
  EXPECT_TRUE(mMap.getIsFullAsync(0, isFullAsync));
  EXPECT_FALSE(isFullAsync);
  EXPECT_TRUE(mMap.getIsFullAsync(2, isFullAsync));
  EXPECT_TRUE(isFullAsync);
  List list = {"old"};
  EXPECT_TRUE(mMap.getAlgoList(2, list));
  EXPECT_EQ((List{"hdr", "flip"}), list);
  EXPECT_TRUE(mMap.getAlgoList(0, list));
  EXPECT_EQ(List(), list);

  for (uint64_t id : {0U, 2U, 3U}) EXPECT_TRUE(mMap.remove(id));
}

TEST_F(AlgoNativeRequestMapTest, LetsOneCallerFinishARequest) {
  int block = 0;
  List list = {"old"};
  void* metadata = &list;
  const uint64_t waitedFor = mMap.create(1, &block, false);
  EXPECT_TRUE(mMap.onCallbackReceived(waitedFor));
  EXPECT_FALSE(mMap.takeForFinish(waitedFor, metadata, list)) << "another thread waits for the request";
  EXPECT_TRUE(mMap.remove(waitedFor));

  for (const bool isAnnounced : {true, false}) {
    SCOPED_TRACE(isAnnounced);
    list = {"old"};
    metadata = &list;
    const uint64_t id = mMap.create(2, &block, true);
    EXPECT_TRUE(mMap.setAlgoList(id, {"hdr"}));
    EXPECT_FALSE(mMap.takeForFinish(id, metadata, list)) << "the request is being submitted";
    EXPECT_EQ(List{"old"}, list);
    EXPECT_EQ(&list, metadata);
    if (isAnnounced) {
      EXPECT_TRUE(mMap.setAnnounced(id));
    } else {
      EXPECT_EQ(nullptr, mMap.releaseBlock(id, kUsedBySubmission));
    }
    EXPECT_TRUE(mMap.takeForFinish(id, metadata, list));
    EXPECT_EQ(List{"hdr"}, list);
    EXPECT_EQ(&block, metadata);
    EXPECT_TRUE(mMap.setAnnounced(id)) << "the library may call back again";
    EXPECT_FALSE(mMap.takeForFinish(id, metadata, list)) << "the request is already taken";
    EXPECT_EQ(nullptr, mMap.finish(id)) << "got a block that the library or the submission still uses";
    EXPECT_EQ(2 - (isAnnounced ? 1 : 0), mLog.count(ANDROID_LOG_DEBUG, kTag, "remove from map reqId = 2"));
    EXPECT_EQ(-1, mMap.getRequestId(id)) << "a finished request is still known";
    EXPECT_FALSE(mMap.setAnnounced(id));
    EXPECT_EQ(isAnnounced ? nullptr : &block, mMap.releaseBlock(id, kUsedByLibrary));
    EXPECT_EQ(isAnnounced ? &block : nullptr, mMap.releaseBlock(id, kUsedBySubmission));
  }
}

// The block has three users: the submission (S), the algorithm library (L) and Java (J). The last user to
// release the block gets it. O: the owner is destroyed. This releases the block for the algorithm library,
// and for Java too unless Java will finish the request.
TEST_F(AlgoNativeRequestMapTest, GivesTheBlockToItsLastUser) {
  const void* const owner = &mLog;
  for (const char* order : {"SLJ", "LSJ", "LJS", "SJL", "SJO", "SOJ", "OS"}) {
    SCOPED_TRACE(order);
    int block = 0;
    const uint64_t id = mMap.create(7, &block, true, owner);
    for (const char* step = order; *step != 0; ++step) {
      void* got = nullptr;
      List list;
      void* taken = nullptr;
      switch (*step) {
        case 'S':
          got = mMap.releaseBlock(id, kUsedBySubmission);
          break;
        case 'L':
          got = mMap.releaseBlock(id, kUsedByLibrary);
          mMap.setAnnounced(id);
          break;
        case 'O':
          if (step[1] != 0) mMap.takeForFinish(id, taken, list);
          EXPECT_TRUE(mMap.releaseOwned(owner, got));
          break;
        default:
          mMap.takeForFinish(id, taken, list);
          got = mMap.finish(id);
      }
      EXPECT_EQ(step[1] == 0 ? &block : nullptr, got) << *step;
    }
    void* none = nullptr;
    EXPECT_FALSE(mMap.releaseOwned(owner, none)) << "a request is left";
    EXPECT_FALSE(mMap.remove(id));
  }
}

TEST_F(AlgoNativeRequestMapTest, FinishesWhatItsOwnerLeaves) {
  int blocks[4] = {};
  const void* const owner = &mLog;
  const uint64_t announced = mMap.create(1, &blocks[0], true, owner);
  const uint64_t synchronous = mMap.create(2, &blocks[1], false, owner);
  const uint64_t failed = mMap.create(3, &blocks[2], true, owner);
  const uint64_t others = mMap.create(4, &blocks[3], true);
  for (uint64_t id : {announced, failed}) {
    EXPECT_EQ(nullptr, mMap.releaseBlock(id, kUsedBySubmission));
    EXPECT_EQ(nullptr, mMap.releaseBlock(id, kUsedByLibrary));
    EXPECT_TRUE(mMap.setAnnounced(id));
  }
  EXPECT_EQ(nullptr, mMap.withdrawAnnouncement(failed));
  void* metadata = nullptr;
  EXPECT_TRUE(mMap.releaseOwned(owner, metadata));
  EXPECT_EQ(nullptr, metadata) << "Java knows the request";
  EXPECT_TRUE(mMap.releaseOwned(owner, metadata));
  EXPECT_EQ(&blocks[2], metadata);
  EXPECT_FALSE(mMap.releaseOwned(owner, metadata));
  EXPECT_EQ(&blocks[0], mMap.withdrawAnnouncement(announced)) << "Java was not notified after all";
  for (uint64_t id : {synchronous, others}) EXPECT_TRUE(mMap.remove(id));
  for (uint64_t id : {announced, failed}) EXPECT_FALSE(mMap.remove(id));
}

TEST_F(AlgoNativeRequestMapTest, KnowsNoOtherIds) {
  EXPECT_TRUE(mMap.remove(mMap.create(70, &mLog, true)));
  for (uint64_t id : {uint64_t{0}, uint64_t{1}, UINT64_MAX}) {
    EXPECT_FALSE(mMap.remove(id));
    EXPECT_FALSE(mMap.onCallbackReceived(id));
    EXPECT_FALSE(mMap.waitForCallback(id));
    EXPECT_EQ(nullptr, mMap.getMetadataHandle(id));
    EXPECT_FALSE(mMap.setAnnounced(id));
    EXPECT_EQ(nullptr, mMap.withdrawAnnouncement(id));
    EXPECT_EQ(nullptr, mMap.releaseBlock(id, kUsedByLibrary));
    EXPECT_EQ(nullptr, mMap.finish(id));
    EXPECT_EQ(-1, mMap.getRequestId(id));
    EXPECT_FALSE(mMap.setAlgoList(id, {"hdr"}));
    bool isFullAsync = false;
    EXPECT_FALSE(mMap.getIsFullAsync(id, isFullAsync));
    EXPECT_FALSE(isFullAsync);
    List list = {"old"};
    EXPECT_FALSE(mMap.getAlgoList(id, list));
    EXPECT_EQ(List{"old"}, list);
  }
}

TEST_F(AlgoNativeRequestMapTest, CallbackBeforeAndAfterTheWait) {
  const uint64_t id = mMap.create(5, nullptr, false);
  EXPECT_TRUE(mMap.onCallbackReceived(id));
  EXPECT_EQ(1, mLog.count(ANDROID_LOG_DEBUG, kTag, "notify reqId = 5"));
  EXPECT_TRUE(mMap.waitForCallback(id));
  EXPECT_TRUE(mMap.onCallbackReceived(id));
  EXPECT_TRUE(mMap.waitForCallback(id)) << "one callback must end every wait";
  EXPECT_TRUE(mMap.remove(id));
  EXPECT_EQ(1, mLog.count(ANDROID_LOG_DEBUG, kTag, "remove from map reqId = 5")) << "the wait has not ended";
}

TEST_F(AlgoNativeRequestMapTest, EachWaiterWakesForItsOwnRequest) {
  constexpr size_t kWaiters = 6;
  std::atomic<int> threadIds[kWaiters] = {};
  std::atomic<bool> calledBack[kWaiters] = {};
  std::vector<std::thread> waiters;
  for (size_t i = 0; i < kWaiters; ++i) {
    const uint64_t id = mMap.create(static_cast<int64_t>(i), nullptr, false);
    waiters.emplace_back([this, id, &threadId = threadIds[i], &mine = calledBack[i]] {
      pthread_setname_np(pthread_self(), "a waiter) R");  // this name must not mislead untilAsleep()
      threadId = test::threadId();
      EXPECT_TRUE(mMap.waitForCallback(id));
      EXPECT_TRUE(mine) << id << " woke for another request";
    });
  }
  for (const std::atomic<int>& thread : threadIds) test::untilAsleep(thread);
  for (size_t i : {3U, 0U, 5U, 1U, 4U, 2U}) {
    calledBack[i] = true;
    EXPECT_TRUE(mMap.onCallbackReceived(i));
    waiters[i].join();
    EXPECT_TRUE(mMap.remove(i));
  }
}

TEST_F(AlgoNativeRequestMapTest, NoWakeUpIsLost) {
  constexpr uint64_t kRounds = 4000;
  gVAFCtrlLogLevel = 4;
  std::atomic<uint64_t> created{0};
  std::thread caller([&] {
    for (uint64_t id = 0; id < kRounds; ++id) {
      while (created <= id) std::this_thread::yield();
      mMap.onCallbackReceived(id);
    }
  });
  for (uint64_t id = 0; id < kRounds && !timedOut(); ++id) {
    mMap.create(0, nullptr, false);
    ++created;
    EXPECT_TRUE(mMap.waitForCallback(id));
    EXPECT_TRUE(mMap.remove(id));
  }
  created = kRounds;
  caller.join();
}

// Removes a request while its woken waiter returns. remove() or the waiter, whichever is later, frees the
// record. Sanitizers detect a leak or a double free.
TEST_F(AlgoNativeRequestMapTest, RemovedDuringAWait) {
  gVAFCtrlLogLevel = 4;
  for (int round = 0; round < 300 && !timedOut(); ++round) {
    const uint64_t id = mMap.create(round, nullptr, false);
    std::atomic<int> thread{0};
    std::thread waiter([&] {
      thread = test::threadId();
      mMap.waitForCallback(id);
    });
    test::untilAsleep(thread);
    EXPECT_TRUE(mMap.onCallbackReceived(id));
    EXPECT_TRUE(mMap.remove(id));
    EXPECT_FALSE(mMap.remove(id)) << "the entry outlived its removal";
    waiter.join();
  }
}

TEST_F(AlgoNativeRequestMapTest, ManyThreadsAtOnce) {
  gVAFCtrlLogLevel = 4;
  std::set<uint64_t> created[4];
  std::vector<std::thread> threads;
  for (std::set<uint64_t>& ids : created) {
    threads.emplace_back([this, &ids] {
      for (int64_t i = 0; i < 100; ++i) {
        const uint64_t id = mMap.create(i, &ids, true);
        List list;
        bool isFullAsync = false;
        EXPECT_TRUE(mMap.setAlgoList(id, {"hdr"}));
        EXPECT_TRUE(mMap.onCallbackReceived(id));
        EXPECT_TRUE(mMap.waitForCallback(id));
        EXPECT_EQ(i, mMap.getRequestId(id));
        EXPECT_EQ(&ids, mMap.getMetadataHandle(id));
        EXPECT_TRUE(mMap.getAlgoList(id, list));
        EXPECT_TRUE(mMap.getIsFullAsync(id, isFullAsync));
        EXPECT_TRUE(mMap.remove(id));
        ids.insert(id);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (size_t i : {1U, 2U, 3U}) created[0].merge(created[i]);
  EXPECT_EQ(400U, created[0].size()) << "two requests had the same id";
}

}  // namespace
}  // namespace orlu
