#include "vrequest.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "case_name.h"
#include "fixtures.h"
#include "frame_text.h"
#include "jni_table.h"
#include "log_text.h"

namespace orlu {
namespace {

using test::env;

constexpr char kTag[] = "_V_VASJNI-VRequest";
constexpr char kResultSignature[] = "Landroid/hardware/camera2/CaptureResult;";

#define IMAGE "com/orlu/orlu3rdalgoservice/datastruct/VImageIPC"
#define REQUEST "com/orlu/orlu3rdalgoservice/datastruct/VRequest"
#define COMPOSITION "com/orlu/orlu3rdalgoservice/CaptureResultComposition"

// What a request of nothing but nulls logs.
constexpr char kNullErrors[] =
    "convert jstring failed, input is null\n"
    "get list size failed, input is null\n"
    "get list size failed, input is null\n"
    "get list size failed, input is null\n";

bool isSame(jobject a, jobject b) {
  return env()->IsSameObject(a, b);
}

TEST(VRequestTest, LooksItsMembersUpInOrder) {
  const test::LocalFrame frame;
  // The VM looks things up of its own when it loads a class.
  { const VRequest loading(env(), nullptr, nullptr, nullptr, nullptr); }
  test::LogCapture log;
  const test::JniTable table(env());
  const VRequest request(env(), nullptr, nullptr, nullptr, nullptr);
  std::string lookups;
  for (const std::string& lookup : table.lookups()) lookups += lookup + '\n';
  // clang-format off
  constexpr char kExpected[] =
      "java/util/List\n"
      "java/util/List.get (I)Ljava/lang/Object;\n"
      "java/util/List.size ()I\n"
      IMAGE "\n"
      IMAGE ".mFormat Ljava/lang/String;\n"
      IMAGE ".mWidth I\n"
      IMAGE ".mHeight I\n"
      IMAGE ".mRowStrides [I\n"
      IMAGE ".mPlaneSizes [I\n"
      IMAGE ".mImageDataShmem Landroid/os/SharedMemory;\n"
      IMAGE ".mImageDataHwbuff Landroid/hardware/HardwareBuffer;\n"
      REQUEST "\n"
      REQUEST ".getRequestId ()J\n"
      REQUEST ".getRequestType ()Ljava/lang/String;\n"
      COMPOSITION "\n"
      COMPOSITION ".assembleResultComposition ()Landroid/hardware/camera2/CaptureResult;\n"
      COMPOSITION ".mCaptureResult Landroid/hardware/camera2/CaptureResult;\n"
      "java/lang/String\n"
      "java/lang/String.length ()I\n";
  // clang-format on
  EXPECT_EQ(kExpected, lookups);
  EXPECT_EQ(kNullErrors, test::errorText(log, kTag));
  EXPECT_EQ(0, request.requestId());
  EXPECT_EQ("", request.requestType());
}

struct MissingCase {
  const char* name;
  const char* hidden;
  const char* error;
};

class VRequestMissingTest : public testing::TestWithParam<MissingCase> {};

// A missing class takes its members along, without messages of their own.
TEST_P(VRequestMissingTest, TellsWhatIsMissingAndGoesOn) {
  const test::LocalFrame frame;
  jobject images = test::javaList({test::newSmallImage()});
  jobject compositions = test::javaList({test::newComposition()});
  jobject javaRequest = test::newRequest(5, "shot");
  test::LogCapture log;
  test::JniTable table(env());
  table.hide(GetParam().hidden);
  { const VRequest request(env(), nullptr, nullptr, nullptr, nullptr); }
  EXPECT_EQ(std::string(GetParam().error) + '\n' + kNullErrors, test::errorText(log, kTag));

  // Nothing of the rest reaches for it.
  VRequest request(env(), javaRequest, images, images, compositions);
  request.setResultJpegSize(1, 0);
  request.setResultImageWH(1, 2, 0);
  request.setResultImageFormat(24, "JPEG", 0);
  EXPECT_FALSE(env()->ExceptionCheck());
}

// clang-format off
const MissingCase kMissingCases[] = {
    {"List",           "java/util/List",                          "mClazzList is null"},
    {"ListGet",        "java/util/List.get",                      "mMethodGetListElement is null"},
    {"ListSize",       "java/util/List.size",                     "mMethodListSize is null"},
    {"Image",          IMAGE,                                     "mClazzVImageIPC is null"},
    {"Format",         IMAGE ".mFormat",                          "mFieldVImageIPCFormat is null"},
    {"Width",          IMAGE ".mWidth",                           "mFieldVImageIPCWidth is null"},
    {"Height",         IMAGE ".mHeight",                          "mFieldVImageIPCHeight is null"},
    {"RowStrides",     IMAGE ".mRowStrides",                      "mFieldVImageIPCRowStrides is null"},
    {"PlaneSizes",     IMAGE ".mPlaneSizes",                      "mFieldVImageIPCPlaneSizes is null"},
    {"SharedMemory",   IMAGE ".mImageDataShmem",                  "mFieldVImageIPCDataShmem is null"},
    {"HardwareBuffer", IMAGE ".mImageDataHwbuff",                 "mFieldVImageIPCDataHwbuff is null"},
    {"Request",        REQUEST,                                   "mClazzVRequest is null"},
    {"RequestId",      REQUEST ".getRequestId",                   "mMethodGetRequestId is null"},
    {"RequestType",    REQUEST ".getRequestType",                 "mMethodGetRequestType is null"},
    {"Composition",    COMPOSITION,                               "mClazzCaptureResultCommposition is null"},
    {"Assemble",       COMPOSITION ".assembleResultComposition",  "mMethodAssembleResultComposition is null"},
    {"CaptureResult",  COMPOSITION ".mCaptureResult",             "VASJNI-VRequest: mFieldCaptureResult is null"},
    {"String",         "java/lang/String",                        "mClazzString is null"},
    // Reported as the list's method, on purpose.
    {"StringLength",   "java/lang/String.length",                 "mMethodGetListElement is null"},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Rows, VRequestMissingTest, testing::ValuesIn(kMissingCases), test::CaseName());

TEST(VRequestTest, WantsAnEnvironment) {
  const test::LocalFrame frame;
  test::LogCapture log;
  jobject list = test::javaList({});
  const VRequest request(nullptr, test::newRequest(5, "shot"), list, list, list);
  EXPECT_EQ(std::string("mEnv is null\n") + kNullErrors, test::errorText(log, kTag));
}

TEST(VRequestTest, ReadsARequest) {
  const test::LocalFrame frame;
  test::LogCapture log;
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
  EXPECT_TRUE(isSame(first, request.firstComposition()));
  EXPECT_TRUE(isSame(second, request.captureResultCompositions()[1]));
  EXPECT_EQ("", test::errorText(log, kTag));
  EXPECT_EQ(1,
            log.count(ANDROID_LOG_DEBUG, kTag, "request info: reqId = 4294967301, reqType stopProcessNow"));
  EXPECT_TRUE(log.contains("getImageData() get image data 0x")) << log.text();
  EXPECT_EQ(1, log.count(ANDROID_LOG_DEBUG, kTag,
                         "start process received in img num 2, out img num 1, captureResultNum 2"));
  // Each image has its line, in order.
  const std::string text = log.text();
  EXPECT_LT(text.find("img in[0]: fmt ALGO_IMG_NV21, w 64"), text.find("img in[1]: fmt"));
  EXPECT_LT(text.find("img in[1]: fmt"), text.find("img out[0]: fmt"));
  EXPECT_NE(std::string::npos, text.find("img out[0]: fmt"));
}

TEST(VRequestTest, ReadsWhatIsNoRequest) {
  const test::LocalFrame frame;
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

struct ListCase {
  const char* name;
  std::function<jobject()> make;
  size_t size;
  const char* errors;  // as a list of inputs
};

class VRequestListTest : public testing::TestWithParam<ListCase> {};

TEST_P(VRequestListTest, WalksAnyList) {
  const test::LocalFrame frame;
  const ListCase& c = GetParam();
  jobject empty = test::javaList({});
  {
    test::LogCapture log;
    const VRequest request(env(), test::newRequest(1, "shot"), c.make(), empty, empty);
    EXPECT_EQ(c.errors, test::errorText(log, kTag));
    ASSERT_EQ(c.size, request.inputFrames().size());
    for (const AlgoFrameInfo& image : request.inputFrames()) {
      EXPECT_EQ(test::frameText(AlgoFrameInfo()), test::frameText(image));
    }
  }
  const VRequest request(env(), test::newRequest(1, "shot"), empty, c.make(), c.make());
  EXPECT_EQ(c.size, request.outputFrames().size());
  EXPECT_EQ(std::vector<jobject>(c.size), request.captureResults());
  EXPECT_EQ(c.size, request.captureResultCompositions().size());
  EXPECT_FALSE(env()->ExceptionCheck());
}

constexpr char kNullImage[] = "convert image failed, input is null\n";
constexpr char kTwoNullImages[] =
    "convert image failed, input is null\nconvert image failed, input is null\n";
// clang-format off
const ListCase kListCases[] = {
    {"Null",          [] { return jobject(nullptr); },                                   0, "get list size failed, input is null\n"},
    {"NoList",        [] { return test::javaInt(1); },                                   0, "get list size failed, input is null\n"},
    {"Empty",         [] { return test::javaList({}); },                                 0, ""},
    {"NullElement",   [] { return test::javaList({nullptr}); },                          1, kNullImage},
    {"WrongElement",  [] { return test::javaList({test::javaInt(1)}); },                 1, kNullImage},
    {"SizeThrows",    [] { return test::newUnrulyList(1, true, false); },                0, ""},
    {"NegativeSize",  [] { return test::newUnrulyList(-2, false, false); },              0, ""},
    {"ElementThrows", [] { return test::newUnrulyList(2, false, true); },                2, kTwoNullImages},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Cases, VRequestListTest, testing::ValuesIn(kListCases), test::CaseName());

TEST(VRequestTest, AssemblesACaptureResultOnce) {
  const test::LocalFrame frame;
  test::LogCapture log;
  jobject fresh = test::newComposition();
  jobject kept = test::newCaptureResult(test::newMetadata());
  jobject ready = test::newComposition();
  test::setObjectField(ready, "mCaptureResult", kResultSignature, kept);
  jobject list = test::javaList({fresh, nullptr, ready, test::newThrowingComposition()});

  const VRequest request(env(), nullptr, nullptr, nullptr, list);
  const std::vector<jobject>& results = request.captureResults();
  ASSERT_EQ(4U, results.size());
  ASSERT_NE(nullptr, results[0]);
  EXPECT_TRUE(isSame(results[0], test::objectField(fresh, "mCaptureResult", kResultSignature)));
  EXPECT_EQ(nullptr, results[1]);
  EXPECT_TRUE(log.contains("getCaptureResult() get capture result failed, input is null (nil) 0x"))
      << log.text();
  EXPECT_TRUE(isSame(kept, results[2]));
  EXPECT_EQ(nullptr, results[3]);
  EXPECT_TRUE(isSame(kept, test::objectField(ready, "mCaptureResult", kResultSignature)));

  const VRequest again(env(), nullptr, nullptr, nullptr, list);
  EXPECT_TRUE(isSame(results[0], again.captureResults()[0]));
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
  std::string frame(size_t index) const { return test::frameText(request->outputFrames()[index]); }
  // "format width x height plane sizes" of a descriptor.
  std::string image(size_t index) const {
    std::string text = test::stringOf(test::objectField(images[index], "mFormat", "Ljava/lang/String;")) +
                       ' ' + std::to_string(test::intField(images[index], "mWidth")) + 'x' +
                       std::to_string(test::intField(images[index], "mHeight"));
    jobject sizes = test::objectField(images[index], "mPlaneSizes", "[I");
    if (sizes == nullptr) return text + " null";
    for (int32_t size : test::intsOf(sizes)) text += ' ' + std::to_string(size);
    return text;
  }

  std::vector<jobject> images;
  std::unique_ptr<VRequest> request;
};

TEST(VRequestTest, WritesResultsIntoFrameAndDescriptor) {
  const test::LocalFrame frame;
  const Outputs outputs;
  const std::string untouchedFrame = outputs.frame(0);
  outputs.request->setResultJpegSize(777, 1);
  outputs.request->setResultImageWH(48, 64, 1);
  outputs.request->setResultImageFormat(24, "JPEG", 1);
  const AlgoFrameInfo& written = outputs.request->outputFrames()[1];
  EXPECT_EQ("24 2 | 64 64 0 0 | 777 1536 9 0 | 777", test::layoutText(written));
  EXPECT_EQ(48, written.width);
  EXPECT_EQ(64, written.height);
  EXPECT_EQ("JPEG 48x64 777 1536 9", outputs.image(1));
  EXPECT_EQ(untouchedFrame, outputs.frame(0));
  EXPECT_EQ("NV21 64x48 3072 1536 9", outputs.image(0));
}

TEST(VRequestTest, WritesASizeWhereADescriptorHasNone) {
  const test::LocalFrame frame;
  const Outputs outputs(std::vector<int32_t>{});
  for (int index : {0, 1}) {
    outputs.request->setResultJpegSize(777, index);
    const AlgoFrameInfo& written = outputs.request->outputFrames()[static_cast<size_t>(index)];
    EXPECT_EQ(777, written.size);
    EXPECT_EQ(777, written.planeSize[0]);
  }
  EXPECT_EQ("NV21 64x48 null", outputs.image(0));
  EXPECT_EQ("NV21 64x48", outputs.image(1));
  EXPECT_FALSE(env()->ExceptionCheck());
}

TEST(VRequestTest, RefusesAResultWithoutAnOutput) {
  const test::LocalFrame frame;
  const Outputs outputs;
  const std::string before = outputs.frame(0) + outputs.frame(1);
  for (int index : {2, -1}) {
    test::LogCapture log;
    outputs.request->setResultJpegSize(777, index);
    outputs.request->setResultImageWH(1, 2, index);
    outputs.request->setResultImageFormat(24, "JPEG", index);
    EXPECT_EQ(
        "set result jpeg size failed, index >= size\n"
        "set result image size failed, index >= size\n"
        "set result image format failed, index >= size\n",
        test::errorText(log, kTag));
  }
  EXPECT_EQ(before, outputs.frame(0) + outputs.frame(1));
  EXPECT_EQ("NV21 64x48 3072 1536 9", outputs.image(1));
}

// Five classes, each image, and each composition with its result. Whatever is read on the way is freed.
TEST(VRequestTest, KeepsNoMoreReferencesThanItsObjects) {
  const test::LocalFrame frame;
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
  EXPECT_FALSE(env()->ExceptionCheck());
}

}  // namespace
}  // namespace orlu
