#include "vrequest.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <tuple>

#include "case_name.h"
#include "error_lines.h"
#include "fixtures.h"
#include "frame_text.h"
#include "jni_table.h"

namespace orlu {
namespace {

using test::env;

constexpr char kTag[] = "_V_VASJNI-VRequest";

#define IMAGE "com/orlu/orlu3rdalgoservice/datastruct/VImageIPC"
#define REQUEST "com/orlu/orlu3rdalgoservice/datastruct/VRequest"
#define RESULT "android/hardware/camera2/CaptureResult"
#define COMPOSITION "com/orlu/orlu3rdalgoservice/CaptureResultComposition"

// Errors logged by a request that only contains nulls.
constexpr char kNullErrors[] =
    "convert jstring failed, input is null\nget list size failed, input is null\n"
    "get list size failed, input is null\nget list size failed, input is null\n";

class VRequestTest : public testing::Test {
protected:
  ~VRequestTest() override { EXPECT_FALSE(env()->ExceptionCheck()); }

  const test::LocalFrame mFrame;
  test::LogCapture mLog;
};

struct Entry : test::NamedCase {
  const char* lookup;  // as JniTable reports it
  const char* label;   // name logged if it is missing
};

// clang-format off
const Entry kEntries[] = {
    {"List",           "java/util/List",                                      "mClazzList"},
    {"ListGet",        "java/util/List.get (I)Ljava/lang/Object;",            "mMethodGetListElement"},
    {"ListSize",       "java/util/List.size ()I",                             "mMethodListSize"},
    {"Image",          IMAGE,                                                 "mClazzVImageIPC"},
    {"Format",         IMAGE ".mFormat Ljava/lang/String;",                   "mFieldVImageIPCFormat"},
    {"Width",          IMAGE ".mWidth I",                                     "mFieldVImageIPCWidth"},
    {"Height",         IMAGE ".mHeight I",                                    "mFieldVImageIPCHeight"},
    {"RowStrides",     IMAGE ".mRowStrides [I",                               "mFieldVImageIPCRowStrides"},
    {"PlaneSizes",     IMAGE ".mPlaneSizes [I",                               "mFieldVImageIPCPlaneSizes"},
    {"SharedMemory",   IMAGE ".mImageDataShmem Landroid/os/SharedMemory;",    "mFieldVImageIPCDataShmem"},
    {"HardwareBuffer", IMAGE ".mImageDataHwbuff Landroid/hardware/HardwareBuffer;", "mFieldVImageIPCDataHwbuff"},
    {"Request",        REQUEST,                                               "mClazzVRequest"},
    {"RequestId",      REQUEST ".getRequestId ()J",                           "mMethodGetRequestId"},
    {"RequestType",    REQUEST ".getRequestType ()Ljava/lang/String;",        "mMethodGetRequestType"},
    {"Composition",    COMPOSITION,                                           "mClazzCaptureResultCommposition"},
    {"Assemble",       COMPOSITION ".assembleResultComposition ()L" RESULT ";", "mMethodAssembleResultComposition"},
    {"CaptureResult",  COMPOSITION ".mCaptureResult L" RESULT ";",            "VASJNI-VRequest: mFieldCaptureResult"},
    {"String",         "java/lang/String",                                    "mClazzString"},
    // Reported under the name of List.get() (Oddity 10).
    {"StringLength",   "java/lang/String.length ()I",                         "mMethodGetListElement"},
};
// clang-format on

// VRequestMissingTest checks that every entry of kEntries is looked up. This test checks that there are no
// repeated or additional lookups.
TEST_F(VRequestTest, LooksUpAsManyAsAreInTheTable) {
  // The VM performs lookups of its own when it loads a class.
  { const VRequest loading(env(), nullptr, nullptr, nullptr, nullptr); }
  mLog.clear();
  const test::JniTable table(env());
  { const VRequest request(env(), nullptr, nullptr, nullptr, nullptr); }
  EXPECT_EQ(std::size(kEntries), table.lookups().size()) << test::joined(table.lookups());
  EXPECT_EQ(kNullErrors, test::errorText(mLog, kTag));
}

class VRequestMissingTest : public VRequestTest, public testing::WithParamInterface<Entry> {};

// Members of a missing class are also missing, but are not reported separately.
TEST_P(VRequestMissingTest, TellsWhatIsMissingAndGoesOn) {
  jobject images = test::javaList({test::newSmallImage()});
  jobject compositions = test::javaList({test::newComposition()});
  jobject javaRequest = test::newRequest(5, "shot");
  test::JniTable table(env());
  table.hide(GetParam().lookup);
  { const VRequest request(env(), nullptr, nullptr, nullptr, nullptr); }
  EXPECT_EQ(std::string(GetParam().label) + " is null\n" + kNullErrors, test::errorText(mLog, kTag));

  // These calls must not use the missing class or member.
  VRequest request(env(), javaRequest, images, images, compositions);
  request.setResultJpegSize(1, 0);
  request.setResultImageWH(1, 2, 0);
  request.setResultImageFormat(24, "JPEG", 0);
}

INSTANTIATE_TEST_SUITE_P(Entries, VRequestMissingTest, testing::ValuesIn(kEntries), test::CaseName());

TEST_F(VRequestTest, WantsAnEnvironment) {
  jobject list = test::javaList({});
  const VRequest request(nullptr, test::newRequest(5, "shot"), list, list, list);
  EXPECT_EQ(std::string("mEnv is null\n") + kNullErrors, test::errorText(mLog, kTag));
}

TEST_F(VRequestTest, ReadsARequest) {
  jobject first = test::newComposition();
  jobject second = test::newComposition();
  jobject inputs = test::javaList({test::newSmallImage(), test::newSmallImage()});
  jobject outputs = test::javaList({test::newSmallImage()});
  const VRequest request(env(), test::newRequest(0x100000005, "stopProcessNow"), inputs, outputs,
                         test::javaList({first, second}));
  EXPECT_EQ(0x100000005, request.requestId());
  EXPECT_EQ("stopProcessNow", request.requestType());
  EXPECT_TRUE(request.isStopProcess());
  EXPECT_EQ(2U, request.inputFrames().size());
  EXPECT_EQ(1U, request.outputFrames().size());
  ASSERT_EQ(2U, request.captureResultCompositions().size());
  EXPECT_TRUE(env()->IsSameObject(first, request.firstComposition()));
  EXPECT_TRUE(env()->IsSameObject(second, request.captureResultCompositions()[1]));
  EXPECT_EQ("", test::errorText(mLog, kTag));
  for (const char* message : {"request info: reqId = 4294967301, reqType stopProcessNow",
                              "start process received in img num 2, out img num 1, captureResultNum 2"}) {
    EXPECT_EQ(1, mLog.count(ANDROID_LOG_DEBUG, kTag, message)) << mLog.text();
  }
  // Each image has a log line, in order.
  size_t at = 0;
  for (const char* line : {"getImageData() get image data 0x", "img in[0]: fmt ALGO_IMG_NV21, w 64",
                           "img in[1]: fmt", "img out[0]: fmt"}) {
    at = mLog.text().find(line, at);
    EXPECT_NE(std::string::npos, at) << line;
  }
}

TEST_F(VRequestTest, ReadsIncompleteAndForeignRequests) {
  jobject typeless = test::newObject(REQUEST, "(JLjava/lang/String;)V", jlong{6}, nullptr);
  const VRequest withoutType(env(), typeless, nullptr, nullptr, nullptr);
  EXPECT_EQ(6, withoutType.requestId());
  EXPECT_EQ("", withoutType.requestType());
  EXPECT_EQ(nullptr, withoutType.firstComposition());
  EXPECT_FALSE(withoutType.isStopProcess());

  const VRequest stranger(env(), test::javaInt(7), nullptr, nullptr, nullptr);
  EXPECT_EQ(0, stranger.requestId());
  EXPECT_EQ("", stranger.requestType());
}

TEST_F(VRequestTest, WalksAnyList) {
  constexpr char kNullImage[] = "convert image failed, input is null\n";
  // clang-format off
  const std::tuple<jobject, size_t, const char*> kCases[] = {  // list, size, errors if passed as the inputs
      {test::javaInt(1),                        0, "get list size failed, input is null\n"},
      {test::javaList({test::javaInt(1)}),      1, kNullImage},
      {test::newUnrulyList(1, true, false),     0, ""},
      {test::newUnrulyList(-2, false, false),   0, ""},
      {test::newUnrulyList(1, false, true),     1, kNullImage},
  };
  // clang-format on
  jobject empty = test::javaList({});
  for (const auto& [list, size, errors] : kCases) {
    mLog.clear();
    const VRequest withInputs(env(), test::newRequest(1, "shot"), list, empty, empty);
    EXPECT_EQ(errors, test::errorText(mLog, kTag));
    ASSERT_EQ(size, withInputs.inputFrames().size());
    for (const AlgoFrameInfo& image : withInputs.inputFrames()) {
      EXPECT_EQ(test::frameText(AlgoFrameInfo()), test::frameText(image));
    }
    const VRequest request(env(), test::newRequest(1, "shot"), empty, list, list);
    EXPECT_EQ(size, request.outputFrames().size());
    EXPECT_EQ(std::vector<jobject>(size), request.captureResults());
    EXPECT_EQ(size, request.captureResultCompositions().size());
  }
}

TEST_F(VRequestTest, LogsNullListsAndNegativeIndices) {
  VRequest request(env(), nullptr, nullptr, nullptr, nullptr);
  mLog.clear();
  EXPECT_EQ(nullptr, request.getListElement(nullptr, 0));
  EXPECT_EQ(nullptr, request.getListElement(test::javaList({test::javaInt(1)}), -1));
  EXPECT_EQ(nullptr, request.getListElement(test::javaList({test::javaInt(1)}), 1));
  int32_t values[2] = {5, 6};
  request.getIntArray(values, 2, nullptr);
  EXPECT_EQ(5, values[0]);
  EXPECT_EQ(
      "get list elemet failed, input is null\nget list elemet failed, index < 0\n"
      "get int array failed, input is null\n",
      test::errorText(mLog, kTag));
}

TEST_F(VRequestTest, AssemblesACaptureResultOnce) {
  const auto keptBy = [](jobject composition) {
    return test::objectField(composition, "mCaptureResult", "L" RESULT ";");
  };
  jobject fresh = test::newComposition();
  jobject kept = test::newCaptureResult(test::newMetadata());
  jobject ready = test::newComposition();
  test::setObjectField(ready, "mCaptureResult", "L" RESULT ";", kept);
  const VRequest request(env(), nullptr, nullptr, nullptr,
                         test::javaList({fresh, nullptr, ready, test::newThrowingComposition()}));
  const std::vector<jobject>& results = request.captureResults();
  ASSERT_EQ(4U, results.size());
  ASSERT_NE(nullptr, results[0]);
  EXPECT_TRUE(env()->IsSameObject(results[0], keptBy(fresh)));
  EXPECT_EQ(nullptr, results[1]);
  EXPECT_TRUE(mLog.contains("getCaptureResult() get capture result failed, input is null (nil) 0x"));
  EXPECT_TRUE(env()->IsSameObject(kept, results[2]));
  EXPECT_TRUE(env()->IsSameObject(kept, keptBy(ready)));
  EXPECT_EQ(nullptr, results[3]);
}

// A request with two outputs, and their Java descriptors.
struct Outputs {
  explicit Outputs(const std::vector<int32_t>& planeSizes = {3072, 1536, 9}) {
    test::ImageSpec spec;
    spec.sharedMemory = test::newSharedMemory(4608);
    spec.planeSizes = planeSizes;
    images = {test::newImage(spec), test::newImage(spec)};
    if (planeSizes.empty()) test::setObjectField(images[0], "mPlaneSizes", "[I", nullptr);
    request = std::make_unique<VRequest>(env(), nullptr, nullptr, test::javaList(images), nullptr);
  }
  void setAll(int index) const {
    request->setResultJpegSize(777, index);
    request->setResultImageWH(48, 96, index);
    request->setResultImageFormat(24, "JPEG", index);
  }
  // Returns the size and layout of the frame, "/", and the format, size and plane sizes of the descriptor.
  std::string text(size_t index) const {
    const AlgoFrameInfo& frame = request->outputFrames()[index];
    jobject image = images[index];
    std::ostringstream text;
    text << frame.width << 'x' << frame.height << ' ' << test::layoutText(frame) << " / "
         << test::stringOf(test::objectField(image, "mFormat", "Ljava/lang/String;")) << ' '
         << test::intField(image, "mWidth") << 'x' << test::intField(image, "mHeight");
    jobject sizes = test::objectField(image, "mPlaneSizes", "[I");
    if (sizes == nullptr) return text.str() + " null";
    for (int32_t size : test::intsOf(sizes)) text << ' ' << size;
    return text.str();
  }

