#include "algo_native_context.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>
#include <utility>

#include "algo.h"
#include "algo_native_provider.h"
#include "case_name.h"
#include "frame_text.h"
#include "log_text.h"

namespace orlu {
namespace {

constexpr char kTag[] = "_V_VASJNI-AlgoNativeContext";

// What the library is asked for, one line for each operation. Handles show as h1, h2, ... in the order of
// their first use.
class Library {
public:
  explicit Library(const std::set<std::string>& notOffered = {}) {
    mAlgo.script.notOffered = notOffered;
    mAlgo.script.callbacks = 0;
    mAlgo.script.runAlgorithms = false;
    mAlgo.script.wanted = {
        {"orlu.algo.control", "asked", 4}
    };
    mAlgo.script.observer = [this](const standin::AlgoCall& call) { mLines += lineOf(call) + '\n'; };
    mAlgo.use();
  }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  // Destroys what a context without destroyMetadata or destroyClient has left behind.
  ~Library() {
    mAlgo.script = {};
    mAlgo.use();
    AlgoInterfaceCallbacks table;
    AlgoNativeProvider::getInstance()->initAlgoInterface(&table);
    for (const auto& entry : mNames) {
      table.metadataOps.destroyMetadata(const_cast<void*>(entry.first));
      table.destroyClient(const_cast<void*>(entry.first));
    }
  }

  // The lines since the last time.
  std::string takeLines() { return std::exchange(mLines, {}); }

private:
  std::string name(const void* handle) {
    if (handle == nullptr) return "null";
    return mNames.emplace(handle, "h" + std::to_string(mNames.size() + 1)).first->second;
  }

  std::string lineOf(const standin::AlgoCall& call) {
    std::ostringstream line;
    line << call.operation;
    if (call.createClient != nullptr) {
      line << ' ' << call.createClient->interfaceVersion;
      for (int32_t word : call.createClient->reserved) line << ' ' << word;
    }
    if (call.init != nullptr) line << " type " << call.init->type << ' ' << name(call.init->client);
    if (call.flush != nullptr) line << ' ' << name(call.flush->client);
    if (call.client != nullptr) line << ' ' << name(call.client);
    if (call.uninit != nullptr) {
      line << " type " << call.uninit->type << ' ' << name(call.uninit->client) << " mode "
           << call.uninit->mode;
    }
    if (call.process != nullptr) describe(line, *call.process);
    if (call.command != nullptr) describe(line, *call.command);
    if (call.getData != nullptr) {
      line << " '" << call.getData->cmd << "' " << name(call.getData->block) << " size " << call.getData->size
           << ' ' << name(call.getData->client);
    } else if (call.block != nullptr) {
      line << ' ' << name(call.block);
    }
    if (call.translateParamFile != nullptr) {
      line << ' ' << name(call.translateParamFile->client) << " fd " << call.translateParamFile->fd
           << " size " << call.translateParamFile->size << " '" << call.translateParamFile->identifier << "'";
    }
    if (call.section != nullptr) line << ' ' << call.section << ' ' << call.key << " size " << call.size;
    if (call.operation == "setRaw") {
      line << " '" << std::string(static_cast<const char*>(call.data), call.size) << "'";
    }
    return line.str();
  }

  void describe(std::ostringstream& line, const AlgoProcessRecord& record) {
    line << " type " << record.requestType << " nativeReq " << record.nativeReq << " list";
    for (const std::string& algorithm : record.algoList) line << ' ' << algorithm;
    line << "\n  " << name(record.client) << " cookie " << record.callbackCookie << " reqId " << record.reqId;
    describeReserved(line, record.reserved, sizeof record.reserved);
    describe(line, record.metadata);
    for (const AlgoFrameInfo& frame : record.inputFrames) line << "\n  in " << test::frameText(frame);
    for (const AlgoFrameInfo& frame : record.outputFrames) line << "\n  out " << test::frameText(frame);
    // Both blocks are alive while the library reads them.
    line << "\n  alive " << test::Algo::counts().parameterBlocks << ' ' << test::Algo::counts().cameraBlocks;
  }

  void describe(std::ostringstream& line, const AlgoCommandRecord& record) {
    line << ' ' << name(record.client) << " first " << record.first << " second " << record.second
         << " data (" << record.data.size() << ") '"
         << std::string(record.data.begin(), std::find(record.data.begin(), record.data.end(), 0)) << "'";
    describeReserved(line, record.reserved, sizeof record.reserved);
    describe(line, record.metadata);
  }

