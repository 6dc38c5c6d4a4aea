// The probe records each call and does not change it.

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <thread>

#include "event_recorder.h"
#include "paths.h"
#include "setting.h"

namespace orlu::probe {
namespace {

using android::hardware::hidl_vec;
using Json = nlohmann::ordered_json;

void* handle(uintptr_t number) {
  return reinterpret_cast<void*>(number);
}

// Returns the table of a fake algorithm library, whose operations return different values.
AlgoInterfaceCallbacks realTable() {
  AlgoInterfaceCallbacks table;
  table.init = [](const AlgoInitRecord&) { return 1; };
  table.process = [](const AlgoProcessRecord&) { return -22; };
  table.uninit = [](const AlgoUninitRecord&) { return 2; };
  table.getData = [](const AlgoGetDataRecord&) { return 3; };
  table.flush = [](const AlgoFlushRecord&) { return 4; };
  table.command = [](const AlgoCommandRecord&) { return 5; };
  table.createClient = [](const AlgoCreateClientRecord&) { return handle(0xc1); };
  table.destroyClient = [](void*) { return 6; };
  table.metadataOps.createMetadata = [](int) { return handle(0xb1); };
  table.metadataOps.destroyMetadata = [](void*) {};
  table.metadataOps.getSize = [](void*) { return 4'000'000'000U; };
  table.metadataOps.setValue = [](void*, const char*, const char*, void*, unsigned) { return 7; };
  table.metadataOps.getValue = [](void*, const char*, const char*, void* data, unsigned) {
    *static_cast<char*>(data) = 'g';
    return -1;
  };
  table.metadataOps.setRaw = [](void*, const char*, unsigned) { return 8; };
  table.metadataOps.paramAlgoUpdateToSystem = [](void*, const AlgoMetadataVisitor& visitor) {
    char data[] = "up";
    return visitor("s", "k", data, 2);
  };
  table.metadataOps.paramSystemDownloadToAlgo = [](void*, const AlgoMetadataVisitor& visitor) {
    char data[] = "--";
    return visitor("s", "k", data, 2) + visitor("refused", "k", data, 2);
  };
  table.translateParamFile = [](const AlgoTranslateParamFileRecord&) { return 9; };
  return table;
}

class ProbeTest : public testing::Test {
protected:
  // NOLINTBEGIN(concurrency-mt-unsafe): no other thread runs before or after a test.
  ProbeTest() {
    setenv("ORLU_EVENTS", mPath.c_str(), 1);
    recorder().open();
  }
  ~ProbeTest() override {
    unsetenv("ORLU_EVENTS");
    recorder().open();
    std::remove(mPath.c_str());
  }
  // NOLINTEND(concurrency-mt-unsafe)

  std::vector<Json> events() const {
    std::ifstream file(mPath);
    std::vector<Json> all;
    for (std::string line; std::getline(file, line);) all.push_back(Json::parse(line));
    return all;
  }
  // Returns the begin and end events, without fields that vary between runs.
  std::string calls() const {
    std::string text;
    for (Json event : events()) {
      if (event["event"] != "begin" && event["event"] != "end") continue;
      for (const char* field : {"t", "tid", "thread", "n", "of", "ns", "from", "cookie"}) event.erase(field);
      text += event.dump() + "\n";
    }
    return text;
  }

  // Never destroyed, because the probe's callbacks use it and are never freed.
  static EventRecorder& recorder() {
    static EventRecorder* const recorder = new EventRecorder();
    return *recorder;
  }

  AlgoInterfaceCallbacks mTable = watchedTable(realTable(), recorder());

private:
  const std::string mPath = testing::TempDir() + "probe_events_" + std::to_string(getpid());
};

AlgoProcessRecord processRecord(const AlgoResultCallback& callback) {
  static AlgoNativeHandle native = {
      12, 1, 2, {7, 8, 9}
  };
  AlgoFrameInfo frame;
  frame.format = kFormatNv21;
  frame.width = 4;
  frame.height = 2;
  frame.size = 12;
  frame.nativeHandle = &native;
  frame.fdCount = 1;
  frame.fd[0] = 5;
  frame.fdSize[0] = 12;
  frame.planeCount = 2;
  for (int i = 0; i < kMaxPlanes; ++i) {
    frame.stride[i] = 10 + i;
    frame.scanline[i] = 20 + i;
    frame.planeData[i] = handle(0xa0U + static_cast<unsigned>(i));
    frame.planeSize[i] = 30 + i;
  }
  AlgoProcessRecord record;
  record.requestType = kRequestCapture;
  record.nativeReq = 0xfedcba9876543210;
  record.algoList = {"night", "a \"b\"\n"};
  record.client = handle(0xc1);
  record.callbackCookie = reinterpret_cast<uintptr_t>(&callback);
  record.reqId = 101;
  record.metadata = {
      {kParameterBlock, handle(0xb1), {}, 16}
  };
  record.inputFrames = {frame};
  return record;
}

TEST_F(ProbeTest, RecordsTheDataOfEveryOperation) {
  char data[] = "da";
  const AlgoMetadataVisitor visitor = [](const char* section, const char*, void* value, unsigned) {
    *static_cast<char*>(value) = 'v';
    return *section == 'r' ? -1 : 0;
  };
  const AlgoResultCallback nobody;
  AlgoMetadataOps& ops = mTable.metadataOps;
  mTable.createClient({kAlgoTableVersion, {}});
  mTable.init({3, handle(0xc1)});
  ops.createMetadata(1);
  ops.setValue(handle(0xb1), "sec", "key\xff", data, 2);
  ops.getValue(handle(0xb1), "sec", nullptr, data, 2);
  ops.setRaw(handle(0xb2), "raw", 3);
  ops.getSize(handle(0xb1));
  ops.paramAlgoUpdateToSystem(handle(0xb1), visitor);
  ops.paramSystemDownloadToAlgo(handle(0xb1), visitor);
  mTable.process(processRecord(nobody));
  mTable.getData({"cmd", handle(0xb1), 9, handle(0xc1)});
  mTable.command({
      {      },
      handle(0xc1), 1, 2, {3,       4},
      {       }
  });
  mTable.translateParamFile({handle(0xc1), 5, 6, "id"});
  mTable.flush({handle(0xc1)});
  mTable.uninit({1, handle(0xc1), 2});
  ops.destroyMetadata(nullptr);
  mTable.destroyClient(handle(0xc1));
  EXPECT_EQ(calls(), R"({"event":"begin","op":"createClient","interfaceVersion":202001}
{"event":"end","op":"createClient","result":"0xc1"}
{"event":"begin","op":"init","client":"0xc1","type":3}
{"event":"end","op":"init","result":1}
{"event":"begin","op":"createMetadata","kind":1}
{"event":"end","op":"createMetadata","result":"0xb1"}
{"event":"begin","op":"setValue","block":"0xb1","section":"sec","key":"key�","size":2,"bytes":"6461"}
{"event":"end","op":"setValue","result":7}
{"event":"begin","op":"getValue","block":"0xb1","section":"sec","key":"","size":2}
{"event":"end","op":"getValue","result":-1,"bytes":"6761"}
{"event":"begin","op":"setRaw","block":"0xb2","size":3,"bytes":"726177"}
{"event":"end","op":"setRaw","result":8}
{"event":"begin","op":"getSize","block":"0xb1"}
{"event":"end","op":"getSize","result":4000000000}
{"event":"begin","op":"paramAlgoUpdateToSystem","block":"0xb1"}
{"event":"begin","op":"visit","section":"s","key":"k","size":2,"bytes":"7570"}
{"event":"end","op":"visit","result":0}
{"event":"end","op":"paramAlgoUpdateToSystem","result":0}
{"event":"begin","op":"paramSystemDownloadToAlgo","block":"0xb1"}
{"event":"begin","op":"visit","section":"s","key":"k","size":2}
{"event":"end","op":"visit","result":0,"bytes":"762d"}
{"event":"begin","op":"visit","section":"refused","key":"k","size":2}
{"event":"end","op":"visit","result":-1}
{"event":"end","op":"paramSystemDownloadToAlgo","result":-1}
{"event":"begin","op":"process","client":"0xc1","type":2,"nativeReq":"0xfedcba9876543210","reqId":101,"algoList":["night","a \"b\"\n"],"metadata":[{"kind":0,"block":"0xb1","size":16}],"inputs":[{"format":1,"width":4,"height":2,"size":12,"stride":[10,11,12,13],"scanline":[20,21,22,23],"planeCount":2,"planes":["0xa0","0xa1","0xa2","0xa3"],"planeSize":[30,31,32,33],"fds":[5],"fdSize":[12],"handle":{"numFds":1,"numInts":2,"data":[7,8,9]}}],"outputs":[]}
{"event":"end","op":"process","result":-22}
{"event":"begin","op":"getData","client":"0xc1","cmd":"cmd","block":"0xb1","size":9}
{"event":"end","op":"getData","result":3}
{"event":"begin","op":"command","client":"0xc1","first":"0x1","second":"0x2","size":2,"bytes":"0304","metadata":[]}
{"event":"end","op":"command","result":5}
{"event":"begin","op":"translateParamFile","client":"0xc1","fd":5,"size":6,"identifier":"id"}
{"event":"end","op":"translateParamFile","result":9}
{"event":"begin","op":"flush","client":"0xc1"}
{"event":"end","op":"flush","result":4}
{"event":"begin","op":"uninit","client":"0xc1","type":1,"mode":2}
{"event":"end","op":"uninit","result":2}
{"event":"begin","op":"destroyMetadata","block":"0x0"}
{"event":"end","op":"destroyMetadata"}
{"event":"begin","op":"destroyClient","client":"0xc1"}
{"event":"end","op":"destroyClient","result":6}
)");
  const Json header = events().front();
  EXPECT_EQ(header["format"], "orlu-events");
  EXPECT_EQ(header["pid"], getpid());
  EXPECT_EQ(header["pointerBits"], 8 * sizeof(void*));
}

// The probe intercepts the callback passed to process(), even if the callback is called after process() or on
// another thread.
TEST_F(ProbeTest, WritesCallbacksOfACookie) {
  std::vector<uint64_t> cookies;
  AlgoInterfaceCallbacks real = realTable();
  real.process = [&](const AlgoProcessRecord& record) {
    cookies.push_back(record.callbackCookie);
    return 0;
  };
  const AlgoInterfaceCallbacks table = watchedTable(real, recorder());
  std::vector<uint8_t> got;
  const AlgoResultCallback callback = [&](const auto& data, const auto&, const auto&) {
    got.assign(data.begin(), data.end());
    throw 5;
  };
  table.process(processRecord(callback));
  table.process(processRecord(callback));
  ASSERT_EQ(cookies[0], cookies[1]);

  const std::vector<uint8_t> message = {0, 0, 0, 0,    0, 0, 0, 0, 9,   0,   0, 0,
                                        0, 0, 0, 0x80, 2, 0, 0, 0, 'c', 'b', 1};
  std::thread([&] {
    const auto& function = *reinterpret_cast<const AlgoResultCallback*>(static_cast<uintptr_t>(cookies[0]));
    EXPECT_THROW(function(hidl_vec<uint8_t>(message), {}, {}), int);
  }).join();
  EXPECT_EQ(got, message);

  const std::vector<Json> all = events();
  const Json& begin = all[all.size() - 2];
  EXPECT_EQ(begin["op"], "callback");
  EXPECT_EQ(begin["of"], all[all.size() - 4]["n"]);
  EXPECT_NE(begin["tid"], all.front()["tid"]);
  EXPECT_EQ(begin["attached"], nullptr);
  EXPECT_EQ(begin["nativeReq"], "0x8000000000000009");
  EXPECT_EQ(begin["name"], "cb");
  EXPECT_EQ(begin["bytes"],
            "00000000000000000900000000000080020000006362"
            "01");
  EXPECT_EQ(all.back()["thrown"], "int");
}

// The probe does not affect the caller's thread: errno and exceptions pass through.
TEST_F(ProbeTest, LetsErrorsAndExceptionsPass) {
  AlgoInterfaceCallbacks real = realTable();
  real.init = [](const AlgoInitRecord&) {
    errno = EILSEQ;
    return 0;
  };
  real.flush = [](const AlgoFlushRecord&) -> int { throw std::out_of_range("planted"); };
  const AlgoInterfaceCallbacks table = watchedTable(real, recorder());
  table.init({});
  EXPECT_EQ(errno, EILSEQ);
  EXPECT_THROW(table.flush({}), std::out_of_range);
  const Json end = events().back();
  EXPECT_EQ(end["thrown"], "std::out_of_range");
  EXPECT_EQ(end["what"], "planted");
  EXPECT_FALSE(end.contains("result"));
}

TEST_F(ProbeTest, LeavesMissingCallablesAndCallbacksUnchanged) {
  AlgoInterfaceCallbacks real = realTable();
  real.process = nullptr;
  real.metadataOps.setRaw = nullptr;
  const AlgoInterfaceCallbacks table = watchedTable(real, recorder());
  EXPECT_FALSE(table.process);
  EXPECT_EQ(callableNames(table, false), (std::vector<std::string>{"process", "setRaw"}));
  EXPECT_EQ(callableNames(table, true).size(), 15U);

  std::vector<uint64_t> cookies;
  real.process = [&](const AlgoProcessRecord& record) {
    cookies.push_back(record.callbackCookie);
    return 0;
  };
  const AlgoResultCallback nobody;
  AlgoProcessRecord record = processRecord(nobody);
  watchedTable(real, recorder()).process(record);
  record.callbackCookie = 0;
  watchedTable(real, recorder()).process(record);
  EXPECT_EQ(cookies, (std::vector<uint64_t>{reinterpret_cast<uintptr_t>(&nobody), 0}));
}

// Lines of several threads must not be mixed, and each call must have a begin and an end.
TEST_F(ProbeTest, WritesWholeLinesFromManyThreads) {
  constexpr int kThreads = 4;
  constexpr int kCalls = 250;
  std::vector<char> value(3000, 'x');
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (int call = 0; call < kCalls; ++call) {
        mTable.metadataOps.setValue(handle(0xb1), "s", "k", value.data(),
                                    static_cast<unsigned>(value.size()));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::map<int64_t, int> calls;
  for (const Json& event : events()) {
    if (!event.contains("n")) continue;
    ++calls[event["n"].get<int64_t>()];
    EXPECT_EQ(event.value("bytes", "").size(), event["event"] == "begin" ? 6000U : 0U);
  }
  EXPECT_EQ(calls.size(), static_cast<size_t>(kThreads * kCalls));
  for (const auto& [number, lines] : calls) EXPECT_EQ(lines, 2) << number;
}

// The begin event contains the caller's offset in this program. The event before it contains the program's
// name and path.
TEST_F(ProbeTest, TellsWhereACallCameFrom) {
  mTable.flush({});
  const std::vector<Json> all = events();
  ASSERT_EQ(all.size(), 4U);
  EXPECT_EQ(all[1]["event"], "module");
  const std::string name = all[1]["name"];
  EXPECT_EQ(access(all[1]["path"].get<std::string>().c_str(), X_OK), 0) << all[1];
  EXPECT_EQ(all[2]["from"][0].get<std::string>().rfind(name + "+0x", 0), 0U) << all[2];
}

TEST(RealLibrary, SaysWhatItCannotOpen) {
  const std::string planted = test::libraryFolder() + "/../planted/";
  const std::string text = testing::TempDir() + "probe_text.so";
  std::ofstream(text) << std::string(100, 't');
  struct Case {
    std::string path;
    const char* stage;
    const char* error;
  };
  for (const Case& tested : {
           Case{"",                                   "open",  "no other liborlu.vac.interface.so"},
           Case{text,                                 "open",  "invalid ELF header"               },
           Case{planted + "none.so",                  "open",  "No such file"                     },
           Case{planted + "planted_without_entry.so", "entry", "AlgoInterfaceEntry"               },
           Case{planted + "planted_algo.so",          "",      ""                                 }
  }) {
    const RealLibrary library = openRealLibrary(tested.path);
    EXPECT_STREQ(library.stage, tested.stage) << tested.path;
    EXPECT_NE(library.error.find(tested.error), std::string::npos) << library.error;
    EXPECT_EQ(library.entry != nullptr, *tested.stage == '\0') << tested.path;
  }
  std::remove(text.c_str());
}

// The probe opens the library that the loader would open if there were no probe.
TEST(RealLibrary, IsTheNextOfItsName) {
  const std::string lib = test::libraryFolder();
  void* const probe = dlopen((lib + "/../probe/liborlu.vac.interface.so").c_str(), RTLD_NOW);
  ASSERT_NE(probe, nullptr) << dlerror();
  AlgoInterfaceCallbacks table;
  reinterpret_cast<void (*)(AlgoInterfaceCallbacks*)>(dlsym(probe, "AlgoInterfaceEntry"))(&table);
  EXPECT_TRUE(callableNames(table, false).empty());
}

// liborlu.vac.interface.real.so beside the probe takes precedence over the library that the loader would
// find. The library that ORLU_ALGO_LIBRARY names takes precedence over both.
TEST(RealLibrary, IsBesideTheProbe) {
  const std::string build = test::libraryFolder() + "/..";
  std::string folder = testing::TempDir() + "probe_XXXXXX";
  ASSERT_NE(mkdtemp(folder.data()), nullptr);
  const std::string own = folder + "/liborlu.vac.interface.so";
  std::filesystem::copy(build + "/probe/liborlu.vac.interface.so", own);
  std::filesystem::copy(build + "/planted/planted_without_entry.so",
                        folder + "/liborlu.vac.interface.real.so");
  void* const probe = dlopen(own.c_str(), RTLD_NOW);
  ASSERT_NE(probe, nullptr) << dlerror();
  const auto entry = reinterpret_cast<void (*)(AlgoInterfaceCallbacks*)>(dlsym(probe, "AlgoInterfaceEntry"));
  AlgoInterfaceCallbacks table;
  entry(&table);
  EXPECT_TRUE(callableNames(table, true).empty());
  // NOLINTBEGIN(concurrency-mt-unsafe): there is one thread
  setenv("ORLU_ALGO_LIBRARY", (build + "/planted/planted_algo.so").c_str(), 1);
  entry(&table);
  unsetenv("ORLU_ALGO_LIBRARY");
  // NOLINTEND(concurrency-mt-unsafe)
  EXPECT_TRUE(callableNames(table, false).empty());
  std::filesystem::remove_all(folder);
}

TEST(ProbeSetting, HasAPropertyForEachVariable) {
  EXPECT_EQ(propertyOf("ORLU_EVENTS"), "persist.vendor.orlu.events");
  EXPECT_EQ(propertyOf("ORLU_PIXELS_BYTES"), "persist.vendor.orlu.pixels_bytes");
  EXPECT_EQ(propertyOf("ORLU_ALGO_LIBRARY"), "persist.vendor.orlu.algo_library");
}

}  // namespace
}  // namespace orlu::probe
