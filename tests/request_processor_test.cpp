#include "request_processor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <set>
#include <tuple>

#include "algo.h"
#include "callback_recorder.h"
#include "case_name.h"
#include "descriptors.h"
#include "error_lines.h"
#include "fixtures.h"
#include "log_capture.h"

namespace orlu {
namespace {

using test::env;
using test::javaInt;
using test::javaLong;
using test::javaString;
using test::putKey;

constexpr char kTag[] = "_V_VASJNI-RequestProcessor";
constexpr char kFlag[] = "orlu.control.frameFlag";

class RequestProcessorTest : public testing::Test {
protected:
  RequestProcessorTest() {
    mAlgo.script.observer = [this](const standin::AlgoCall& call) { note(call); };
    mAlgo.use();
  }
  ~RequestProcessorTest() override {
    if (mInst != 0) RequestProcessor::destroy(env(), mInst);
    const standin::AlgoCounts counts = test::Algo::counts();
    EXPECT_EQ(0, counts.clients);
    EXPECT_EQ(0, counts.parameterBlocks);
    EXPECT_EQ(0, counts.cameraBlocks);
  }

  void create() {
    mInst = RequestProcessor::create(env(), nullptr);
    mTrace.clear();
    mLog.clear();
  }
  void destroy() {
    EXPECT_EQ(0, RequestProcessor::destroy(env(), mInst));
    mInst = 0;
  }
  AlgoNativeClient& client() const {
    return *reinterpret_cast<AlgoNativeClient*>(static_cast<uintptr_t>(mInst));
  }
  // What was logged: "message", a debug line's with "?" before it.
  test::Lines lines() const {
    test::Lines lines;
    for (const std::string& line : test::errorLines(mLog)) {
      const size_t found = line.find(std::string(kTag) + ": * ");
      if (found < 2) lines.push_back(line.substr(0, found) + line.substr(found + sizeof kTag - 1 + 4));
    }
    return lines;
  }

