#include <gtest/gtest.h>

#include <algorithm>

#include "camera_metadata_parser_getter_table.h"
#include "case_name.h"
#include "error_lines.h"
#include "jni_table.h"

namespace orlu::test {
namespace {

class CameraMetadataParserGetterTest : public testing::TestWithParam<Getter> {
protected:
  std::string read(jobject source, jobject parameter = nullptr, const char* key = nullptr) {
    mLog.clear();
    return readBy(mParser, mGetter, {key == nullptr ? mGetter.key : key, source, parameter, 4});
  }
  bool isOverridable() const { return mGetter.source == kResult; }
  jobject over() const { return compositionOver(mGetter); }

  LocalFrame mFrame;
  P mParser{env()};
  LogCapture mLog;
  const Getter& mGetter = GetParam();
  const std::string mValue = std::string("0: ") + mGetter.value.text;
  const std::string mNothing = std::string("-1: ") + mGetter.untouched;
  const std::string mMissing = parserLine(std::string("get ") + mGetter.key + " is null");
};

TEST_P(CameraMetadataParserGetterTest, ReadsAValue) {
  EXPECT_EQ(mValue, read(sourceOf(mGetter, true)));
  EXPECT_EQ(Lines(), errorLines(mLog));
  if (!isOverridable()) return;
  EXPECT_EQ(mValue, read(sourceOf(mGetter, true), newComposition())) << "an empty composition";
  EXPECT_EQ(Lines(), errorLines(mLog));
}

TEST_P(CameraMetadataParserGetterTest, PrefersTheComposition) {
  if (!isOverridable()) return;
  const std::string value = std::string("0: ") + mGetter.over.text;
  EXPECT_EQ(value, read(sourceOf(mGetter, true), over()));
  EXPECT_EQ(value, read(sourceOf(mGetter, false), over()));
  EXPECT_EQ(value, read(nullptr, over()));
  EXPECT_EQ(Lines(), errorLines(mLog));
  mParser.initFromEnv(env(), true);
  EXPECT_EQ(mValue, read(sourceOf(mGetter, true), over())) << "a parser without the composition class";
}

TEST_P(CameraMetadataParserGetterTest, TellsAMissingValue) {
  const auto expectMissing = [&](const char* what, jobject source, jobject parameter = nullptr) {
    EXPECT_EQ(mNothing, read(source, parameter)) << what;
    EXPECT_EQ(Lines{mMissing}, errorLines(mLog)) << what;
  };
  expectMissing("an absent tag", sourceOf(mGetter, false));
  expectMissing("no source", nullptr);
  expectMissing("an object of another class", javaString(mGetter.key), javaString(mGetter.key));
  if (isOverridable()) {
    expectMissing("an empty composition", sourceOf(mGetter, false), newComposition());
    expectMissing("a composition as a capture result", over());
  }
  mParser.initFromEnv(env(), true);
  if (mGetter.source == kParameter) expectMissing("a parser without the class", sourceOf(mGetter, true));
  mParser.initFromEnv(nullptr, false);
  expectMissing("a parser without an environment", sourceOf(mGetter, true), newComposition());
}

TEST_P(CameraMetadataParserGetterTest, LeavesAValueOfAnotherTypeAlone) {
  if (mGetter.wrong == nullptr) return;  // a capture result answers in the type that it is asked for
  jobject wrong = compositionWith(mGetter.key, mGetter.wrong());
  EXPECT_EQ(mNothing, read(isOverridable() ? sourceOf(mGetter, true) : wrong, wrong));
  EXPECT_EQ(Lines{parserLine(std::string("wrong object type ") + mGetter.key)}, errorLines(mLog));
}

TEST_P(CameraMetadataParserGetterTest, ClearsWhatALookupThrows) {
  if (mGetter.source == kParameter) {
    EXPECT_EQ(mNothing, read(newThrowingComposition()));
    EXPECT_EQ((Lines{mMissing, mMissing}), errorLines(mLog));
    return;
  }
  const std::string unknown = parserLine("get no.such.tag is null");
  EXPECT_EQ(mNothing, read(sourceOf(mGetter, true), nullptr, "no.such.tag"));
  EXPECT_EQ((Lines{unknown, unknown}), errorLines(mLog)) << "one for the lookup, one for the getter";
  if (!isOverridable()) return;
  EXPECT_EQ(mValue, read(sourceOf(mGetter, true), newThrowingComposition()))
      << "asks the capture result next";
  EXPECT_EQ(Lines{mMissing}, errorLines(mLog));
}

TEST_P(CameraMetadataParserGetterTest, TakesNoMoreElementsThanThereIsRoomFor) {
  const std::string sevens = "7 7 7 7 7";
  const bool isArray = std::string(mGetter.name).find("Array") != std::string::npos;
  if (!isArray || mGetter.untouched != sevens) return;
  const auto expectElements = [&](const std::string& all, jobject source, jobject parameter) {
    for (const int capacity : {-1, 0, 1, 2, 3}) {
      std::istringstream elements(all);
      std::string expected = "0:";
      for (std::string element; elements >> element;) {
        const auto count = std::count(expected.begin(), expected.end(), ' ');
        expected += " " + (count < capacity ? element : "7");
      }
      EXPECT_EQ(expected, readBy(mParser, mGetter, {mGetter.key, source, parameter, capacity})) << capacity;
    }
  };
  expectElements(mGetter.value.text, sourceOf(mGetter, true), nullptr);
  if (isOverridable()) expectElements(mGetter.over.text, nullptr, over());
}

TEST_P(CameraMetadataParserGetterTest, LeavesNoReferenceBehind) {
  std::vector<std::pair<jobject, jobject>> sources = {
      {sourceOf(mGetter, true), nullptr},
      {sourceOf(mGetter,                false),      nullptr},
      {nullptr,         nullptr        }
  };
  if (isOverridable()) {
    for (jobject parameter : {over(), newComposition(), newThrowingComposition()}) {
      sources.emplace_back(sourceOf(mGetter, true), parameter);
    }
  }
  if (mGetter.source == kParameter) sources.emplace_back(newThrowingComposition(), nullptr);
  if (mGetter.wrong != nullptr) {
    jobject wrong = compositionWith(mGetter.key, mGetter.wrong());
    sources.emplace_back(wrong, wrong);
  }
  for (const auto& [source, parameter] : sources) read(source, parameter);

  JniTable table(env());
  for (const auto& [source, parameter] : sources) {
    read(source, parameter);
    EXPECT_EQ(0, table.localReferences());
    EXPECT_EQ(0, table.heldArrays());
  }
}

INSTANTIATE_TEST_SUITE_P(Getters, CameraMetadataParserGetterTest, testing::ValuesIn(kGetters), CaseName());

// ---- Values in a composition that are read in part

struct SpecialCase {
  const char* name;
  const char* getter;
  int capacity;
  jobject (*make)();
  const char* text;
};

class CameraMetadataParserSpecialTest : public testing::TestWithParam<SpecialCase> {};

TEST_P(CameraMetadataParserSpecialTest, IsReadAsFarAsItGoes) {
  const SpecialCase& c = GetParam();
  const auto* getter = std::find_if(std::begin(kGetters), std::end(kGetters),
                                    [&](const Getter& each) { return std::string(each.name) == c.getter; });
  ASSERT_NE(std::end(kGetters), getter);
  const LocalFrame frame;
  P parser(env());
  const LogCapture log;
  jobject composition = compositionWith(getter->key, c.make());
  jobject source = getter->source == kParameter ? composition : nullptr;
  EXPECT_EQ(c.text, readBy(parser, *getter, {getter->key, source, composition, c.capacity}));
  EXPECT_EQ(Lines(), errorLines(log));
}

// An array of null and `second`.
jobject nullAnd(const char* element, jobject second) {
  return javaArray((std::string("java/lang/") + element).c_str(), {nullptr, second});
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
// The record has room for ten.
#define TEN_FACES ", 0 1 2 3, 1 2 3 4, 2 3 4 5, 3 4 5 6, 4 5 6 7, 5 6 7 8, 6 7 8 9, 7 8 9 10, " \
                  "8 9 10 11, 9 10 11 12"
#define TEN_INT_FACES ", 1 2 3 4, 5 6 7 8, 9 10 11 12, 13 14 15 16, 17 18 19 20, 21 22 23 24, 25 26 27 28, " \
                      "29 30 31 32, 33 34 35 36, 37 38 39 40"
#define JAVA(...) [] { return __VA_ARGS__; }
const SpecialCase kSpecialCases[] = {
    {"NullInt",             "getIntArray",      4, JAVA(nullAnd("Integer", javaInt(2))), "0: 7 2 7 7 7"},
    {"NullFloat",           "getFloatArray",    4, JAVA(nullAnd("Float", javaFloat(2))), "0: 7 2 7 7 7"},
    {"NullDouble",          "getDoubleArray",   4, JAVA(nullAnd("Double", javaDouble(2))), "0: 7 2 7 7 7"},
    {"NullIntOrlu",         "getIntArrayOrlu",  4, JAVA(nullAnd("Integer", javaInt(2))), "0: 7 2 7 7 7"},
    {"NullString",          "getStringArray",   4, JAVA(nullAnd("String", javaString("b"))), "0: first b"},
    {"NullFace",            "getFaceInfo",      4, JAVA(javaArray(kFace, {nullptr, nullptr})), "0: 2"},
    {"NullIntInFace",       "getIntFaceArray",  4,
     JAVA(javaArray(kInteger, {javaInt(1), nullptr, javaInt(3), javaInt(4)})), "0: 1, 1 7 3 4"},
    {"NullRegion", "getMeteringRectangle", 4, JAVA(javaArray(kRegion, {nullptr})), "0: 7 7 7 7 7"},
    {"NoInts",              "getIntArray",      4, JAVA(javaInts({})), "0: 7 7 7 7 7"},
    {"NoStrings",           "getStringArray",   4, JAVA(javaStrings({})), "0: first"},
    {"NoFaces",             "getFaceInfo",      4, JAVA(countedFaces(0)), "0: 0"},
    // An empty array is a failure without a line here.
    {"NoRegions", "getMeteringRectangle", 4, JAVA(javaRegions({}, 1)), "-1: 7 7 7 7 7"},
    {"NoRegionsOrlu", "getMeteringRectangleOrlu", 4, JAVA(javaRegions({}, 1)), "-1: 7 7 7 7"},
    // No terminating zero when the text fills its room.
    {"FullString",          "getString",        4, JAVA(javaString("abcd")), "0: abcd##"},
    {"LongString",          "getString",        4, JAVA(javaString("abcdef")), "0: abcd##"},
    {"EmptyString",         "getString",        4, JAVA(javaString("")), "0: ....##"},
    {"RoomlessString",      "getString",        0, JAVA(javaString("abc")), "0: ######"},
    {"LongBytes",           "getArrayBytes",    4, JAVA(javaBytes({'a', 'b', 'c', 'd', 'e'})), "0: abcd##"},
    {"LongStringOrlu",      "getStringOrlu",    4, JAVA(javaString("abcdef")), "0: abcd##"},
    // The count is the camera's, whatever fits.
    {"FiveFacesInTwo",      "getFaceInfo",      2, JAVA(countedFaces(5)), "0: 5, 0 1 2 3, 1 2 3 4"},
    {"FacesWithoutRoom",    "getFaceInfo",      0, JAVA(countedFaces(2)), "0: 2"},
    {"FacesPastTheRecord",  "getFaceInfo",     12, JAVA(countedFaces(12)), "0: 12" TEN_FACES},
    {"FiveFacesOrlu",       "getFaceInfoOrlu",  2, JAVA(countedFaces(5)), "0: 5, 0 1 2 3, 1 2 3 4"},
    {"ThreeInts",           "getIntFaceArray",  4, JAVA(countingInts(3)), "0: 0"},
    {"TenInts",             "getIntFaceArray",  4, JAVA(countingInts(10)), "0: 2, 1 2 3 4, 5 6 7 8"},
    {"TenIntsInOne",        "getIntFaceArray",  1, JAVA(countingInts(10)), "0: 2, 1 2 3 4"},
    {"IntsWithoutRoom",     "getIntFaceArray",  0, JAVA(countingInts(10)), "0: 2"},
    {"IntsPastTheRecord",   "getIntFaceArray", 13, JAVA(countingInts(52)), "0: 13" TEN_INT_FACES},
    {"NoAltitude",          "getGpsLocation",   4, JAVA(placeWithoutAltitude()), "0: 0 0 0 0 0"},
};
// clang-format on
#undef JAVA

INSTANTIATE_TEST_SUITE_P(Values, CameraMetadataParserSpecialTest, testing::ValuesIn(kSpecialCases),
                         CaseName());

}  // namespace
}  // namespace orlu::test
