#include "request_processor.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <sstream>
#include <tuple>
#include <utility>

#include "callback_recorder.h"
#include "error_lines.h"
#include "jni_table.h"
#include "process_figures.h"
#include "request_scene.h"

namespace orlu {
namespace {

using test::callObject;
using test::env;
using test::javaInt;
using test::javaLong;
using test::javaString;
using test::putKey;

constexpr char kTag[] = "_V_VASJNI-RequestProcessor";
constexpr char kFlag[] = "orlu.control.frameFlag";

class RequestProcessorTest : public test::RequestScene {
protected:
  RequestProcessorTest() { create(); }

  // Returns RequestProcessor's log, a message per line. "?" precedes debug lines; "I" replaces the client's
  // address.
  std::string lines(const void* client) const {
    std::string text;
    for (const std::string& line : test::errorLines(mLog)) {
      const size_t found = line.find(std::string(kTag) + ": * ");
      if (found < 2) text += line.substr(0, found) + line.substr(found + sizeof kTag - 1 + 4) + '\n';
    }
    std::ostringstream address;
    address << client;
    const size_t length = address.str().size();
    for (size_t at = text.find(address.str()); at != text.npos; at = text.find(address.str())) {
      text.replace(at, length, "I");
    }
    return text;
  }
  static std::string uninits(char mode) {
    std::string all = "uninit 1/*, uninit 2/*, uninit 3/*, uninit 5/*";
    std::replace(all.begin(), all.end(), '*', mode);
    return all;
  }