  const test::LocalFrame mFrame;
  test::LogCapture mLog;
  test::Algo mAlgo;
  const jobject mParam = test::newComposition();
  int64_t mInst = 0;
  std::string mTrace;        // the operations, each with what it is about
  std::set<void*> mClients;  // that they were asked for
  std::vector<uint8_t> mAbortKey;
  int mFile = -1;

private:
  void note(const standin::AlgoCall& call) {
    if (call.operation == "getValue" || call.operation == "getSize") return;
    mTrace += (mTrace.empty() ? "" : ", ") + call.operation;
    if (call.uninit != nullptr) {
      mTrace += ' ' + std::to_string(call.uninit->type) + '/' + std::to_string(call.uninit->mode);
      mClients.insert(call.uninit->client);
    }
    if (call.operation == "setValue") noteValue(call);
    if (call.command != nullptr) noteCommand(*call.command);
    if (call.getData != nullptr) {
      mTrace += ' ' + std::to_string(call.getData->cmd.size());
      mClients.insert(call.getData->client);
    }
    if (call.translateParamFile != nullptr) {
      mFile = call.translateParamFile->fd;
      mTrace +=
          ' ' + std::to_string(call.translateParamFile->size) + ' ' + call.translateParamFile->identifier;
      mClients.insert(call.translateParamFile->client);
    }
  }
  void noteValue(const standin::AlgoCall& call) {
    mTrace += std::string(" ") + call.section + '/' + call.key + ' ' + std::to_string(call.size);
    const auto* const bytes = static_cast<const uint8_t*>(call.data);
    if (std::string(call.key) == "abort_key") mAbortKey.assign(bytes, bytes + call.size);
    if (std::string(call.key) != "abort_val" || call.size != 8) return;
    int64_t value = 0;
    std::memcpy(&value, bytes, 8);
    mTrace += '=' + std::to_string(value);
  }
  void noteCommand(const AlgoCommandRecord& command) {
    mTrace += ' ' + std::to_string(command.first) + ' ' + std::to_string(command.second) + ' ' +
              std::to_string(command.data.size()) + ' ' + std::to_string(command.metadata.size());
    mClients.insert(command.client);
  }
};

TEST_F(RequestProcessorTest, LifeOfAClient) {
  putKey(mParam, "clientId", javaLong(4294967299));
  putKey(mParam, "algoContextIndex", javaInt(7));
  putKey(mParam, "imageFormat", javaInt(35));
  mInst = RequestProcessor::create(env(), mParam);
  EXPECT_EQ(0, RequestProcessor::init(env(), mInst, nullptr));
  EXPECT_EQ(0, RequestProcessor::flush(env(), mInst, nullptr, nullptr));
  EXPECT_EQ(0, RequestProcessor::release(env(), mInst, mParam));
  char p[32];
  std::snprintf(p, sizeof p, "%p", static_cast<void*>(&client()));
  const std::string inst = p;
  destroy();

  EXPECT_EQ(
      "createClient, init, flush, uninit 1/1, uninit 2/1, uninit 3/1, uninit 5/1, "
      "flush, uninit 1/0, uninit 2/0, uninit 3/0, uninit 5/0, destroyClient",
      mTrace);
  EXPECT_EQ((test::Lines{"?create E", "?create X, inst " + inst + ", clientId 4294967299, index 7",
                         "?init E, " + inst, "?init X", "?flush E, " + inst, "?flush X",
                         "?release E, " + inst, "?release format: 35", "?release X", "?destroy E, " + inst,
                         "?destroy flush, " + inst, "?destroy uninit, " + inst, "?destroy X"}),
            lines());
}

TEST_F(RequestProcessorTest, AClientIsNobodysByDefault) {
  mInst = RequestProcessor::create(env(), mParam);
  client().onPostProcessDataCommonShot(UINT64_MAX);
  EXPECT_TRUE(mLog.contains("E, clientId = -1, algoContextIndex = -1, nativeReq 18446744073709551615"));
}

TEST_F(RequestProcessorTest, HandleZeroIsRejected) {
  using P = RequestProcessor;
  putKey(mParam, "imageFormat", javaInt(37));
  for (const int answer : {P::destroy(env(), 0), P::init(env(), 0, mParam), P::release(env(), 0, mParam),
                           P::flush(env(), 0, mParam, mParam), P::abortRequest(env(), 0, mParam, mParam),
                           P::translateParamFiles(env(), 0, nullptr, mParam)}) {
    EXPECT_EQ(-1, answer);
  }
  EXPECT_EQ("", mTrace);
  EXPECT_EQ((test::Lines{"destroy native client failed, client is null!", "init failed, client is null!",
                         "?release E, (nil)", "?release format: 37", "release failed, client is null!",
                         "flush failed, client is null!", "?abort E, (nil)", "abort failed, client is null!",
                         "?get data failed, input is null, (nil)"}),
            lines());
}

TEST_F(RequestProcessorTest, ReleaseModeFollowsFromTheFormat) {
  create();
  const std::tuple<const char*, jobject, const char*> kModes[] = {
      {"RAW_SENSOR",  javaInt(32),  "2"},
      {"RAW10",       javaInt(37),  "2"},
      {"YUV_420_888", javaInt(35),  "1"},
      {"unknown",     javaInt(0),   "1"},
      {"wrong type",  javaLong(32), "0"},
      {"absent",      nullptr,      "0"},
  };
  for (const auto& [name, format, mode] : kModes) {
    mTrace.clear();
    putKey(mParam, "imageFormat", format);
    EXPECT_EQ(0, RequestProcessor::release(env(), mInst, mParam));
    std::string expected;
    for (const char* type : {"1", "2", "3", "5"}) {
      expected += std::string(expected.empty() ? "" : ", ") + "uninit " + type + '/' + mode;
    }
    EXPECT_EQ(expected, mTrace) << name;
  }
}

struct AbortCase {
  const char* name;
  const char* key;  // null for none
  bool hasValue;
  bool isSent;
};

class RequestProcessorAbortTest : public RequestProcessorTest,
                                  public testing::WithParamInterface<AbortCase> {};

TEST_P(RequestProcessorAbortTest, SendsWhatIsNamed) {
  const AbortCase& c = GetParam();
  create();
  if (c.key != nullptr) putKey(mParam, "AbortKey", javaString(c.key));
  if (c.hasValue) putKey(mParam, "AbortVal", javaLong(4294967301));
  EXPECT_EQ(0, RequestProcessor::abortRequest(env(), mInst, nullptr, mParam));

  std::string expected = "createMetadata";
  if (c.key != nullptr) expected += ", setValue orlu.algo.control/abort_key 128";
  if (c.isSent) expected += ", setValue orlu.algo.control/abort_val 8=4294967301, command 0 0 0 1";
  EXPECT_EQ(expected + ", destroyMetadata", mTrace);
  const std::string key = c.key == nullptr ? "" : c.key;
  EXPECT_EQ("?abort key " + key + " no error " + (c.isSent ? "1" : "0"), lines()[1]);
  mAbortKey.resize(128);
  EXPECT_EQ(key + std::string(128 - key.size(), '\0'), std::string(mAbortKey.begin(), mAbortKey.end()));
}

INSTANTIATE_TEST_SUITE_P(Cases, RequestProcessorAbortTest,
                         testing::Values(AbortCase{"Named", kFlag, true, true},
                                         AbortCase{"LongerKey", "orlu.control.frameFlag2", true, true},
                                         AbortCase{"ShorterKey", "orlu.control.frameFla", true, false},
                                         AbortCase{"OtherKey", "orlu.control.frameFlog", true, false},
                                         AbortCase{"NoKey", nullptr, true, false},
                                         AbortCase{"NoValue", kFlag, false, false}),
                         test::CaseName());

TEST_F(RequestProcessorTest, AbortCutsAKeyThatFillsItsBuffer) {
  create();
  putKey(mParam, "AbortKey", javaString(kFlag + std::string(200, 'x')));
  putKey(mParam, "AbortVal", javaLong(1));
  EXPECT_EQ(0, RequestProcessor::abortRequest(env(), mInst, nullptr, mParam));
  const std::string cut = kFlag + std::string(106, 'x');
  EXPECT_EQ(cut, std::string(mAbortKey.begin(), mAbortKey.end()));
  EXPECT_EQ("?abort key " + cut + " no error 1", lines()[1]);
}

TEST_F(RequestProcessorTest, GetDataAnswersWhatTheLibraryAnswers) {
  create();
  putKey(mParam, "cmd", javaString("version"));
  EXPECT_EQ("orlu algorithm stand-in 1", test::stringOf(RequestProcessor::getData(env(), mInst, mParam)));
  EXPECT_EQ((test::Lines{"?cmd version", "?get data ret size 10240, orlu algorithm stand-in 1"}), lines());
  EXPECT_EQ("createMetadata, getData 7, destroyMetadata", mTrace);
  putKey(mParam, "cmd", javaString("what it does not know"));
  EXPECT_EQ("", test::stringOf(RequestProcessor::getData(env(), mInst, mParam)));
}

TEST_F(RequestProcessorTest, GetDataCutsItsCommand) {
  create();
  const std::pair<size_t, size_t> kLengths[] = {
      {0,    0   },
      {1023, 1023},
      {1024, 1024},
      {2000, 1024}
  };
  for (const auto& [length, handedOver] : kLengths) {
    mTrace.clear();
    if (length != 0) putKey(mParam, "cmd", javaString(std::string(length, 'c')));
    EXPECT_EQ("", test::stringOf(RequestProcessor::getData(env(), mInst, mParam)));
    EXPECT_EQ("createMetadata, getData " + std::to_string(handedOver) + ", destroyMetadata", mTrace);
  }
}

TEST_F(RequestProcessorTest, GetDataIsNullWithoutInputOrWithoutTheOperation) {
  mAlgo.script.notOffered = {"getData"};
  mAlgo.use();
  create();
  EXPECT_EQ(nullptr, RequestProcessor::getData(env(), 0, mParam));
  EXPECT_EQ(nullptr, RequestProcessor::getData(env(), mInst, nullptr));
  char expected[2][96];
  std::snprintf(expected[0], 96, "get data failed, input is null (nil) %p", static_cast<void*>(mParam));
  std::snprintf(expected[1], 96, "get data failed, input is null %p (nil)", static_cast<void*>(&client()));
  EXPECT_EQ((test::Lines{expected[0], expected[1]}), lines());
  EXPECT_EQ(nullptr, RequestProcessor::getData(env(), mInst, mParam));
  EXPECT_TRUE(mLog.contains("get data ret size 0, "));
  EXPECT_EQ("", mTrace);
}

TEST_F(RequestProcessorTest, HandsAParameterFileOver) {
  create();
  const jobject memory = test::newSharedMemory(4096);
  putKey(mParam, "identifier", javaString("tuning"));
  const auto before = test::openDescriptors();
  EXPECT_EQ(0, RequestProcessor::translateParamFiles(env(), mInst, memory, mParam));
  EXPECT_EQ(before, test::openDescriptors());
  EXPECT_EQ("translateParamFile 4096 tuning", mTrace);
  EXPECT_EQ((test::Lines{
                "?translateParamFiles filefd " + std::to_string(mFile) + ", bufferSize 4096 algoFlag tuning",
                "?translateParamFiles end"}),
            lines());
  // The library could read it: the checksum is that of 4096 zeros.
  putKey(mParam, "cmd", javaString("paramfile tuning"));
  EXPECT_EQ("4096 c71c0011", test::stringOf(RequestProcessor::getData(env(), mInst, mParam)));
  EXPECT_EQ(1U, mClients.size());
  EXPECT_EQ(0U, mClients.count(nullptr));
}

TEST_F(RequestProcessorTest, HandsOverWhatIsNoFile) {
  create();
  putKey(mParam, "identifier", javaString(std::string(200, 'i')));
  EXPECT_EQ(0, RequestProcessor::translateParamFiles(env(), mInst, nullptr, mParam));
  EXPECT_EQ("translateParamFile 0 " + std::string(128, 'i'), mTrace);
  EXPECT_LT(mFile, 0);
}

TEST_F(RequestProcessorTest, DescriptorZeroStaysOpen) {
  create();
  const jobject memory = test::newSharedMemory(4096);
  const int standardInput = dup(STDIN_FILENO);
  close(STDIN_FILENO);
  EXPECT_EQ(0, RequestProcessor::translateParamFiles(env(), mInst, memory, mParam));
  EXPECT_EQ(0, mFile);
  EXPECT_NE(-1, fcntl(STDIN_FILENO, F_GETFD));
  close(STDIN_FILENO);
  if (standardInput < 0) return;
  dup2(standardInput, STDIN_FILENO);
  close(standardInput);
}

// The exports of the product, through the Java class that declares them.
class ServiceTest : public RequestProcessorTest {
protected:
  template <typename... Arguments>
  int callInt(const char* name, const char* signature, Arguments... arguments) {
    const int answer = env()->CallIntMethod(mService, method(name, signature), arguments...);
    test::expectNoException(name);
    return answer;
  }
  int64_t createClient() {
    const jlong inst =
        env()->CallLongMethod(mService, method("createNativeClient", "(Ljava/lang/Object;)J"), mParam);
    test::expectNoException("createNativeClient");
    return inst;
  }
  std::string getData(jlong inst) {
    jobject text = env()->CallObjectMethod(
        mService, method("getData", "(JLjava/lang/Object;)Ljava/lang/String;"), inst, mParam);
    test::expectNoException("getData");
    return test::stringOf(text);
  }

private:
  jmethodID method(const char* name, const char* signature) {
    jmethodID found = env()->GetMethodID(env()->GetObjectClass(mService), name, signature);
    test::expectNoException(name);
    return found;
  }

