#include <gtest/gtest.h>

#include "camera_metadata_parser_getter_table.h"
#include "case_name.h"
#include "error_lines.h"
#include "jni_table.h"

namespace orlu::test {
namespace {

// ---- Lookups

class CameraMetadataParserLookupTest : public testing::Test {
protected:
  CameraMetadataParserLookupTest() { setTag(mMetadata, kSizes, javaInts({1, 2})); }

  static constexpr char kSizes[] = "com.orlu.image_sizes";
  LocalFrame mFrame;
  P mParser{env()};
  LogCapture mLog;
  jobject mMetadata = newMetadata();
  jclass mBoxed = findClass("[Ljava/lang/Integer;");
};

TEST_F(CameraMetadataParserLookupTest, IsSilentAboutNothing) {
  EXPECT_EQ(nullptr, mParser.getMetadataObjectFromCaptureResult(nullptr, kSizes, mBoxed));
  EXPECT_EQ(nullptr, mParser.getMetadataObjectFromCaptureResult(nullptr, nullptr, kSizes, mBoxed));
  EXPECT_EQ(nullptr, mParser.getMetadataObjectFromOrluAlgorithmParameter(nullptr, kSizes, mBoxed));
  EXPECT_EQ(nullptr, mParser.getMetadataObjectFromCharacteristics(nullptr, kSizes, mBoxed));
  EXPECT_EQ(nullptr,
            mParser.getMetadataObjectFromCaptureResult(newCaptureResult(mMetadata), kSizes, nullptr));
  EXPECT_EQ(Lines(), errorLines(mLog));
}

// Array keys are made with the boxed class, so that what a capture result answers is read element by element.
TEST_F(CameraMetadataParserLookupTest, KeysOfArraysAreBoxed) {
  for (const Getter& getter : kGetters) {
    const std::string name = getter.name;
    const bool isArray = name.find("Array") != std::string::npos && name != "getArrayBytes";
    if (!isArray || getter.source == kParameter) continue;
    jobject source = sourceOf(getter, true);
    const JniTable table(env());
    readBy(mParser, getter, {getter.key, source, nullptr, 4});
    const int elements = name == "getStringArray" ? 2 : name == "getIntFaceArray" ? 8 : 3;
    EXPECT_EQ(elements, table.calls("GetObjectArrayElement")) << name;
  }
}

// Whatever was not found, getters answer, and what they can't read they leave alone.
TEST_F(CameraMetadataParserLookupTest, CopesWithEveryMissingMember) {
  Lines lookups;
  {
    const JniTable table(env());
    mParser.initFromEnv(env(), false);
    lookups = table.lookups();
  }
  for (const std::string& lookup : lookups) {
    const LocalFrame frame;
    P parser;
    {
      JniTable table(env());
      table.hide(lookup);
      parser.initFromEnv(env(), false);
    }
    for (const Getter& getter : kGetters) {
      SCOPED_TRACE(lookup + " " + getter.name);
      const bool isOverridable = getter.source == kResult;
      jobject parameter = isOverridable ? compositionWith(getter.key, getter.over.make()) : nullptr;
      for (jobject each : {parameter, jobject()}) {
        const std::string read = readBy(parser, getter, {getter.key, sourceOf(getter, true), each, 4});
        EXPECT_TRUE(read[0] == '0' || read == std::string("-1: ") + getter.untouched) << read;
      }
    }
    parser.getMetadata(newCaptureResult(mMetadata));
  }
}

// ---- Serialising

std::vector<uint8_t> bytesOf(jobject array) {
  std::vector<uint8_t> values(static_cast<size_t>(env()->GetArrayLength(static_cast<jarray>(array))));
  env()->GetByteArrayRegion(static_cast<jbyteArray>(array), 0, static_cast<jsize>(values.size()),
                            reinterpret_cast<jbyte*>(values.data()));
  return values;
}

TEST(CameraMetadataParserMetadataTest, IsTheParcelsBytes) {
  const LocalFrame frame;
  P parser(env());
  jobject metadata = newMetadata();
  setTag(metadata, "android.sensor.timestamp", javaLong(5));
  setTag(metadata, "android.scaler.cropRegion", javaRect({1, 2, 3, 4}));
  jclass parcels = findClass("android/os/Parcel");
  jobject parcel = env()->CallStaticObjectMethod(
      parcels, env()->GetStaticMethodID(parcels, "obtain", "()Landroid/os/Parcel;"));
  expectNoException("obtain");
  env()->CallVoidMethod(
      metadata,
      env()->GetMethodID(env()->GetObjectClass(metadata), "writeToParcel", "(Landroid/os/Parcel;I)V"), parcel,
      0);
  expectNoException("writeToParcel");
  const std::vector<uint8_t> expected = bytesOf(callObject(parcel, "marshall", "()[B"));
  ASSERT_GT(expected.size(), 50U);

  jobject result = newCaptureResult(metadata);
  const LogCapture log;
  const JniTable table(env());
  EXPECT_EQ(expected, parser.getMetadata(result));
  EXPECT_EQ(expected, parser.getMetadata(result));
  EXPECT_EQ(Lines(), errorLines(log));
  EXPECT_EQ(0, table.localReferences());
  EXPECT_EQ(0, table.heldArrays());
}

struct FailingStep {
  const char* name;
  const char* hidden;
  jobject (*source)();
  Lines messages;
};

class CameraMetadataParserMetadataFailureTest : public testing::TestWithParam<FailingStep> {};

TEST_P(CameraMetadataParserMetadataFailureTest, IsLoggedAndAnswersNothing) {
  const LocalFrame frame;
  jobject source = GetParam().source();
  JniTable table(env());
  table.hide(GetParam().hidden);
  P parser(env());
  const LogCapture log;
  EXPECT_TRUE(parser.getMetadata(source).empty());
  EXPECT_FALSE(env()->ExceptionCheck());
  Lines expected;
  for (const std::string& message : GetParam().messages) expected.push_back(parserLine(message));
  EXPECT_EQ(expected, errorLines(log));
}

jobject filledResult() {
  jobject metadata = newMetadata();
  setTag(metadata, "android.sensor.timestamp", javaLong(5));
  return newCaptureResult(metadata);
}

// clang-format off
const FailingStep kFailingSteps[] = {
    {"NoResult",    "", [] { return jobject(); },               {"get metadata failed, input is null"}},
    {"NoField",     "android/hardware/camera2/CaptureResult.mResults", filledResult,
     {"cameraNativeFiled is null", "camerametadataNative is null"}},
    {"NoCaptureResult", "", [] { return javaString("result"); },
     {"cameraNativeFiled is null", "camerametadataNative is null"}},
    {"NoMetadata",  "", [] { return newCaptureResult(nullptr); }, {"camerametadataNative is null"}},
    {"NoParcels",   "android/os/Parcel",          filledResult, {"parcel is null", "metadata is null"}},
    {"NoParcel",    "android/os/Parcel.obtain",   filledResult, {"parcel is null", "metadata is null"}},
    {"NoBytes",     "android/os/Parcel.marshall", filledResult, {"metadata is null"}},
    {"NotWritten",  "android/hardware/camera2/impl/CameraMetadataNative.writeToParcel", filledResult, {}},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(Steps, CameraMetadataParserMetadataFailureTest, testing::ValuesIn(kFailingSteps),
                         CaseName());

}  // namespace
}  // namespace orlu::test