  const jobject mParam = test::newComposition();
};

// Calls the natives through the Java class that declares them.
class ServiceTest : public RequestProcessorTest {
protected:
  const jobject mService = test::newObject("com/orlu/orlu3rdalgoservice/Orlu3rdAlgoService", "()V");
  template <typename... Arguments>
  int callInt(const char* name, const char* signature, Arguments... arguments) {
    return test::call(mService, name, signature, arguments...).i;
  }
  jlong createClient() {
    return test::call(mService, "createNativeClient", "(Ljava/lang/Object;)J", mParam).j;
  }
};

#define OBJECT "Ljava/lang/Object;"
constexpr char kOneObject[] = "(J" OBJECT ")I";
constexpr char kTwoObjects[] = "(J" OBJECT OBJECT ")I";
constexpr char kFourObjects[] = "(J" OBJECT OBJECT OBJECT OBJECT ")I";
constexpr jobject kNothing = nullptr;

TEST_F(ServiceTest, LifeOfAClient) {
  putKey(mParam, "clientId", javaLong(4294967299));
  putKey(mParam, "algoContextIndex", javaInt(7));
  putKey(mParam, "AbortKey", javaString(kFlag));
  putKey(mParam, "AbortVal", javaLong(4294967301));
  putKey(mParam, "identifier", javaString("tuning"));
  putKey(mParam, "cmd", javaString("paramfile tuning"));
  putKey(mParam, "imageFormat", javaInt(32));
  const jobject memory = test::newSharedMemory(4096);
  EXPECT_EQ(6, callInt("getVersion", "()I"));
  const jlong inst = createClient();
  EXPECT_EQ(0, callInt("algoInit", kOneObject, inst, kNothing));
  EXPECT_EQ(0, callInt("flush", kTwoObjects, inst, kNothing, kNothing));
  EXPECT_EQ(0, callInt("abort", kTwoObjects, inst, kNothing, mParam));
  const auto descriptors = test::openDescriptors();
  EXPECT_EQ(0, callInt("translateParamFiles", kTwoObjects, inst, memory, mParam));
  EXPECT_EQ(descriptors, test::openDescriptors());
  // The library could read the file: this is the checksum of 4096 zeros.
  const jobject data = callObject(mService, "getData", "(J" OBJECT ")Ljava/lang/String;", inst, mParam);
  EXPECT_EQ("4096 c71c0011", test::stringOf(data));
  EXPECT_EQ(0, callInt("algoRelease", kOneObject, inst, mParam));
  EXPECT_EQ(0, callInt("destroyNativeClient", "(J)I", inst));

  EXPECT_EQ(
      "createClient, init, flush, "
      "createMetadata, setValue orlu.algo.control/abort_key 128, "
      "setValue orlu.algo.control/abort_val 8=4294967301, command 0 0 0 1, destroyMetadata, "
      "translateParamFile 4096 tuning, createMetadata, getData 16, destroyMetadata, " +
          uninits('2') + ", flush, " + uninits('0') + ", destroyClient",
      mTrace);
  EXPECT_EQ(
      "?create E\n?create X, inst I, clientId 4294967299, index 7\n"
      "?init E, I\n?init X\n?flush E, I\n?flush X\n"
      "?abort E, I\n?abort key orlu.control.frameFlag no error 1\n?abort X\n"
      "?translateParamFiles filefd " +
          std::to_string(mFile) +
          ", bufferSize 4096 algoFlag tuning\n?translateParamFiles end\n"
          "?cmd paramfile tuning\n?get data ret size 10240, 4096 c71c0011\n"
          "?release E, I\n?release format: 32\n?release X\n"
          "?destroy E, I\n?destroy flush, I\n?destroy uninit, I\n?destroy X\n",
      lines(reinterpret_cast<void*>(static_cast<uintptr_t>(inst))));
}

TEST_F(ServiceTest, CarriesAFullAsyncRequest) {
  const test::CallbackRecorder recorder;
  const jlong inst = createClient();
  const jobject compositions = test::javaList(mCompositions);
  const jobject request = test::newRequest(5, "capture");
  setAlgoList({"hdr"});
  putKey(mCompositions[0], "isFullAsync", javaInt(1));
  EXPECT_EQ(0, callInt("processImage", kFourObjects, inst, request, mInputs, mOutputs, compositions));
  EXPECT_TRUE(test::Algo::waitIdle(60'000));
  const std::string report = recorder.reports();
  const std::string expected = "-1 -1 5 nativeRequestAddr=Long ";
  ASSERT_EQ(expected, report.substr(0, expected.size())) << "a client without ids reports -1 and -1";
  putKey(mCompositions[0], "nativeRequestAddr", javaLong(std::stoll(report.substr(expected.size()))));
  EXPECT_EQ(
      0, callInt("processImageUpdateResult", kFourObjects, inst, request, mInputs, mOutputs, compositions));
  EXPECT_NE(-999, result("orlu.feedback.hdrChoosedFrame"));
  EXPECT_EQ(0, callInt("destroyNativeClient", "(J)I", inst));
}

// A 32-bit machine only uses the lower half of a handle.
TEST_F(RequestProcessorTest, TheHandleOfNoClientIsRejected) {
  using P = RequestProcessor;
  constexpr int64_t kNone = sizeof(void*) == 4 ? int64_t{1} << 32 : 0;
  putKey(mParam, "imageFormat", javaInt(37));
  for (const int answer :
       {P::destroy(env(), kNone), P::init(env(), kNone, mParam), P::release(env(), kNone, mParam),
        P::flush(env(), kNone, mParam, mParam), P::abortRequest(env(), kNone, mParam, mParam),
        P::translateParamFiles(env(), kNone, nullptr, mParam)}) {
    EXPECT_EQ(-1, answer);
  }
  EXPECT_EQ(nullptr, P::getData(env(), kNone, mParam));
  EXPECT_EQ(nullptr, P::getData(env(), mInst, nullptr));
  EXPECT_EQ("", mTrace);
  std::ostringstream param;
  param << static_cast<void*>(mParam);
  EXPECT_EQ(
      "destroy native client failed, client is null!\ninit failed, client is null!\n"
      "?release E, (nil)\n?release format: 37\nrelease failed, client is null!\n"
      "flush failed, client is null!\n"
      "?abort E, (nil)\nabort failed, client is null!\n"
      "?get data failed, input is null, (nil)\n"
      "get data failed, input is null (nil) " +
          param.str() + "\nget data failed, input is null I (nil)\n",
      lines(&client()));
}

// If its parser can't find a class, each operation logs an error with the operation's name and continues.
TEST_F(RequestProcessorTest, TellsOfAnIncompleteParser) {
  test::JniTable table(env());
  table.hide("android/util/Rational");
  const std::pair<const char*, std::function<void()>> kOperations[] = {
      {"create",                   [this] { RequestProcessor::destroy(env(), RequestProcessor::create(env(), mParam)); }},
      {"release",                  [this] { RequestProcessor::release(env(), mInst, mParam); }                          },
      {"abortRequest",             [this] { RequestProcessor::abortRequest(env(), mInst, nullptr, mParam); }            },
      {"getData",                  [this] { RequestProcessor::getData(env(), mInst, mParam); }                          },
      {"translateParamFiles",
       [this] { RequestProcessor::translateParamFiles(env(), mInst, nullptr, mParam); }                                 },
      {"processImage",             [this] { process(); }                                                                },
      {"processImageUpdateResult", [this] { updateResult(newestRequest() + 1); }                                        },
  };
  for (const auto& [name, operation] : kOperations) {
    mLog.clear();
    operation();
    EXPECT_EQ(1, mLog.errors(kTag, "init parser failed")) << name;
    EXPECT_TRUE(mLog.contains(std::string(name) + "() init parser failed")) << name;
  }
}

TEST_F(RequestProcessorTest, ReleaseModeFollowsFromTheFormat) {
  const std::tuple<const char*, jobject, char> kModes[] = {
      {"RAW_SENSOR",  javaInt(32),  '2'},
      {"RAW10",       javaInt(37),  '2'},
      {"YUV_420_888", javaInt(35),  '1'},
      {"unknown",     javaInt(0),   '1'},
      {"wrong type",  javaLong(32), '0'},
      {"absent",      nullptr,      '0'},
  };
  for (const auto& [name, format, mode] : kModes) {
    mTrace.clear();
    putKey(mParam, "imageFormat", format);
    EXPECT_EQ(0, RequestProcessor::release(env(), mInst, mParam));
    EXPECT_EQ(uninits(mode), mTrace) << name;
  }
}

TEST_F(RequestProcessorTest, AbortSendsWhatIsNamed) {
  // clang-format off
  const std::tuple<std::string, jobject, bool> kCases[] = {
      {"orlu.control.frameFlag2",     javaLong(1), true},
      {kFlag + std::string(200, 'x'), javaLong(1), true},
      {"orlu.control.frameFla",       javaLong(1), false},
      {"orlu.control.frameFlog",      javaLong(1), false},
      {"",                            javaLong(1), false},
      {kFlag,                         nullptr,     false},
  };
  // clang-format on
  for (const auto& [key, value, isSent] : kCases) {
    mTrace.clear();
    putKey(mParam, "AbortKey", key.empty() ? nullptr : javaString(key));
    putKey(mParam, "AbortVal", value);
    EXPECT_EQ(0, RequestProcessor::abortRequest(env(), mInst, nullptr, mParam));
    std::string expected = "createMetadata";
    if (!key.empty()) expected += ", setValue orlu.algo.control/abort_key 128";
    if (isSent) expected += ", setValue orlu.algo.control/abort_val 8=1, command 0 0 0 1";
    EXPECT_EQ(expected + ", destroyMetadata", mTrace) << key;
    std::string sent = key.substr(0, 128);
    EXPECT_TRUE(mLog.contains("abort key " + sent + " no error " + (isSent ? "1" : "0")));
    sent.resize(128);
    if (key.empty()) continue;
    EXPECT_EQ(sent, std::string(mAbortKey.begin(), mAbortKey.end()));
  }
}

TEST_F(RequestProcessorTest, GetDataCutsItsCommand) {
  for (const size_t length : {0U, 1023U, 1024U, 2000U}) {
    mTrace.clear();
    if (length != 0) putKey(mParam, "cmd", javaString(std::string(length, 'c')));
    EXPECT_EQ("", test::stringOf(RequestProcessor::getData(env(), mInst, mParam)));
    EXPECT_EQ(
        "createMetadata, getData " + std::to_string(std::min<size_t>(length, 1024)) + ", destroyMetadata",
        mTrace);
  }
}

TEST_F(RequestProcessorTest, GetDataIsNullWithoutTheOperation) {
  RequestProcessor::destroy(env(), mInst);
  mAlgo.script.notOffered = {"getData"};
  create();
  EXPECT_EQ(nullptr, RequestProcessor::getData(env(), mInst, mParam));
  EXPECT_TRUE(mLog.contains("get data ret size 0, "));
}

TEST_F(RequestProcessorTest, PassesOnAMissingFile) {
  putKey(mParam, "identifier", javaString(std::string(200, 'i')));
  EXPECT_EQ(0, RequestProcessor::translateParamFiles(env(), mInst, nullptr, mParam));
  EXPECT_EQ("translateParamFile 0 " + std::string(128, 'i'), mTrace);
  EXPECT_LT(mFile, 0);
}

TEST_F(RequestProcessorTest, DescriptorZeroStaysOpen) {
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

}  // namespace
}  // namespace orlu
