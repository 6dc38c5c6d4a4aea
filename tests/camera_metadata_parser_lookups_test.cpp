#include <gtest/gtest.h>

#include "camera_metadata_parser_getter_table.h"
#include "jni_table.h"

namespace orlu::test {
namespace {

jobject filledMetadata() {
  jobject metadata = newMetadata();
  setTag(metadata, "android.sensor.timestamp", javaLong(5));
  setTag(metadata, "android.scaler.cropRegion", javaRect({1, 2, 3, 4}));
  return metadata;
}

jobject filledResult() {
  return newCaptureResult(filledMetadata());
}

class CameraMetadataParserLookupTest : public testing::Test {
protected:
  LocalFrame mFrame;
  P mParser{env()};
  LogCapture mLog;
};

// Keys of arrays have a boxed class, such as Integer[], so arrays are read element by element.
TEST_F(CameraMetadataParserLookupTest, KeysOfArraysAreBoxed) {
  for (const Getter& getter : kGetters) {
    const std::string name = getter.name;
    const bool isArray = name.find("Array") != std::string::npos && name != "getArrayBytes";
    if (!isArray || getter.source == kParameter) continue;
    jobject source = sourceOf(getter, true);
    const JniTable table(env());
    getter.read(mParser, {getter.key, source, nullptr, 4});
    const int elements = name == "getStringArray" ? 2 : name == "getIntFaceArray" ? 8 : 3;
    EXPECT_EQ(elements, table.calls("GetObjectArrayElement")) << name;
  }
}

Lines allLookups() {
  const JniTable table(env());
  P().initFromEnv(env(), false);
  return table.lookups();
}

// Even if a Java class or member is missing, every getter must return. It must not change an output that it
// can't read.
TEST_F(CameraMetadataParserLookupTest, CopesWithEveryMissingMember) {
  for (const std::string& lookup : allLookups()) {
    const LocalFrame frame;
    P parser = parserWithout(lookup);
    for (const Getter& getter : kGetters) {
      jobject parameter = compositionWith(getter.key, getter.value());
      for (jobject each : {parameter, jobject()}) {
        const std::string text = readBy(parser, getter.read, {getter.key, sourceOf(getter, true), each, 4});
        EXPECT_TRUE(text[0] == '0' || text == "-1:") << lookup << " " << getter.name << " " << text;
      }
    }
    parser.getMetadata(filledResult());
  }
}

// If a frame's result or composition has the right class, the parser checks the class only once. It never
// uses an object of a wrong class.
TEST_F(CameraMetadataParserLookupTest, ChecksEachFrameOnce) {
  const std::vector<jobject> results = {filledResult(), javaString("result"), filledResult()};
  const std::vector<jobject> compositions = {compositionWith("i", javaInt(4)), javaString("composition"),
                                             compositionWith("i", javaInt(4))};
  mParser.checkFramesOnce(results, compositions);
  const JniTable table(env());
  for (int round = 1; round <= 3; ++round) {
    for (size_t i = 0; i < results.size(); ++i) {
      int32_t value = 0;
      int64_t timestamp = 0;
      mParser.getInt(value, "i", results[i], compositions[i]);
      mParser.getLong(timestamp, "android.sensor.timestamp", results[i], compositions[i]);
      EXPECT_EQ(i == 1 ? 0 : 4, value);
      EXPECT_EQ(i == 1 ? 0 : 5, timestamp);
    }
  }
  // Each of the two good frames: the parser checks two objects once, and two values in all three rounds.
  // The bad frame: both reads check both objects in all three rounds.
  EXPECT_EQ(2 * 2 + 3 * 2 * 2 + 3 * 2 * 2, table.calls("IsInstanceOf"));
}

TEST_F(CameraMetadataParserLookupTest, SerialisesAsAParcel) {
  jobject metadata = filledMetadata();
  const std::vector<uint8_t> expected = parcelBytes(metadata);
  ASSERT_GT(expected.size(), 50U);

  jobject result = newCaptureResult(metadata);
  const JniTable table(env());
  EXPECT_EQ(expected, mParser.getMetadata(result));
  EXPECT_EQ(expected, mParser.getMetadata(result));
  EXPECT_EQ(Lines(), parserErrors(mLog));
  EXPECT_EQ(0, table.localReferences());
  EXPECT_EQ(0, table.heldArrays());
}

struct FailingStep {
  const char* hidden;
  jobject (*source)();
  Lines messages;
};

TEST_F(CameraMetadataParserLookupTest, SerialisesNothingAfterAFailingStep) {
  const std::string noField = "cameraNativeFiled is null";
  const std::string noMetadata = "camerametadataNative is null";
  // clang-format off
  const FailingStep steps[] = {
      {"no source",                  [] { return jobject(); },                 {"get metadata failed, input is null"}},
      {"no capture result",          [] { return javaString("result"); },      {noField, noMetadata}},
      {"no metadata",                [] { return newCaptureResult(nullptr); }, {noMetadata}},
      {"android/hardware/camera2/CaptureResult.mResults", filledResult,        {noField, noMetadata}},
      {"android/os/Parcel",          filledResult,                             {"parcel is null", "metadata is null"}},
      {"android/os/Parcel.marshall", filledResult,                             {"metadata is null"}},
      {"android/hardware/camera2/impl/CameraMetadataNative.writeToParcel", filledResult, {}},
  };
  // clang-format on
  for (const FailingStep& step : steps) {
    jobject source = step.source();
    JniTable table(env());
    table.hide(step.hidden);
    mParser.initFromEnv(env(), false);
    mLog.clear();
    EXPECT_TRUE(mParser.getMetadata(source).empty()) << step.hidden;
    EXPECT_FALSE(env()->ExceptionCheck());
    Lines expected;
    for (const std::string& message : step.messages) expected.push_back("getMetadata() " + message);
    EXPECT_EQ(expected, parserErrors(mLog)) << step.hidden;
  }
}

}  // namespace
}  // namespace orlu::test
