#include "algo_native_context.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <sstream>
#include <thread>
#include <utility>

#include "algo.h"
#include "case_name.h"
#include "error_lines.h"

namespace orlu {
namespace {

constexpr char kTag[] = "_V_VASJNI-AlgoNativeContext";

const AlgoResultCallback gCallback = [](const auto&...) {};

// A cookie is the address of a callback.
uint64_t callbackCookie() {
  return reinterpret_cast<uintptr_t>(&gCallback);
}

std::string cookieText(uint64_t cookie) {
  return cookie == callbackCookie() ? "of gCallback" : std::to_string(cookie);
}

// Records calls to the algorithm library. Each begins a line; its details are indented. Handles appear as h1,
// h2, ... in order of first use.
class Library {
public:
  explicit Library(const std::set<std::string>& notOffered = {}) {
    mAlgo.script.notOffered = notOffered;
    mAlgo.script.callbacks = 0;
    mAlgo.script.runAlgorithms = false;
    mAlgo.script.wanted.push_back({"orlu.algo.control", "asked", 4});
    mAlgo.script.observer = [this](const probe::WatchedCall& call) { mLines += lineOf(call) + '\n'; };
    mAlgo.use();
  }

  // Returns the lines since the previous call.
  std::string takeLines() { return std::exchange(mLines, {}); }

private:
  std::string name(const void* handle) {
    if (handle == nullptr) return "null";
    return mNames.emplace(handle, "h" + std::to_string(mNames.size() + 1)).first->second;
  }

  std::string lineOf(const probe::WatchedCall& call) {
    std::ostringstream line;
    line << call.operation;
    const auto add = [&line](const auto&... values) { ((line << ' ' << values), ...); };
    if (auto* r = call.createClient) add(r->interfaceVersion, r->reserved[0], r->reserved[1], r->reserved[2]);
    if (auto* r = call.init) add("type", r->type, name(r->client));
    if (auto* r = call.flush) add(name(r->client));
    if (auto* r = call.uninit) add("type", r->type, name(r->client), "mode", r->mode);
    if (auto* r = call.translateParamFile) add(name(r->client), "fd", r->fd, "size", r->size, r->identifier);
    if (auto* r = call.getData) add(r->cmd, "size", r->size, name(r->client), name(r->block));
    if (auto* r = call.process) add(textOf(*r));
    if (auto* r = call.command) add(textOf(*r));
    if (call.client != nullptr) add(name(*call.client));
    if (call.block != nullptr) add(name(*call.block));
    if (auto* v = call.value; v != nullptr && v->section != nullptr) add(v->section, v->key, "size", v->size);
    if (call.operation == "setRaw")
      add(std::string(static_cast<const char*>(call.value->data), call.value->size));
    return line.str();
  }

  std::string textOf(const AlgoProcessRecord& record) {
    std::ostringstream text;
    text << "type " << record.requestType << " nativeReq " << record.nativeReq << " list";
    for (const std::string& algorithm : record.algoList) text << ' ' << algorithm;
    text << ' ' << name(record.client) << " cookie " << cookieText(record.callbackCookie) << " reqId "
         << record.reqId << entriesText(record.metadata);
    text << "\n  in";
    for (const AlgoFrameInfo& frame : record.inputFrames) text << ' ' << frame.width;
    text << " out";
    for (const AlgoFrameInfo& frame : record.outputFrames) text << ' ' << frame.width;
    // Both kinds of blocks must be alive during the call.
    text << " alive " << test::Algo::counts().parameterBlocks << ' ' << test::Algo::counts().cameraBlocks;
    return text.str();
  }

  std::string textOf(const AlgoCommandRecord& record) {
    std::ostringstream text;
    text << name(record.client) << " first " << record.first << " second " << record.second << " data "
         << record.data.size() << " '"
         << std::string(record.data.begin(), std::find(record.data.begin(), record.data.end(), 0)) << "'"
         << entriesText(record.metadata);
    return text.str();
  }

