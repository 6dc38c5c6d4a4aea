// What the stand-in algorithm library does for its clients, and what a script makes it do instead.

#include <dirent.h>
#include <gtest/gtest.h>

#include <future>

#include "stand_in_client.h"

namespace orlu {
namespace {

using test::Algo;
using test::FileImage;
using test::StandInClient;

constexpr char kParameter[] = "orlu.algo.parameter";
constexpr char kControl[] = "orlu.algo.control";
constexpr char kFeedback[] = "orlu.algo.feedback";

TEST(StandInParameterTest, KeepsValuesBySectionAndKey) {
  const Algo algo;
  StandInClient c;
  EXPECT_EQ(0, c.set<int32_t>(kParameter, "key", 5));
  EXPECT_EQ(0, c.set<int64_t>(kFeedback, "key", 6));
  EXPECT_EQ(12U, c.table.metadataOps.getSize(c.block));
  EXPECT_EQ(5, c.get<int32_t>(kParameter, "key", -1));
  EXPECT_EQ(6, c.get<int64_t>(kFeedback, "key", -1));
  EXPECT_EQ(-1, c.get<int32_t>(kControl, "key", -1));

  // Another value, also one of another size, takes the place of the first.
  EXPECT_EQ(0, c.set<uint8_t>(kParameter, "key", 7));
  EXPECT_EQ(9U, c.table.metadataOps.getSize(c.block));
  EXPECT_EQ(0x01020307, c.get<int32_t>(kParameter, "key", 0x01020304));
  EXPECT_EQ(6, c.get<uint8_t>(kFeedback, "key", 0));
}

TEST(StandInParameterTest, RefusesWhatIsNoLiveParameterBlock) {
  const Algo algo;
  StandInClient c;
  AlgoMetadataOps& ops = c.table.metadataOps;
  int32_t value = 1;
  void* const gone = ops.createMetadata(0);
  ops.destroyMetadata(gone);
  void* const camera = ops.createMetadata(1);
  for (void* block : {static_cast<void*>(nullptr), gone, camera}) {
    EXPECT_EQ(-1, ops.setValue(block, kControl, "key", &value, sizeof value));
    EXPECT_EQ(-1, ops.getValue(block, kControl, "key", &value, sizeof value));
  }
  EXPECT_EQ(-1, ops.setValue(c.block, nullptr, "key", &value, sizeof value));
  EXPECT_EQ(-1, ops.setValue(c.block, kControl, "key", nullptr, sizeof value));
  EXPECT_EQ(-1, ops.setRaw(c.block, "abc", 3));
  EXPECT_EQ(0, ops.setRaw(camera, "abc", 3));
  EXPECT_EQ(3U, ops.getSize(camera));
  EXPECT_EQ(0U, ops.getSize(gone));
  EXPECT_EQ(nullptr, ops.createMetadata(7));
  ops.destroyMetadata(camera);
}

TEST(StandInCountTest, CountsWhatIsAlive) {
  const Algo algo;
  const standin::AlgoCounts before = Algo::counts();
  {
    StandInClient c;
    void* const camera = c.table.metadataOps.createMetadata(1);
    EXPECT_EQ(before.clients + 1, Algo::counts().clients);
    EXPECT_EQ(before.parameterBlocks + 1, Algo::counts().parameterBlocks);
    EXPECT_EQ(before.cameraBlocks + 1, Algo::counts().cameraBlocks);
    c.table.metadataOps.destroyMetadata(camera);
  }
  EXPECT_EQ(before.clients, Algo::counts().clients);
  EXPECT_EQ(before.parameterBlocks, Algo::counts().parameterBlocks);
  EXPECT_EQ(before.cameraBlocks, Algo::counts().cameraBlocks);
}

TEST(StandInScriptTest, CallsBackOnAThreadOfItsOwnWithItsValuesLeft) {
  Algo algo;
  algo.script.values = {
      {kFeedback, "left", {1, 2, 3, 4}}
  };
  algo.use();
  StandInClient c;
  std::thread::id caller;
  int32_t left = 0;
  c.onCallback = [&](uint64_t) {
    caller = std::this_thread::get_id();
    left = c.get<int32_t>(kFeedback, "left", 0);
  };
  EXPECT_EQ(0, c.process(41, {}));
  EXPECT_EQ(std::vector<uint64_t>{41}, c.waitForCallbacks(1));
  EXPECT_NE(std::this_thread::get_id(), caller);
  EXPECT_EQ(0x04030201, left);
}

TEST(StandInScriptTest, CallsBackAsOftenAsScripted) {
  Algo algo;
  for (const int times : {0, 2}) {
    algo.script.callbacks = times;
    algo.script.processResult = -times;
    algo.use();
    StandInClient c;
    EXPECT_EQ(-times, c.process(1, {}));
    EXPECT_TRUE(Algo::waitIdle(60'000));
    EXPECT_EQ(std::vector<uint64_t>(static_cast<size_t>(times), 1), c.callbacks());
  }
}

TEST(StandInScriptTest, CallsBackInsideProcess) {
  Algo algo;
  algo.script.callBackBeforeReturn = true;
  algo.use();
  StandInClient c;
  std::thread::id caller;
  c.onCallback = [&](uint64_t) { caller = std::this_thread::get_id(); };
  c.process(1, {});
  EXPECT_EQ(1U, c.callbacks().size());
  EXPECT_EQ(std::this_thread::get_id(), caller);
}

TEST(StandInScriptTest, CallsBackNotBeforeItsDelay) {
  Algo algo;
  algo.script.delay = std::chrono::milliseconds(30);
  algo.use();
  StandInClient c;
  const auto start = std::chrono::steady_clock::now();
  c.process(1, {});
  c.waitForCallbacks(1);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(30));
}

// Descriptors of stand-in images that this process has open.
int openImages() {
  int count = 0;
  DIR* const folder = opendir("/proc/self/fd");
  while (const dirent* entry = readdir(folder)) {
    char target[100] = {};
    if (readlinkat(dirfd(folder), entry->d_name, target, sizeof target - 1) <= 0) continue;
    count += std::string(target).find("stand-in-image") != std::string::npos ? 1 : 0;
  }
  closedir(folder);
  return count;
}

TEST(StandInScriptTest, HasGivenImagesBackWhenItCallsBack) {
  const Algo algo;
  const FileImage image(1, 64, 48, 64 * 48 * 3 / 2);
  StandInClient c;
  int open = 0;
  c.onCallback = [&](uint64_t) { open = openImages(); };
  c.process(1, {"night"}, {&image, &image}, {&image});
  c.waitForCallbacks(1);
  EXPECT_EQ(1, open);
}

// Holds the worker inside the callback of request 1.
struct HeldWorker {
  explicit HeldWorker(StandInClient& c) {
    c.onCallback = [this](uint64_t nativeReq) {
      if (nativeReq != 1) return;
      entered.set_value();
      released.get_future().wait();
    };
    c.process(1, {});
    entered.get_future().wait();
  }
  std::promise<void> entered;
  std::promise<void> released;
};

int command(StandInClient& c, void* block) {
  AlgoCommandRecord record = {};
  record.client = c.client;
  AlgoMetadataEntry entry = {};
  entry.block = block;
  record.metadata.push_back(entry);
  return c.table.command(record);
}

TEST(StandInQueueTest, AbortsTheQueuedRequestOfAFlagWithoutWorkingOnIt) {
  Algo algo;
  StandInClient c;
  HeldWorker held(c);
  algo.script.delay = std::chrono::hours(1);
  algo.use();
  void* const aborted = c.table.metadataOps.createMetadata(0);
  void* const other = c.table.metadataOps.createMetadata(0);
  void* const abort = c.table.metadataOps.createMetadata(0);
  c.set<int64_t>(kControl, "frame_flag", 77, aborted);
  c.set<int64_t>(kControl, "frame_flag", 78, other);
  c.process(2, {}, {}, {}, aborted);
  algo.script.delay = {};
  algo.use();
  c.process(3, {}, {}, {}, other);
  EXPECT_EQ(-1, command(c, abort));
  c.set<int64_t>(kControl, "abort_val", 77, abort);
  EXPECT_EQ(0, command(c, abort));
  EXPECT_EQ(std::vector<uint64_t>{2}, c.waitForCallbacks(1));
  held.released.set_value();
  EXPECT_EQ((std::vector<uint64_t>{2, 1, 3}), c.waitForCallbacks(3));
  // Work leaves at least this value.
  EXPECT_EQ(0U, c.table.metadataOps.getSize(aborted) - sizeof(int64_t));
  EXPECT_LT(sizeof(int64_t), c.table.metadataOps.getSize(other));
  for (void* block : {aborted, other, abort}) c.table.metadataOps.destroyMetadata(block);
}

TEST(StandInQueueTest, ForgetsWhatIsQueuedWhenTheClientGoes) {
  const Algo algo;
  StandInClient holder;
  HeldWorker held(holder);
  StandInClient c;
  c.process(2, {});
  AlgoUninitRecord record = {};
  record.client = c.client;
  record.mode = 1;
  c.table.uninit(record);
  EXPECT_EQ(2, Algo::counts().pendingRequests);
  record.mode = 0;
  c.table.uninit(record);
  EXPECT_EQ(1, Algo::counts().pendingRequests);
  held.released.set_value();
  EXPECT_TRUE(Algo::waitIdle(60'000));
  EXPECT_TRUE(c.callbacks().empty());
}

TEST(StandInQueueTest, FlushWaitsForWhatIsPending) {
  const Algo algo;
  StandInClient c;
  for (uint64_t i = 1; i <= 5; ++i) c.process(i, {});
  EXPECT_EQ(0, c.table.flush({c.client}));
  EXPECT_EQ((std::vector<uint64_t>{1, 2, 3, 4, 5}), c.callbacks());
}

}  // namespace
}  // namespace orlu