  const jobject mService = test::newObject("com/orlu/orlu3rdalgoservice/Orlu3rdAlgoService", "()V");
};

constexpr char kOneObject[] = "(JLjava/lang/Object;)I";
constexpr char kTwoObjects[] = "(JLjava/lang/Object;Ljava/lang/Object;)I";
constexpr char kFourObjects[] =
    "(JLjava/lang/Object;Ljava/lang/Object;Ljava/lang/Object;Ljava/lang/Object;)I";
constexpr jobject kNothing = nullptr;

TEST_F(ServiceTest, EveryNativeReachesItsMember) {
  for (const auto& [key, value] : {
           std::pair("AbortKey", kFlag), {"cmd",        "version"},
             {"identifier", "tuning" }
  }) {
    putKey(mParam, key, javaString(value));
  }
  putKey(mParam, "AbortVal", javaLong(5));
  putKey(mParam, "imageFormat", javaInt(32));
  EXPECT_EQ(6, callInt("getVersion", "()I"));
  const jlong inst = createClient();
  ASSERT_NE(0, inst);
  EXPECT_EQ(0, callInt("algoInit", kOneObject, inst, kNothing));
  EXPECT_EQ(0, callInt("flush", kTwoObjects, inst, kNothing, kNothing));
  EXPECT_EQ(0, callInt("abort", kTwoObjects, inst, kNothing, mParam));
  EXPECT_EQ("orlu algorithm stand-in 1", getData(inst));
  EXPECT_EQ(0, callInt("translateParamFiles", kTwoObjects, inst, test::newSharedMemory(512), mParam));
  EXPECT_EQ(0, callInt("algoRelease", kOneObject, inst, mParam));
  EXPECT_EQ(0, callInt("destroyNativeClient", "(J)I", inst));
  EXPECT_EQ(
      "createClient, init, flush, "
      "createMetadata, setValue orlu.algo.control/abort_key 128, setValue orlu.algo.control/abort_val 8=5, "
      "command 0 0 0 1, destroyMetadata, "
      "createMetadata, getData 7, destroyMetadata, translateParamFile 512 tuning, "
      "uninit 1/2, uninit 2/2, uninit 3/2, uninit 5/2, "
      "flush, uninit 1/0, uninit 2/0, uninit 3/0, uninit 5/0, destroyClient",
      mTrace);
}

TEST_F(ServiceTest, CarriesAFullAsyncRequest) {
  const test::CallbackRecorder recorder;
  const jlong inst = createClient();
  const jobject composition = test::newComposition();
  const jobject images = test::javaList({test::newSmallImage()});
  const jobject compositions = test::javaList({composition});
  const jobject request = test::newRequest(5, "capture");
  putKey(composition, "isFullAsync", javaInt(1));
  putKey(composition, "orlu.control.algoType", test::javaStrings({"hdr"}));
  EXPECT_EQ(0, callInt("processImage", kFourObjects, inst, request, images, images, compositions));
  EXPECT_TRUE(test::Algo::waitIdle(60'000));
  const std::string report = recorder.reports();
  const std::string expected = "-1 -1 5 nativeRequestAddr=Long ";
  ASSERT_EQ(expected, report.substr(0, expected.size()));
  putKey(composition, "nativeRequestAddr", javaLong(std::stoll(report.substr(expected.size()))));
  EXPECT_EQ(0,
            callInt("processImageUpdateResult", kFourObjects, inst, request, images, images, compositions));
  EXPECT_NE(nullptr, test::getKey(composition, "orlu.feedback.hdrChoosedFrame"));
  EXPECT_EQ(0, callInt("destroyNativeClient", "(J)I", inst));
}

}  // namespace
}  // namespace orlu