  std::vector<jobject> images;
  std::unique_ptr<VRequest> request;
};

constexpr char kUntouched[] = "64x48 1 2 | 64 64 0 0 | 3072 1536 9 0 | 4608 / NV21 64x48 3072 1536 9";

TEST_F(VRequestTest, WritesResultsIntoFrameAndDescriptor) {
  const Outputs outputs;
  outputs.setAll(1);
  EXPECT_EQ("48x96 24 2 | 64 64 0 0 | 777 1536 9 0 | 777 / JPEG 48x96 777 1536 9", outputs.text(1));
  EXPECT_EQ(kUntouched, outputs.text(0));
}

TEST_F(VRequestTest, WritesASizeWhereADescriptorHasNone) {
  const Outputs outputs(std::vector<int32_t>{});
  for (int index : {0, 1}) outputs.request->setResultJpegSize(777, index);
  EXPECT_EQ("64x48 1 2 | 64 64 0 0 | 777 1536 0 0 | 777 / NV21 64x48 null", outputs.text(0));
  EXPECT_EQ("64x48 1 2 | 64 64 0 0 | 777 1536 0 0 | 777 / NV21 64x48", outputs.text(1));
}

TEST_F(VRequestTest, RefusesAResultWithoutAnOutput) {
  const Outputs outputs;
  for (int index : {2, -1}) {
    mLog.clear();
    outputs.setAll(index);
    EXPECT_EQ(
        "set result jpeg size failed, index >= size\nset result image size failed, index >= size\n"
        "set result image format failed, index >= size\n",
        test::errorText(mLog, kTag));
  }
  for (size_t index : {0U, 1U}) EXPECT_EQ(kUntouched, outputs.text(index));
}

TEST_F(VRequestTest, ReadsOnlyTheFirst1024Elements) {
  const auto framesOf = [](int size) {
    jobject list = test::javaList(std::vector<jobject>(static_cast<size_t>(size), nullptr));
    return VRequest(env(), nullptr, list, nullptr, nullptr).inputFrames().size();
  };
  constexpr char kLine[] = "list has 1025 elements, only the first 1024 are read";
  EXPECT_EQ(1024U, framesOf(1024));
  EXPECT_EQ(0, mLog.errors(kTag, kLine));
  EXPECT_EQ(1024U, framesOf(1025));
  EXPECT_EQ(1, mLog.errors(kTag, kLine));
  EXPECT_TRUE(mLog.contains("getListSize() list has"));
}

// Local references to five classes and to each image, composition and capture result must remain.
TEST_F(VRequestTest, KeepsNoMoreReferencesThanItsObjects) {
  jobject javaRequest = test::newRequest(1, "shot");
  jobject inputs = test::javaList(std::vector<jobject>(300, test::newSmallImage()));
  test::ImageSpec spec;
  spec.hardwareBuffer = test::newHardwareBuffer(64, 48, 0x23);
  jobject outputs = test::javaList(std::vector<jobject>(20, test::newImage(spec)));
  jobject compositions = test::javaList(std::vector<jobject>(40, test::newComposition()));
  const test::JniTable table(env());
  VRequest request(env(), javaRequest, inputs, outputs, compositions);
  EXPECT_EQ(5 + 300 + 20 + 2 * 40, table.localReferences());
  request.setResultJpegSize(1, 0);
  request.setResultImageFormat(24, "JPEG", 0);
  EXPECT_EQ(5 + 300 + 20 + 2 * 40, table.localReferences());
  EXPECT_EQ(0, table.calls("NewGlobalRef"));
  EXPECT_EQ(table.calls("GetStringUTFChars"), table.calls("ReleaseStringUTFChars"));
  EXPECT_EQ(table.calls("GetIntArrayElements"), table.calls("ReleaseIntArrayElements"));
}

}  // namespace
}  // namespace orlu