  void describe(std::ostringstream& line, const std::vector<AlgoMetadataEntry>& entries) {
    for (const AlgoMetadataEntry& entry : entries) {
      line << "\n  entry kind " << entry.kind << ' ' << name(entry.block) << " size " << entry.size;
      describeReserved(line, entry.reserved, sizeof entry.reserved);
    }
  }

  static void describeReserved(std::ostringstream& line, const uint8_t* bytes, size_t size) {
    if (std::any_of(bytes, bytes + size, [](uint8_t byte) { return byte != 0; })) line << " (not zero)";
  }

  test::Algo mAlgo;
  std::map<const void*, std::string> mNames;
  std::string mLines;
};

// Frames that tell inputs, outputs and their order apart.
AlgoFrameInfo frameOf(int number) {
  AlgoFrameInfo frame;
  frame.format = number;
  frame.width = number + 100;
  frame.height = number + 200;
  frame.size = number + 300;
  frame.stride[3] = number + 400;
  frame.scanline[0] = number + 500;
  frame.fdSize[2] = number + 600;
  frame.planeCount = 2;
  frame.planeSize[1] = number + 700;
  return frame;
}

TEST(AlgoNativeContextTest, GoesThroughTheLifeOfAClient) {
  test::LogCapture log;
  Library library;
  {
    AlgoNativeContext context;
    context.init();
    context.flush();
    context.notify();
    context.uninit(2);
  }
  EXPECT_EQ(
      "createClient 202001 0 0 0\n"
      "init type 0 h1\n"
      "flush h1\n"
      "command h1 first 0 second 0 data (12) 'notify:kill'\n"
      "uninit type 1 h1 mode 2\n"
      "uninit type 2 h1 mode 2\n"
      "uninit type 3 h1 mode 2\n"
      "uninit type 5 h1 mode 2\n"
      "destroyClient h1\n",
      library.takeLines());
  EXPECT_EQ("", test::errorText(log, kTag));
  EXPECT_EQ(1, log.count(ANDROID_LOG_DEBUG, kTag, "create client"));
  EXPECT_TRUE(log.contains("AlgoNativeContext() created client 0x")) << log.text();
  EXPECT_TRUE(log.contains("AlgoNativeContext() destroy client 0x")) << log.text();
  EXPECT_EQ(0, test::Algo::counts().clients);
}

TEST(AlgoNativeContextTest, SubmitsARequest) {
  Library library;
  AlgoNativeContext context;
  void* const block = context.createMetadata();
  int32_t value = 5;
  EXPECT_EQ(0, context.setValue(block, "orlu.algo.control", "number", &value, sizeof value));
  library.takeLines();

  context.process(kRequestStop, {"night", "flip"}, 0xFFFFFFFFFFFFFFFE, {frameOf(1), frameOf(2)}, {frameOf(3)},
                  block, 0x100000007, 0x200000009, {'r', 'a', 'w'});
  EXPECT_EQ(
      "getSize h1\n"
      "createMetadata\n"
      "setRaw h2 'raw'\n"
      "process type 9 nativeReq 18446744073709551614 list night flip\n"
      "  h3 cookie 4294967303 reqId 8589934601\n"
      "  entry kind 0 h1 size 4\n"
      "  entry kind 1 h2 size 3\n"
      "  in 101x201 1 2 | 0 0 0 401 | 0 701 0 0 | 301 | 501 0 0 0 | 0 0 0 0 0 | 0 0 601 0\n"
      "  in 102x202 2 2 | 0 0 0 402 | 0 702 0 0 | 302 | 502 0 0 0 | 0 0 0 0 0 | 0 0 602 0\n"
      "  out 103x203 3 2 | 0 0 0 403 | 0 703 0 0 | 303 | 503 0 0 0 | 0 0 0 0 0 | 0 0 603 0\n"
      "  alive 1 1\n"
      "destroyMetadata h2\n",
      library.takeLines());
  EXPECT_EQ(1, test::Algo::counts().parameterBlocks);
  EXPECT_EQ(0, test::Algo::counts().cameraBlocks);

  int32_t read = 0;
  EXPECT_EQ(0, context.getValue(block, "orlu.algo.control", "number", &read, sizeof read));
  EXPECT_EQ(5, read);
  context.destroyMetadata(block);
  EXPECT_EQ(0, test::Algo::counts().parameterBlocks);
}

TEST(AlgoNativeContextTest, SubmitsARequestWithoutMetadata) {
  Library library;
  AlgoNativeContext context;
  library.takeLines();
  context.process(kRequestPreview, {}, 0, {}, {}, nullptr, 0, 0, {});
  EXPECT_EQ(
      "createMetadata\n"
      "setRaw h1 ''\n"
      "process type 1 nativeReq 0 list\n"
      "  h2 cookie 0 reqId 0\n"
      "  entry kind 0 null size 0\n"
      "  entry kind 1 h1 size 0\n"
      "  alive 0 1\n"
      "destroyMetadata h1\n",
      library.takeLines());
}

TEST(AlgoNativeContextTest, AbortsWhatAParameterBlockTells) {
  Library library;
  AlgoNativeContext context;
  context.init();
  void* const block = context.createMetadata();
  int64_t flag = 3;
  context.setValue(block, "orlu.algo.control", "abort_val", &flag, sizeof flag);
  library.takeLines();
  context.abort(0x100000001, 0x200000002, block);
  EXPECT_EQ(
      "getSize h2\n"
      "command h1 first 4294967297 second 8589934594 data (0) ''\n"
      "  entry kind 0 h2 size 8\n",
      library.takeLines());
  EXPECT_EQ(1, test::Algo::counts().parameterBlocks);
  context.destroyMetadata(block);
}

TEST(AlgoNativeContextTest, AnswersDataOfOneSize) {
  Library library;
  AlgoNativeContext context;
  context.init();
  library.takeLines();
  const std::vector<uint8_t> version = context.getData("version");
  ASSERT_EQ(10240U, version.size());
  EXPECT_STREQ("orlu algorithm stand-in 1", reinterpret_cast<const char*>(version.data()));
  EXPECT_EQ(
      "createMetadata\n"
      "getSize h2\n"
      "getData 'version' h2 size 0 h1\n"
      "getValue h2 orlu.algo.feedback query_result size 10240\n"
      "destroyMetadata h2\n",
      library.takeLines());

  EXPECT_EQ(std::vector<uint8_t>(10240), context.getData("no such command"));
  EXPECT_EQ(0, test::Algo::counts().parameterBlocks);
}

TEST(AlgoNativeContextTest, HandsOverParameterFiles) {
  Library library;
  AlgoNativeContext context;
  context.init();
  library.takeLines();
  // The library's own failure is not told.
  EXPECT_EQ(0, context.translateParamFile(-5, 17, "tuning.bin"));
  EXPECT_EQ("translateParamFile h1 fd -5 size 17 'tuning.bin'\n", library.takeLines());
}

TEST(AlgoNativeContextTest, WalksTheValuesOfABlock) {
  Library library;
  AlgoNativeContext context;
  void* const block = context.createMetadata();
  int32_t value = 42;
  context.setValue(block, "orlu.algo.feedback", "score", &value, sizeof value);
  std::string visited;
  const auto visitor = [&visited](const char* section, const char* key, void* data, unsigned size) {
    visited += std::string(section) + ' ' + key + ' ' + std::to_string(size) + ';';
    if (std::string(key) == "asked") std::fill_n(static_cast<uint8_t*>(data), size, uint8_t{1});
    return 6;
  };
  library.takeLines();
  EXPECT_EQ(6, context.paramAlgoUpdateToSystem(block, visitor));
  EXPECT_EQ("orlu.algo.feedback score 4;", visited);
  EXPECT_EQ(0, context.paramSystemDownloadToAlgo(block, visitor));
  EXPECT_EQ("orlu.algo.feedback score 4;orlu.algo.control asked 4;", visited);
  EXPECT_EQ("paramAlgoUpdateToSystem h1\nparamSystemDownloadToAlgo h1\n", library.takeLines());
  context.destroyMetadata(block);
}

TEST(AlgoNativeContextTest, NeverAsksForANullBlock) {
  Library library;
  AlgoNativeContext context;
  library.takeLines();
  int32_t value = 0;
  context.destroyMetadata(nullptr);
  EXPECT_EQ(-1, context.setValue(nullptr, "section", "key", &value, sizeof value));
  EXPECT_EQ(-1, context.getValue(nullptr, "section", "key", &value, sizeof value));
  EXPECT_EQ(-1, context.paramAlgoUpdateToSystem(nullptr, nullptr));
  EXPECT_EQ(-1, context.paramSystemDownloadToAlgo(nullptr, nullptr));
  EXPECT_EQ("", library.takeLines());
}

// Everything that a context can be asked for.
void askForEverything(AlgoNativeContext& context) {
  int32_t value = 1;
  context.init();
  void* const block = context.createMetadata();
  context.setValue(block, "section", "key", &value, sizeof value);
  context.getValue(block, "section", "key", &value, sizeof value);
  context.process(kRequestCapture, {}, 0, {}, {}, block, 0, 0, {1});
  context.paramAlgoUpdateToSystem(block, [](const char*, const char*, void*, unsigned) { return 0; });
  context.paramSystemDownloadToAlgo(block, [](const char*, const char*, void*, unsigned) { return 0; });
  context.abort(0, 0, block);
  context.destroyMetadata(block);
  context.notify();
  context.getData("version");
  EXPECT_EQ(0, context.translateParamFile(-1, 0, ""));
  context.flush();
  context.uninit(0);
}

TEST(AlgoNativeContextTest, LivesWithoutAClient) {
  test::LogCapture log;
  Library library({"createClient"});
  {
    AlgoNativeContext context;
    EXPECT_EQ("create client failed\n", test::errorText(log, kTag));
    EXPECT_EQ(1, log.count(ANDROID_LOG_DEBUG, kTag, "created client (nil)"));
    context.init();
    context.uninit(1);
  }
  EXPECT_EQ(
      "init type 0 null\n"
      "uninit type 1 null mode 1\n"
      "uninit type 2 null mode 1\n"
      "uninit type 3 null mode 1\n"
      "uninit type 5 null mode 1\n"
      "destroyClient\n",
      library.takeLines());
}

struct NotOfferedCase {
  const char* name;  // of the callable
  const char* errors;
};

class AlgoNativeContextNotOfferedTest : public testing::TestWithParam<NotOfferedCase> {};

TEST_P(AlgoNativeContextNotOfferedTest, LogsAndSkipsTheOperation) {
  test::LogCapture log;
  Library library({GetParam().name});
  {
    AlgoNativeContext context;
    log.clear();
    library.takeLines();
    askForEverything(context);
  }
  EXPECT_EQ(GetParam().errors, test::errorText(log, kTag));
  // What needs the missing one is skipped, the rest is not.
  const std::string lines = '\n' + library.takeLines();
  const auto isAsked = [&lines](const std::string& name) {
    return lines.find('\n' + name) != std::string::npos;
  };
  EXPECT_FALSE(isAsked(GetParam().name)) << lines;
  for (const std::string other : {"init", "flush", "command", "uninit"}) {
    EXPECT_EQ(other != GetParam().name, isAsked(other)) << other << lines;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, AlgoNativeContextNotOfferedTest,
    testing::Values(
        NotOfferedCase{"init", "init failed\n"}, NotOfferedCase{"process", "process failed\n"},
        NotOfferedCase{"uninit", "uninit failed\n"}, NotOfferedCase{"getData", "get data failed\n"},
        NotOfferedCase{"flush", "flush failed\n"}, NotOfferedCase{"command", "abort failed\nnotify failed\n"},
        NotOfferedCase{"translateParamFile", "translateParamFile failed\n"},
        NotOfferedCase{"destroyClient", "destroy client failed\n"},
        NotOfferedCase{"getSize", "process failed\n"}, NotOfferedCase{"setValue", ""},
        NotOfferedCase{"createMetadata",
                       "createMetadata failed\ncreateMetadata failed\ncreateMetadata failed\n"},
        NotOfferedCase{"destroyMetadata",
                       "destroyMetadata failed\ndestroyMetadata failed\ndestroyMetadata failed\n"},
        NotOfferedCase{"getValue", ""}, NotOfferedCase{"setRaw", ""},
        NotOfferedCase{"paramAlgoUpdateToSystem", ""}, NotOfferedCase{"paramSystemDownloadToAlgo", ""}),
    test::CaseName());

}  // namespace
}  // namespace orlu
