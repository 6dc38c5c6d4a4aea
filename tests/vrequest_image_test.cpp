// Conversion of a Java image to a frame record: format, planes and memory.

#include <android/hardware_buffer_jni.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <vndk/hardware_buffer.h>

#include <limits>
#include <numeric>
#include <sstream>

#include "case_name.h"
#include "error_lines.h"
#include "fixtures.h"
#include "frame_text.h"
#include "process_figures.h"
#include "vrequest.h"

namespace orlu {
namespace {

using test::env;

constexpr char kTag[] = "_V_VASJNI-VRequest";
constexpr int32_t kMax = std::numeric_limits<int32_t>::max();

AlgoFrameInfo convert(jobject image) {
  jobject empty = test::javaList({});
  const VRequest request(env(), test::newRequest(1, "shot"), test::javaList({image}), empty, empty);
  return request.inputFrames().at(0);
}

struct ImageCase : test::NamedCase {
  const char* format;  // may be null
  int width;
  int height;
  std::vector<int32_t> strides;
  std::vector<int32_t> planeSizes;
  const char* expected;  // code, plane count | strides | plane sizes | size
  const char* errors;
};

class VRequestImageTest : public testing::Test {
protected:
  const test::LocalFrame mFrame;
  test::LogCapture mLog;
};

class VRequestFormatTest : public VRequestImageTest, public testing::WithParamInterface<ImageCase> {};

TEST_P(VRequestFormatTest, ReadsFormatAndPlanes) {
  const ImageCase& c = GetParam();
  const jobject memory = test::newSharedMemory(9000);
  const test::ImageSpec spec = {c.format, c.width, c.height, c.strides, c.planeSizes, memory};
  EXPECT_EQ(c.expected, test::layoutText(convert(test::newImage(spec))));
  EXPECT_EQ(c.errors, test::errorText(mLog, kTag));
}

// clang-format off
const ImageCase kImageCases[] = {
    {"Nv21",            "NV21",           64, 48, {80, 40}, {5000, 2400}, "1 2 | 80 40 0 0 | 5000 2400 0 0 | 7400", ""},
    {"Nv12",            "NV12",           64, 48, {80, 40}, {5000, 2400}, "2 2 | 80 40 0 0 | 5000 2400 0 0 | 7400", ""},
    // YU12 and YV12 have the code of NV12 on purpose.
    {"Yu12",            "YU12",           64, 48, {80, 40}, {5000, 2400}, "2 2 | 80 40 0 0 | 5000 2400 0 0 | 7400", ""},
    {"Yv12",            "YV12",           64, 48, {80, 40}, {5000, 2400}, "2 2 | 80 40 0 0 | 5000 2400 0 0 | 7400", ""},
    {"MipiRaw10",       "MIPI_RAW10",     64, 48, {80},     {100},        "6 1 | 80 0 0 0 | 3840 0 0 0 | 3840", ""},
    {"MipiRaw10Larger", "MIPI_RAW10X",    64, 48, {80},     {3841, 7},    "6 1 | 80 0 0 0 | 3841 7 0 0 | 3841", ""},
    // Unlike MIPI_RAW10, MIPI_RAW12 deliberately keeps a plane size that is too small.
    {"MipiRaw12",       "MIPI_RAW12",     64, 48, {80},     {100},        "7 1 | 80 0 0 0 | 100 0 0 0 | 100", ""},
    {"Raw16",           "RAW16",          64, 48, {200},    {100},        "18 1 | 64 0 0 0 | 6144 0 0 0 | 6144", ""},
    {"Raw16LongTail",   "RAW16_LE10",     64, 48, {200, 3}, {6145},       "18 1 | 64 3 0 0 | 6145 0 0 0 | 6145", ""},
    {"RawSensor",       "RAW_SENSOR",     64, 48, {200},    {100},        "18 1 | 200 0 0 0 | 6144 0 0 0 | 6144", ""},
    {"RawSensorTail",   "RAW_SENSOR16",   64, 48, {200},    {6145},       "18 1 | 200 0 0 0 | 6145 0 0 0 | 6145", ""},
    {"Jpeg4",           "JPEG",           64, 48, {80},     {700, 9},     "24 1 | 80 0 0 0 | 700 9 0 0 | 700", ""},
    {"Jpeg10",          "JPEG567890",     64, 48, {80},     {700, 9},     "24 1 | 80 0 0 0 | 700 9 0 0 | 700", ""},
    {"Rgba",            "R8G8B8A8",       64, 48, {256},    {12288},      "25 1 | 256 0 0 0 | 12288 0 0 0 | 12288", ""},
    {"MipiOther",       "MIPI_RAW13",     64, 48, {80},     {100},        "0 1 | 80 0 0 0 | 100 0 0 0 | 100", "unknown format MIPI_RAW13\n"},
    {"Nv21Short",       "NV2",            64, 48, {80, 40}, {100, 50},    "0 1 | 80 40 0 0 | 100 50 0 0 | 100", "unknown format NV2\n"},
    {"NotAtTheStart",   " NV21",          64, 48, {80, 40}, {100, 50},    "0 1 | 80 40 0 0 | 100 50 0 0 | 100", "unknown format  NV21\n"},
    {"NoName",          nullptr,          64, 48, {80},     {100},        "0 1 | 80 0 0 0 | 100 0 0 0 | 100", "unknown format \n"},

    // NV formats only: the first plane's size is replaced if it equals or exceeds the memory's size. The
    // second plane's size is replaced if it is 0 or negative. The frame's size is the sum before these
    // corrections.
    {"WholeMemory",     "NV21", 64, 48, {80, 40}, {9000, 10}, "1 2 | 80 40 0 0 | 3840 10 0 0 | 9010", ""},
    {"BelowMemory",     "NV21", 64, 48, {80, 40}, {8999, 10}, "1 2 | 80 40 0 0 | 8999 10 0 0 | 9009", ""},
    {"AboveMemory",     "NV12", 64, 48, {80, 40}, {9001, 10}, "2 2 | 80 40 0 0 | 3840 10 0 0 | 9011", ""},
    {"NoSecondPlane",   "NV12", 64, 48, {80, 40}, {5000},     "2 2 | 80 40 0 0 | 5000 1920 0 0 | 5000", ""},
    {"NegativeSecond",  "NV21", 64, 48, {80, 40}, {5000, -1}, "1 2 | 80 40 0 0 | 5000 1920 0 0 | 4999", ""},
    {"RawWholeMemory",  "RAW_SENSOR", 64, 48, {80}, {9000},   "18 1 | 80 0 0 0 | 9000 0 0 0 | 9000", ""},
    // Arrays that are empty or too long.
    {"NothingGiven",    "NV21", 64, 48, {},       {},         "1 2 | 0 0 0 0 | 0 0 0 0 | 0", ""},
    {"MoreThanFour",    "NV21", 64, 48, {1, 2, 3, 4, 5}, {6, 7, 8, 9, 10}, "1 2 | 1 2 3 4 | 6 7 8 9 | 13", ""},
    // Sizes beyond int32_t are clamped.
    {"HugeRaw16",       "RAW16", 65536, 65536, {1},  {100},   "18 1 | 65536 0 0 0 | 2147483647 0 0 0 | 2147483647", ""},
    {"HugeNv21",        "NV21", 64, 65536, {65537}, {9000},   "1 2 | 65537 0 0 0 | 2147483647 2147483647 0 0 | 9000", ""},
    {"HugeSum",         "NV21", 64, 48, {80}, {kMax, kMax},   "1 2 | 80 0 0 0 | 3840 2147483647 0 0 | 2147483647", ""},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Formats, VRequestFormatTest, testing::ValuesIn(kImageCases), test::CaseName());

TEST_F(VRequestImageTest, AcceptsAnImageWithoutArrays) {
  jobject image = test::newSmallImage();
  test::setObjectField(image, "mRowStrides", "[I", nullptr);
  test::setObjectField(image, "mPlaneSizes", "[I", nullptr);
  EXPECT_EQ("1 2 | 0 0 0 0 | 0 0 0 0 | 0", test::layoutText(convert(image)));
  EXPECT_EQ("get int array failed, input is null\nget int array failed, input is null\n",
            test::errorText(mLog, kTag));
}

ino_t fileBehind(int fd) {
  struct stat status = {};
  EXPECT_EQ(0, fstat(fd, &status));
  return status.st_ino;
}

const native_handle_t& handleOf(jobject hardwareBuffer) {
  return *AHardwareBuffer_getNativeHandle(AHardwareBuffer_fromHardwareBuffer(env(), hardwareBuffer));
}

TEST_F(VRequestImageTest, OwnsADuplicateOfSharedMemory) {
  test::ImageSpec spec;
  spec.sharedMemory = test::newSharedMemory(4608);
  spec.hardwareBuffer = test::newHardwareBuffer(64, 48, 0x23);  // the shared memory takes precedence
  jobject image = test::newImage(spec);
  const int original = test::intField(spec.sharedMemory, "mFd");
  const ino_t file = fileBehind(original);
  const auto before = test::openDescriptors();
  {
    const VRequest request(env(), nullptr, test::javaList({image, image}), test::javaList({image}), nullptr);
    EXPECT_EQ(before + 3, test::openDescriptors());
    for (const AlgoFrameInfo& frame : {request.inputFrames()[1], request.outputFrames()[0]}) {
      EXPECT_NE(original, frame.fd[0]);
      EXPECT_EQ(file, fileBehind(frame.fd[0]));
      EXPECT_EQ(1, frame.fdCount);
      EXPECT_EQ(4608, frame.fdSize[0]);
      EXPECT_EQ(nullptr, frame.nativeHandle);
    }
  }
  EXPECT_EQ(before, test::openDescriptors());
  EXPECT_EQ(file, fileBehind(original));
  EXPECT_TRUE(mLog.contains("useShmem 1"));
}

TEST_F(VRequestImageTest, BorrowsTheDescriptorOfAHardwareBuffer) {
  test::ImageSpec spec;
  spec.strides = {80, 40};
  spec.planeSizes = {5000};
  spec.hardwareBuffer = test::newHardwareBuffer(64, 48, 0x23);
  const native_handle_t& handle = handleOf(spec.hardwareBuffer);
  const ino_t pixels = fileBehind(handle.data[1]);
  jobject image = test::newImage(spec);
  jobject other = test::newSmallImage();  // in shared memory: the request duplicates its descriptor
  const auto before = test::openDescriptors();
  {
    jobject inputs = test::javaList({image, other});
    const VRequest request(env(), nullptr, inputs, test::javaList({other, image}), nullptr);
    EXPECT_EQ(before + 2, test::openDescriptors());
    for (const AlgoFrameInfo& frame : {request.inputFrames()[0], request.outputFrames()[1]}) {
      EXPECT_EQ(handle.data[1], frame.fd[0]);
      EXPECT_EQ(1, frame.fdCount);
      EXPECT_EQ(5000, frame.fdSize[0]);  // the memory's size, so the first plane's size is corrected
      EXPECT_EQ("1 2 | 80 40 0 0 | 3840 1920 0 0 | 5000", test::layoutText(frame));
      ASSERT_NE(nullptr, frame.nativeHandle);
      EXPECT_EQ(handle.data[1], frame.nativeHandle->data[0]);
      EXPECT_EQ(handle.data[0], frame.nativeHandle->data[1]);
    }
    EXPECT_NE(request.inputFrames()[0].nativeHandle, request.outputFrames()[1].nativeHandle);
  }
  EXPECT_EQ(before, test::openDescriptors());
  EXPECT_EQ(pixels, fileBehind(handle.data[1]));
}

// Converts an image with a hardware buffer whose handle has the words 1000, 1001, ... Returns the frame's
// descriptor, and the handle as copied to the frame:
// "descriptor | version numFds numInts | words 0, 1, 2, 254 and 255".
std::string copyOf(size_t words, int numInts) {
  test::ImageSpec spec;
  std::vector<int32_t> values(words);
  std::iota(values.begin(), values.end(), 1000);
  spec.hardwareBuffer = test::newHardwareBuffer(0, values);
  const_cast<native_handle_t&>(handleOf(spec.hardwareBuffer)).numInts = numInts;
  const VRequest request(env(), nullptr, test::javaList({test::newImage(spec)}), nullptr, nullptr);
  const AlgoNativeHandle& handle = *request.inputFrames().at(0).nativeHandle;
  std::ostringstream text;
  text << request.inputFrames()[0].fd[0] << " | " << handle.version << " " << handle.numFds << " "
       << handle.numInts << " |";
  for (int i : {0, 1, 2, 254, 255}) text << " " << handle.data[i];
  return text.str();
}

TEST_F(VRequestImageTest, CopiesTheHandleAndSwapsItsFirstWords) {
  EXPECT_EQ("-1 | 12 0 0 | 0 0 0 0 0", copyOf(0, 0));
  EXPECT_EQ("-1 | 12 0 1 | 0 1000 0 0 0", copyOf(1, 1));
  EXPECT_EQ("1001 | 12 0 2 | 1001 1000 0 0 0", copyOf(2, 2));
  EXPECT_EQ("1001 | 12 0 255 | 1001 1000 1002 1254 0", copyOf(255, 255));
  EXPECT_EQ("1001 | 12 0 256 | 0 0 0 0 0", copyOf(256, 256)) << "a full handle";
  EXPECT_EQ("-1 | 12 0 -3 | 0 0 0 0 0", copyOf(3, -3)) << "a negative number of words";
}

TEST_F(VRequestImageTest, AcceptsAnImageWithoutMemory) {
  test::ImageSpec closed;
  closed.hardwareBuffer = test::newHardwareBuffer(64, 48, 0x23);
  test::call(closed.hardwareBuffer, "close", "()V");
  for (const test::ImageSpec& spec : {test::ImageSpec(), closed}) {
    mLog.clear();
    const AlgoFrameInfo frame = convert(test::newImage(spec));
    // The memory has 0 bytes, so the first plane's size is replaced.
    EXPECT_EQ("64x48 1 2 | 64 64 0 0 | 3072 1536 0 0 | 4608 | 48 0 0 0 | 0 0 0 0 0 | 0 0 0 0",
              test::frameText(frame));
    EXPECT_EQ(nullptr, frame.nativeHandle);
    EXPECT_EQ("convert image failed, invalid image data\n", test::errorText(mLog, kTag));
    EXPECT_TRUE(mLog.contains("useShmem 0"));
  }
}

}  // namespace
}  // namespace orlu
