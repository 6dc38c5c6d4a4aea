// Tests how the probe records pixels and handles invalid descriptors.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <thread>

#include "event_recorder.h"
#include "paths.h"
#include "pixel_file.h"

namespace orlu::probe {
namespace {

using android::hardware::hidl_vec;
using Json = nlohmann::ordered_json;

constexpr uint64_t kNativeReq = 7;
// The usual test input of CRC-32, and its checksum.
constexpr char kNine[] = "123456789";
constexpr uint32_t kNineCrc = 0xCBF43926;

int memoryFile(const std::string& content) {
  const int fd = memfd_create("pixels", MFD_CLOEXEC);
  EXPECT_EQ(write(fd, content.data(), content.size()), static_cast<ssize_t>(content.size()));
  return fd;
}

std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// Counts open descriptors. Checks each number instead of listing a folder, because a 32-bit process in the
// emulator can't list some folders.
size_t openDescriptors() {
  constexpr int kMost = 1024;
  size_t open = 0;
  for (int fd = 0; fd < kMost; ++fd) open += fcntl(fd, F_GETFD) >= 0 ? 1 : 0;
  return open;
}

TEST(PixelFile, StoresMappedMemoryOrReportsTheProblem) {
  const std::string path = testing::TempDir() + "pixels_" + std::to_string(getpid());
  std::string large(size_t{17} << 20, 'l');  // larger than one mapping
  large.back() = 'e';
  const int nine = memoryFile(kNine);
  const int big = memoryFile(large);
  const int empty = memoryFile("");
  const int event = eventfd(0, EFD_CLOEXEC);
  const int unreadable = open("/proc/self/exe", O_PATH | O_CLOEXEC);
  const int closed = dup(nine);
  close(closed);
  const struct {
    const char* what;
    int fd;
    int64_t size;
    uint64_t most;
    std::string content;
    const char* problem;
  } cases[] = {
      {"whole",               nine,       9,       9,         kNine, ""                                    },
      {"a part",              nine,       3,       100,       "123", ""                                    },
      {"a short file",        nine,       4096000, 100,       kNine, ""                                    },
      {"large",               big,        1 << 30, 1U << 30U, large, ""                                    },
      {"more than allowed",   big,        1 << 30, 100,       "",    "more bytes than ORLU_PIXELS_BYTES"   },
      {"no size",             nine,       0,       100,       "",    "the size is 0"                       },
      {"a negative size",     nine,       -9,      100,       "",    "the size is -9"                      },
      {"no descriptor",       -1,         9,       100,       "",    "no descriptor"                       },
      {"a closed descriptor", closed,     9,       100,       "",    "the descriptor has no memory"        },
      {"an empty file",       empty,      9,       100,       "",    "the descriptor has no memory"        },
      {"not a file",          event,      9,       100,       "",    "the descriptor has no memory"        },
      {"not readable",        unreadable, 9,       1U << 30U, "",    "can't be mapped: Bad file descriptor"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    unlink(path.c_str());
    const WrittenPixels pixels = writePixels(c.fd, c.size, c.most, path);
    EXPECT_EQ(pixels.problem.rfind(c.problem, 0), 0U) << pixels.problem;
    EXPECT_EQ(pixels.problem.empty(), *c.problem == '\0') << pixels.problem;
    EXPECT_EQ(access(path.c_str(), F_OK) == 0, *c.problem == '\0');
    EXPECT_EQ(pixels.size, c.content.size());
    EXPECT_TRUE(contentOf(path) == c.content);
  }
  unlink(path.c_str());
  EXPECT_EQ(writePixels(nine, 9, 9, path).crc, kNineCrc);
  // Existing files are not overwritten.
  EXPECT_EQ(writePixels(nine, 9, 9, path).problem.rfind("can't create " + path, 0), 0U);
  unlink(path.c_str());
  for (const int fd : {nine, big, empty, event, unreadable}) close(fd);
}

// Another thread shrinks the file meanwhile. Touching a mapped page beyond the file's end would kill the
// process.
TEST(PixelFile, SurvivesShrinkingMemory) {
  constexpr off_t kSize = off_t{20} << 20;
  const std::string path = testing::TempDir() + "shrinking_" + std::to_string(getpid());
  const int fd = memoryFile("x");
  std::atomic<bool> isOver{false};
  std::thread other([&] {
    while (!isOver) {
      EXPECT_EQ(ftruncate(fd, kSize), 0);
      EXPECT_EQ(ftruncate(fd, 4096), 0);
    }
  });
  for (int i = 0; i < 40; ++i) {
    unlink(path.c_str());
    const std::string problem = writePixels(fd, kSize, kSize, path).problem;
    EXPECT_TRUE(problem.empty() || problem == "can't be written: Bad address") << problem;
  }
  isOver = true;
  other.join();
  unlink(path.c_str());
  close(fd);
}

class PixelRecorderTest : public testing::Test {
protected:
  // NOLINTBEGIN(concurrency-mt-unsafe): no other thread runs in these tests.
  PixelRecorderTest() { open("100000"); }
  ~PixelRecorderTest() override {
    unsetenv("ORLU_EVENTS");
    unsetenv("ORLU_PIXELS");
    unsetenv("ORLU_PIXELS_BYTES");
    recorder().open();
    std::filesystem::remove_all(mFolder);
    std::filesystem::remove(mEvents);
  }
  void open(const char* bytes) {
    setenv("ORLU_EVENTS", mEvents.c_str(), 1);
    setenv("ORLU_PIXELS", mFolder.c_str(), 1);
    setenv("ORLU_PIXELS_BYTES", bytes, 1);
    recorder().open();
  }
  // NOLINTEND(concurrency-mt-unsafe)

  // Never destroyed, because the probe's callbacks use it and are never freed.
  static EventRecorder& recorder() {
    static EventRecorder* const recorder = new EventRecorder();
    return *recorder;
  }

  // Runs a request and closes its descriptors after process() returns, as for a full-async request. Then
  // makes the callback `callbackName`, or no callback if the name is null.
  void run(const std::string& in, const std::string& out, int result, const char* callbackName) {
    AlgoInterfaceCallbacks real;
    real.destroyClient = [](void*) { return 0; };
    uint64_t cookie = 0;
    real.process = [&](const AlgoProcessRecord& record) {
      cookie = record.callbackCookie;
      return result;
    };
    mTable = watchedTable(real, recorder());
    const AlgoResultCallback callback = [](const auto&, const auto&, const auto&) {};
    AlgoProcessRecord record;
    record.callbackCookie = reinterpret_cast<uintptr_t>(&callback);
    record.nativeReq = kNativeReq;
    record.reqId = 101;
    record.client = &mTable;
    record.inputFrames = {frame(memoryFile(in), in.size())};
    record.outputFrames = {frame(memoryFile(out), out.size()), frame(-1, 5)};
    mTable.process(record);
    close(record.inputFrames[0].fd[0]);
    close(record.outputFrames[0].fd[0]);
    if (callbackName == nullptr) return;
    std::vector<uint8_t> message(kCallbackNameOffset);
    message[offsetof(CallbackHeader, nativeReq)] = kNativeReq;
    message[offsetof(CallbackHeader, nameLength)] = static_cast<uint8_t>(std::strlen(callbackName));
    message.insert(message.end(), callbackName, callbackName + std::strlen(callbackName));
    const auto& function = *reinterpret_cast<const AlgoResultCallback*>(static_cast<uintptr_t>(cookie));
    function(hidl_vec<uint8_t>(message), {}, {});
  }
  static AlgoFrameInfo frame(int fd, size_t size) {
    AlgoFrameInfo frame;
    frame.fdCount = 1;
    frame.fd[0] = fd;
    frame.fdSize[0] = static_cast<int32_t>(size);
    return frame;
  }
  // Returns "at image index: content" for each event with pixels. If the pixels were not recorded, the reason
  // replaces the content.
  std::vector<std::string> pixels() const {
    std::vector<std::string> found;
    std::ifstream file(mEvents);
    for (std::string line; std::getline(file, line);) {
      const Json event = Json::parse(line);
      if (event["event"] != "pixels") continue;
      EXPECT_EQ(event["reqId"], 101);
      const std::string content = event.contains("file")
                                      ? contentOf(mFolder + "/" + std::string(event["file"]))
                                      : std::string(event["kept"]);
      found.push_back(std::string(event["at"]) + " " + std::string(event["image"]) + " " +
                      event["index"].dump() + ": " + content);
    }
    return found;
  }

  AlgoInterfaceCallbacks mTable;
  const std::string mFolder = test::temporaryFolder() + "pixels_folder_" + std::to_string(getpid());
  const std::string mEvents = mFolder + ".events";
};

TEST_F(PixelRecorderTest, KeepsInputsAtProcessAndOutputsAtTheCallback) {
  const size_t open = openDescriptors();
  run("in", "out", 0, kShotCallback);
  const std::vector<std::string> expected = {"process input 0: in", "callback output 0: out",
                                             "callback output 1: no: no descriptor"};
  EXPECT_EQ(pixels(), expected);
  EXPECT_EQ(openDescriptors(), open);
}

TEST_F(PixelRecorderTest, ClosesDescriptorsOfRequestsWithoutCallback) {
  const size_t open = openDescriptors();
  run("in", "out", -22, nullptr);
  EXPECT_EQ(openDescriptors(), open) << "after process() failed";
  run("in", "out", 0, kLightStreamCallback);
  EXPECT_EQ(openDescriptors(), open + 1) << "only the shot's callback closes the output";
  mTable.destroyClient(&mTable);
  EXPECT_EQ(openDescriptors(), open) << "after the client was destroyed";
  for (int i = 0; i < 40; ++i) run("in", "out", 0, nullptr);
  EXPECT_EQ(openDescriptors(), open + 16) << "at most 16 requests may hold descriptors";
  mTable.destroyClient(&mTable);
  EXPECT_EQ(openDescriptors(), open);
  EXPECT_EQ(pixels().size(), 42U);
}

TEST_F(PixelRecorderTest, StoresNoMoreThanTheLimitUntilFilesAreRemoved) {
  open("5");
  run("in", "out", 0, kShotCallback);
  run("in", "out", 0, kShotCallback);
  const std::string full = "no: more bytes than ORLU_PIXELS_BYTES allows";
  std::vector<std::string> found = pixels();
  EXPECT_EQ(found[1], "callback output 0: out");
  EXPECT_EQ(found[3], "process input 0: " + full);
  for (const auto& file : std::filesystem::directory_iterator(mFolder)) std::filesystem::remove(file);
  run("in", "out", 0, kShotCallback);
  found = pixels();
  EXPECT_EQ(found[6], "process input 0: in");
}

}  // namespace
}  // namespace orlu::probe