  std::string entriesText(const std::vector<AlgoMetadataEntry>& entries) {
    std::ostringstream text;
    for (const AlgoMetadataEntry& entry : entries) {
      text << "\n  entry kind " << entry.kind << ' ' << name(entry.block) << " size " << entry.size;
    }
    return text.str();
  }

  test::Algo mAlgo;
  std::map<const void*, std::string> mNames;
  std::string mLines;
};

// Frames are identified by their widths.
AlgoFrameInfo frameOf(int width) {
  AlgoFrameInfo frame;
  frame.width = width;
  return frame;
}

struct Operation : test::NamedCase {
  std::function<void(AlgoNativeContext& context, void* block)> ask;
  const char* lines;
};

int32_t gValue = 5;

// clang-format off
#define ASK(...) [](AlgoNativeContext& context, void* block) { static_cast<void>(block); context.__VA_ARGS__; }
const Operation kOperations[] = {
    {"Init",           ASK(init()), "init type 0 h1\n"},
    {"Flush",          ASK(flush()), "flush h1\n"},
    {"Notify",         ASK(notify()), "command h1 first 0 second 0 data 12 'notify:kill'\n"},
    {"Uninit",         ASK(uninit(2)),
     "uninit type 1 h1 mode 2\nuninit type 2 h1 mode 2\nuninit type 3 h1 mode 2\nuninit type 5 h1 mode 2\n"},
    {"Abort",          ASK(abort(0x100000001, 0x200000002, block)),
     "getSize h2\ncommand h1 first 4294967297 second 8589934594 data 0 ''\n  entry kind 0 h2 size 4\n"},
    {"Process",        ASK(process(kRequestStop, {"night", "flip"}, 0xFFFFFFFFFFFFFFFE, {frameOf(1), frameOf(2)},
                                   {frameOf(3)}, block, callbackCookie(), 0x200000009, {'r', 'a', 'w'})),
     "getSize h2\ncreateMetadata\nsetRaw h3 raw\n"
     "process type 9 nativeReq 18446744073709551614 list night flip h1 cookie of gCallback reqId 8589934601\n"
     "  entry kind 0 h2 size 4\n  entry kind 1 h3 size 3\n  in 1 2 out 3 alive 1 1\ndestroyMetadata h3\n"},
    {"ProcessNothing", ASK(process(kRequestPreview, {}, 0, {}, {}, nullptr, 0, 0, {})),
     "createMetadata\nsetRaw h3 \nprocess type 1 nativeReq 0 list h1 cookie 0 reqId 0\n"
     "  entry kind 0 null size 0\n  entry kind 1 h3 size 0\n  in out alive 1 1\ndestroyMetadata h3\n"},
    {"GetData",        ASK(getData("version")),
     "createMetadata\ngetSize h3\ngetData version size 0 h1 h3\n"
     "getValue h3 orlu.algo.feedback query_result size 10240\ndestroyMetadata h3\n"},
    {"Translate",      ASK(translateParamFile(-5, 17, "tuning.bin")), "translateParamFile h1 fd -5 size 17 tuning.bin\n"},
    {"SetValue",       ASK(setValue(block, "section", "key", &gValue, 4)), "setValue h2 section key size 4\n"},
    {"GetValue",       ASK(getValue(block, "section", "key", &gValue, 4)), "getValue h2 section key size 4\n"},
    {"WalkUp",         ASK(paramAlgoUpdateToSystem(block, nullptr)), "paramAlgoUpdateToSystem h2\n"},
    {"WalkDown",       ASK(paramSystemDownloadToAlgo(block, nullptr)), "paramSystemDownloadToAlgo h2\n"},
};
#undef ASK
// clang-format on

class AlgoNativeContextOperationTest : public testing::TestWithParam<Operation> {};

TEST_P(AlgoNativeContextOperationTest, AsksTheLibrary) {
  Library library;
  AlgoNativeContext context;
  context.init();
  void* const block = context.createMetadata();
  EXPECT_EQ(0, context.setValue(block, "orlu.algo.control", "number", &gValue, sizeof gValue));
  library.takeLines();
  GetParam().ask(context, block);
  EXPECT_EQ(GetParam().lines, library.takeLines());
  EXPECT_EQ(1, test::Algo::counts().parameterBlocks);
  EXPECT_EQ(0, test::Algo::counts().cameraBlocks);
  context.destroyMetadata(block);
  EXPECT_EQ("destroyMetadata h2\n", library.takeLines());
}

INSTANTIATE_TEST_SUITE_P(Operations, AlgoNativeContextOperationTest, testing::ValuesIn(kOperations),
                         test::CaseName());

TEST(AlgoNativeContextTest, CreatesAndDestroysAClient) {
  test::LogCapture log;
  Library library;
  { AlgoNativeContext().init(); }
  EXPECT_EQ("createClient 202001 0 0 0\ninit type 0 h1\ndestroyClient h1\n", library.takeLines());
  EXPECT_EQ(1, log.count(ANDROID_LOG_DEBUG, kTag, "create client"));
  EXPECT_TRUE(log.contains("AlgoNativeContext() created client 0x")) << log.text();
  EXPECT_TRUE(log.contains("~AlgoNativeContext() destroy client 0x")) << log.text();
  EXPECT_EQ(0, test::Algo::counts().clients);
}

TEST(AlgoNativeContextTest, ReturnsTheLibrarysData) {
  Library library;
  AlgoNativeContext context;
  const std::vector<uint8_t> version = context.getData("version");
  ASSERT_EQ(10240U, version.size());
  EXPECT_STREQ("orlu algorithm stand-in 1", reinterpret_cast<const char*>(version.data()));
  EXPECT_EQ(std::vector<uint8_t>(10240), context.getData("no such command"));
  EXPECT_EQ(0, context.translateParamFile(-5, 17, "tuning.bin"))
      << "the library's failure must not be returned";

  void* const block = context.createMetadata();
  int32_t read = 0;
  EXPECT_EQ(0, context.setValue(block, "orlu.algo.feedback", "score", &gValue, sizeof gValue));
  EXPECT_EQ(0, context.getValue(block, "orlu.algo.feedback", "score", &read, sizeof read));
  EXPECT_EQ(5, read);
  std::string visited;
  const auto visitor = [&visited](const char* section, const char* key, void*, unsigned size) {
    visited += std::string(section) + ' ' + key + ' ' + std::to_string(size) + ';';
    return 6;
  };
  EXPECT_EQ(6, context.paramAlgoUpdateToSystem(block, visitor));
  EXPECT_EQ(0, context.paramSystemDownloadToAlgo(block, visitor));
  EXPECT_EQ("orlu.algo.feedback score 4;orlu.algo.control asked 4;", visited);
  context.destroyMetadata(block);
}

TEST(AlgoNativeContextTest, NeverPassesANullBlock) {
  Library library;
  AlgoNativeContext context;
  library.takeLines();
  context.destroyMetadata(nullptr);
  EXPECT_EQ(-1, context.setValue(nullptr, "section", "key", &gValue, sizeof gValue));
  EXPECT_EQ(-1, context.getValue(nullptr, "section", "key", &gValue, sizeof gValue));
  EXPECT_EQ(-1, context.paramAlgoUpdateToSystem(nullptr, nullptr));
  EXPECT_EQ(-1, context.paramSystemDownloadToAlgo(nullptr, nullptr));
  EXPECT_EQ("", library.takeLines());
}

// Another thread destroys the client during an operation, as Java may do inside a callback. The operation
// finishes with valid data, and no further call uses the client.
TEST(AlgoNativeContextTest, LeavesADestroyedClientAlone) {
  for (const char* inside : {"init", "uninit", "flush", "command", "process", "getData", "translateParamFile",
                             "createMetadata", "setRaw", "getSize"}) {
    SCOPED_TRACE(inside);
    test::Algo algo;
    algo.script.callbacks = 0;
    AlgoNativeContext* context = nullptr;
    int later = 0;
    algo.script.observer = [&](const probe::WatchedCall& call) {
      if (call.operation == inside) std::thread([&context] { context->destroyClient(); }).join();
      // Counts calls with a destroyed client, including the call during which it is destroyed.
      for (const char* name :
           {"init", "uninit", "flush", "command", "process", "getData", "translateParamFile"}) {
        if (call.operation == name && context->isClientDestroyed()) ++later;
      }
    };
    algo.use();
    AlgoNativeContext used;
    context = &used;
    used.init();
    used.flush();
    used.translateParamFile(1, 1, "");
    used.getData("version");
    used.abort(0, 0, nullptr);
    used.process(kRequestCapture, {}, 1, {}, {}, nullptr, 0, 1, {'r', 'a', 'w'});
    used.uninit(0);
    EXPECT_GE(1, later);
    EXPECT_EQ(0, test::Algo::counts().clients);
    EXPECT_EQ(0, test::Algo::counts().cameraBlocks);
    EXPECT_EQ(0, test::Algo::counts().parameterBlocks);
  }
}

TEST(AlgoNativeContextTest, LendsVisitorsToTheThreadAndTheTimeOfTheCall) {
  for (const auto use : {standin::VisitorUse::kOtherThread, standin::VisitorUse::kLater}) {
    test::Algo algo;
    std::vector<int> statuses;
    algo.script.visitorUse = use;
    algo.script.wanted = {
        {"orlu.algo.control", "asked", 4}
    };
    algo.script.visited = [&statuses](int status) { statuses.push_back(status); };
    algo.use();
    AlgoNativeContext context;
    void* const block = context.createMetadata();
    EXPECT_EQ(0, context.setValue(block, kFeedback, "score", &gValue, sizeof gValue));
    int visits = 0;
    const auto visitor = [&visits](auto...) { return ++visits; };
    context.paramAlgoUpdateToSystem(block, visitor);
    context.paramSystemDownloadToAlgo(block, visitor);
    context.destroyMetadata(block);
    EXPECT_EQ((std::vector<int>{-1, -1}), statuses);
    EXPECT_EQ(0, visits);
  }
}

// {missing callable, errors logged by all operations}. Callables that free memory are not tested, because
// their objects would leak.
// clang-format off
const std::pair<const char*, const char*> kNotOffered[] = {
    {"createClient",              "create client failed\n"},
    {"init",                      "init failed\n"},
    {"process",                   "process failed\nprocess failed\n"},
    {"uninit",                    "uninit failed\n"},
    {"getData",                   "get data failed\n"},
    {"flush",                     "flush failed\n"},
    {"command",                   "notify failed\nabort failed\n"},
    {"translateParamFile",        "translateParamFile failed\n"},
    {"getSize",                   "process failed\nprocess failed\n"},
    {"createMetadata",            "createMetadata failed\ncreateMetadata failed\ncreateMetadata failed\ncreateMetadata failed\n"},
};
// clang-format on

TEST(AlgoNativeContextTest, LogsAndSkipsAnOperationThatIsNotOffered) {
  for (const auto& [missing, errors] : kNotOffered) {
    SCOPED_TRACE(missing);
    test::LogCapture log;
    Library library({missing});
    {
      AlgoNativeContext context;
      void* const block = context.createMetadata();
      for (const Operation& operation : kOperations) operation.ask(context, block);
      context.destroyMetadata(block);
    }
    EXPECT_EQ(errors, test::errorText(log, kTag));
    // Only calls that need the missing callable are skipped.
    const std::string lines = '\n' + library.takeLines();
    for (const std::string name : {missing, "init", "flush", "command", "uninit"}) {
      EXPECT_EQ(name != missing, lines.find('\n' + name) != std::string::npos) << name << lines;
    }
  }
}

}  // namespace
}  // namespace orlu
