#include <gtest/gtest.h>

#include <algorithm>

#include "camera_metadata_parser_getter_table.h"
#include "case_name.h"
#include "jni_table.h"

namespace orlu::test {
namespace {

class CameraMetadataParserGetterTest : public testing::TestWithParam<Getter> {
protected:
  std::string read(jobject source, jobject parameter = nullptr, const char* key = GetParam().key) {
    mLog.clear();
    return readBy(mParser, mGetter.read, {key, source, parameter, 4});
  }
  void expectValue(jobject source, jobject parameter) {
    EXPECT_EQ(mValue, read(source, parameter));
    EXPECT_EQ(Lines(), parserErrors(mLog));
  }
  void expectMissing(const char* what, jobject source, jobject parameter = nullptr) {
    EXPECT_EQ("-1:", read(source, parameter)) << what;
    EXPECT_EQ(Lines{mMissing}, parserErrors(mLog)) << what;
  }
  bool isOverridable() const { return mGetter.source == kResult; }
  jobject full() const { return sourceOf(mGetter, true); }
  jobject empty() const { return sourceOf(mGetter, false); }

  LocalFrame mFrame;
  P mParser{env()};
  LogCapture mLog;
  const Getter& mGetter = GetParam();
  const std::string mValue = std::string("0: ") + mGetter.text;
  std::string missing(const std::string& operation, const std::string& key = GetParam().key) const {
    return operation + "() get " + key + " is null";
  }
  const std::string mMissing = missing(mGetter.name);
};

TEST_P(CameraMetadataParserGetterTest, ReadsAValue) {
  expectValue(full(), nullptr);
  if (!isOverridable()) return;
  jobject over = compositionWith(mGetter.key, mGetter.value());
  expectValue(full(), newComposition());
  expectValue(empty(), over);
  expectValue(nullptr, over);
  expectMissing("a composition as a capture result", over);
}

TEST_P(CameraMetadataParserGetterTest, ReportsAMissingValue) {
  expectMissing("an absent tag", empty());
  expectMissing("no source", nullptr);
  expectMissing("an object of another class", javaString(mGetter.key), javaString(mGetter.key));
  if (isOverridable()) expectMissing("an empty composition", empty(), newComposition());
  mParser.initFromEnv(env(), true);
  if (mGetter.source == kParameter) expectMissing("a parser without compositions", full());
  mParser.initFromEnv(nullptr, false);
  expectMissing("a parser without an environment", full(), newComposition());
}

TEST_P(CameraMetadataParserGetterTest, RejectsAValueOfAnotherType) {
  if (mGetter.source == kCharacteristics) return;  // characteristics convert to the requested type
  jobject wrong = compositionWith(mGetter.key, mGetter.wrong());
  EXPECT_EQ("-1:", read(isOverridable() ? full() : wrong, wrong)) << "the composition takes precedence";
  EXPECT_EQ(Lines{std::string(mGetter.name) + "() wrong object type " + mGetter.key}, parserErrors(mLog));
  mParser.initFromEnv(env(), true);
  EXPECT_EQ(isOverridable() ? mValue : "-1:", read(full(), wrong)) << "a parser without compositions";
}

TEST_P(CameraMetadataParserGetterTest, ClearsExceptionsOfALookup) {
  const std::string thrown = missing("getMetadataObjectFromOrluAlgorithmParameter");
  if (mGetter.source == kParameter) {
    EXPECT_EQ("-1:", read(newThrowingComposition()));
    EXPECT_EQ((Lines{thrown, mMissing}), parserErrors(mLog))
        << "one line from the lookup, one from the getter";
    return;
  }
  const std::string lookup =
      isOverridable() ? "getMetadataObjectFromCaptureResult" : "getMetadataObjectFromCharacteristics";
  const std::string tag = "no.such.tag";
  EXPECT_EQ("-1:", read(full(), nullptr, tag.c_str()));
  EXPECT_EQ((Lines{missing(lookup, tag), missing(mGetter.name, tag)}), parserErrors(mLog));
  if (!isOverridable()) return;
  EXPECT_EQ(mValue, read(full(), newThrowingComposition())) << "the capture result must be read next";
  EXPECT_EQ(Lines{thrown}, parserErrors(mLog));
}

INSTANTIATE_TEST_SUITE_P(Getters, CameraMetadataParserGetterTest, testing::ValuesIn(kGetters), CaseName());

// ---- Composition values that are only partly read

struct SpecialCase : NamedCase {
  Reader read;
  int capacity;
  jobject (*make)();
  const char* text;
};

class CameraMetadataParserSpecialTest : public testing::TestWithParam<SpecialCase> {};

TEST_P(CameraMetadataParserSpecialTest, ReadsAsMuchAsPossible) {
  const SpecialCase& c = GetParam();
  const LocalFrame frame;
  P parser(env());
  const LogCapture log;
  jobject composition = compositionWith("key", c.make());
  EXPECT_EQ(c.text, readBy(parser, c.read, {"key", composition, composition, c.capacity}));
  EXPECT_EQ(Lines(), parserErrors(log));
}

jobject countedFaces(int count) {
  std::vector<__tagOrluRect> rects;
  for (int i = 0; i < count; ++i) rects.push_back({i, i + 1, i + 2, i + 3});
  return javaFaces(rects);
}

jobject countingInts(int count) {
  std::vector<int32_t> values;
  for (int i = 1; i <= count; ++i) values.push_back(i);
  return javaInts(values);
}

jobject placeWithoutAltitude() {
  return newObject("android/location/Location", "(Ljava/lang/String;)V", javaString("network"));
}

constexpr char kFace[] = "android/hardware/camera2/params/Face";
constexpr char kRegion[] = "android/hardware/camera2/params/MeteringRectangle";
// clang-format off
// The ten faces that fit into the face record.
#define TEN_FACES " 0 1 2 3 1 2 3 4 2 3 4 5 3 4 5 6 4 5 6 7 5 6 7 8 6 7 8 9 7 8 9 10 8 9 10 11 9 10 11 12"
#define FORTY_INTS " 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20" \
                   " 21 22 23 24 25 26 27 28 29 30 31 32 33 34 35 36 37 38 39 40"
#define JAVA(...) [] { return __VA_ARGS__; }
const SpecialCase kSpecialCases[] = {
    {"NullInt",            reader<&P::getIntArray>, 4, JAVA(javaArray(kInteger, {nullptr, javaInt(2)})), "0: # 2"},
    {"NullString",         reader<&P::getStringArray>, 4, JAVA(javaArray("java/lang/String", {nullptr, javaString("b")})), "0: first b"},
    {"NullFace",           reader<&P::getFaceInfo>, 4, JAVA(javaArray(kFace, {nullptr, nullptr})), "0: 2"},
    {"NullIntInFace",      reader<&P::getIntFaceArray>, 4, JAVA(javaArray(kInteger, {javaInt(1), nullptr, javaInt(3), javaInt(4)})), "0: 1 1 # 3 4"},
    {"NullRegion",         reader<&P::getMeteringRectangle>, 4, JAVA(javaArray(kRegion, {nullptr})), "0:"},
    // Reading an empty array fails, without a log line.
    {"NoRegions",          reader<&P::getMeteringRectangle>, 4, JAVA(javaRegions({}, 1)), "-1:"},
    {"TwoOfThreeInts",     reader<&P::getIntArray>, 2,         JAVA(countingInts(3)), "0: 1 2"},
    {"OneOfTwoBoxed",      reader<&P::getIntArrayOrlu>, 1, JAVA(javaArray(kInteger, {javaInt(1), javaInt(2)})), "0: 1"},
    {"IntsWithoutRoom",    reader<&P::getIntArray>, -1,        JAVA(countingInts(3)), "0:"},
    // A string that fills its buffer has no terminating zero.
    {"LongString",         reader<&P::getString>, 4,           JAVA(javaString("abcdef")), "0: abcd##"},
    {"StringWithoutRoom",  reader<&P::getString>, 0,           JAVA(javaString("abc")), "0:"},
    {"LongBytes",          reader<&P::getArrayBytes>, 4, JAVA(javaBytes({'a', 'b', 'c', 'd', 'e'})), "0: abcd##"},
    {"LongStringOrlu",     reader<&P::getStringOrlu>, 4,       JAVA(javaString("abcdef")), "0: abcd##"},
    // The count includes faces that do not fit.
    {"FiveFacesInTwo",     reader<&P::getFaceInfo>, 2,         JAVA(countedFaces(5)), "0: 5 0 1 2 3 1 2 3 4"},
    {"FacesPastTheRecord", reader<&P::getFaceInfo>, 12,        JAVA(countedFaces(12)), "0: 12" TEN_FACES},
    {"FiveFacesOrlu",      reader<&P::getFaceInfoOrlu>, 2,     JAVA(countedFaces(5)), "0: 5 0 1 2 3 1 2 3 4"},
    {"TenIntsInOneFace",   reader<&P::getIntFaceArray>, 1,     JAVA(countingInts(10)), "0: 2 1 2 3 4"},
    {"IntsPastTheRecord",  reader<&P::getIntFaceArray>, 13,    JAVA(countingInts(52)), "0: 13" FORTY_INTS},
    {"NoAltitude",         reader<&P::getGpsLocation>, 4,      JAVA(placeWithoutAltitude()), "0: 0 0 0 0 0"},
};
// clang-format on
#undef JAVA

INSTANTIATE_TEST_SUITE_P(Values, CameraMetadataParserSpecialTest, testing::ValuesIn(kSpecialCases),
                         CaseName());

}  // namespace
}  // namespace orlu::test
