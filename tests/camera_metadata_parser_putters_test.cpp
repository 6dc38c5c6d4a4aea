#include <gtest/gtest.h>

#include "camera_metadata_parser_getter_table.h"
#include "case_name.h"
#include "java_text.h"
#include "jni_table.h"

namespace orlu::test {
namespace {

enum Container { kComposition, kHashMap };

struct Putter : NamedCase {
  Container container;
  int (*put)(P&, jobject container);
  const char* stored;    // the Java class and value
  const char* required;  // class that the parser needs; if not an array, also its constructor
};

constexpr char kKey[] = "some.key";
constexpr char kLong[] = "java/lang/Long";
constexpr char kIntegers[] = "[Ljava/lang/Integer;";
constexpr char kFloats[] = "[Ljava/lang/Float;";
constexpr char kDoubles[] = "[Ljava/lang/Double;";
constexpr int64_t kBig = 5'000'000'001;
constexpr int32_t kIntValues[] = {1, -2, 3};
constexpr int64_t kLongValues[] = {5'000'000'001, -2};
constexpr float kFloatValues[] = {1.5F, -2.0F};
constexpr double kDoubleValues[] = {0.125, -2.0};

// clang-format off
#define PUT(putter, ...) [](P& parser, jobject to) { return parser.putter(__VA_ARGS__, kKey, to); }
const Putter kPutters[] = {
    {"putInt",         kComposition, PUT(putInt, -4), "Integer -4", kInteger},
    {"putFloat",       kComposition, PUT(putFloat, 2.5F), "Float 2.5", kFloat},
    {"putLong",        kComposition, PUT(putLong, kBig), "Long 5000000001", kLong},
    {"putIntArray",    kComposition, PUT(putIntArray, kIntValues, 3), "int[] 1 -2 3", kIntegers},
    // Requires the Integer[] class, not the Long[] class (Oddity 12).
    {"putLongArray",   kComposition, PUT(putLongArray, kLongValues, 2), "long[] 5000000001 -2", kIntegers},
    {"putFloatArray",  kComposition, PUT(putFloatArray, kFloatValues, 2), "float[] 1.5 -2.0", kFloats},
    {"putDoubleArray", kComposition, PUT(putDoubleArray, kDoubleValues, 2), "double[] 0.125 -2.0", kDoubles},
    {"putIntArray_none", kComposition, PUT(putIntArray, nullptr, 0), "int[]", kIntegers},
    {"putIntIntoHashMap", kHashMap, PUT(putIntIntoHashMap, -4), "Integer -4", kInteger},
    {"putFloatIntoHashMap", kHashMap, PUT(putFloatIntoHashMap, 2.5F), "Float 2.5", kFloat},
    {"putLongIntoHashMap", kHashMap, PUT(putLongIntoHashMap, kBig), "Long 5000000001", kLong},
    {"putIntArrayIntoHashMap", kHashMap, PUT(putIntArrayIntoHashMap, kIntValues, 3), "int[] 1 -2 3", kIntegers},
};
#undef PUT
// clang-format on

constexpr char kNoInput[] = "put some.key, input param is null";
constexpr char kNotPut[] = "put some.key is null";

// Returns the only value of a map.
jobject valueIn(jobject map) {
  jobject values =
      callObject(callObject(map, "values", "()Ljava/util/Collection;"), "toArray", "()[Ljava/lang/Object;");
  return env()->GetObjectArrayElement(static_cast<jobjectArray>(values), 0);
}

class CameraMetadataParserPutterTest : public testing::TestWithParam<Putter> {
protected:
  bool isMap() const { return mPutter.container == kHashMap; }
  jobject newContainer() { return isMap() ? mParser.createHashMap() : newComposition(); }

  // Puts a value. The test fails if local references or an exception remain.
  int put(P& parser, jobject container) {
    mLog.clear();
    const JniTable table(env());
    const int result = mPutter.put(parser, container);
    EXPECT_EQ(0, table.localReferences());
    EXPECT_FALSE(env()->ExceptionCheck());
    env()->ExceptionClear();
    return result;
  }
  void expectFailure(const std::string& line, P& parser, jobject container, const std::string& what) {
    EXPECT_EQ(-1, put(parser, container)) << what;
    const std::string putter = mPutter.name;
    EXPECT_EQ(Lines{putter.substr(0, putter.find('_')) + "() " + line}, parserErrors(mLog)) << what;
  }

  LocalFrame mFrame;
  P mParser{env()};
  LogCapture mLog;
  const Putter& mPutter = GetParam();
};

TEST_P(CameraMetadataParserPutterTest, StoresAJavaValueUnderTheKey) {
  jobject container = newContainer();
  EXPECT_EQ(0, put(mParser, container));
  EXPECT_EQ(0, put(mParser, container)) << "overwriting a value";
  EXPECT_EQ(Lines(), parserErrors(mLog));
  EXPECT_EQ(mPutter.stored, describeJava(isMap() ? valueIn(container) : getKey(container, kKey)));
}

TEST_P(CameraMetadataParserPutterTest, NeedsAContainer) {
  expectFailure(kNoInput, mParser, nullptr, "null");
  expectFailure(kNotPut, mParser, isMap() ? newComposition() : mParser.createHashMap(),
                "the other container");
  expectFailure(kNotPut, mParser,
                isMap() ? newObject("com/orlu/test/ThrowingMap", "()V") : newThrowingComposition(),
                "a container that throws");
}

TEST_P(CameraMetadataParserPutterTest, NeedsItsClassesAndMembers) {
  jobject container = newContainer();
  const auto expectFailureWithout = [&](const std::string& hidden, const std::string& line) {
    P parser = parserWithout(hidden);
    expectFailure(line, parser, container, hidden);
  };
  const std::string value = mPutter.required;
  expectFailureWithout(value, kNoInput);
  if (value[0] != '[') expectFailureWithout(value + ".<init>", kNoInput);
  const std::string composition = "com/orlu/orlu3rdalgoservice/CaptureResultComposition";
  expectFailureWithout(isMap() ? "java/util/HashMap" : composition, kNotPut);
  expectFailureWithout(isMap() ? "java/util/HashMap.put" : composition + ".putMetadata", kNotPut);
  P parser;
  expectFailure(kNoInput, parser, container, "a parser without an environment");
  parser.initFromEnv(env(), true);
  EXPECT_EQ(isMap() ? 0 : -1, put(parser, container)) << "a callback's parser";
}

TEST_P(CameraMetadataParserPutterTest, CopesWithoutMemory) {
  jobject container = newContainer();
  for (const char* function :
       {"NewStringUTF", "NewObjectV", "NewIntArray", "NewLongArray", "NewFloatArray", "NewDoubleArray"}) {
    JniTable table(env());
    table.fail(function);
    const int result = mPutter.put(mParser, container);
    EXPECT_FALSE(env()->ExceptionCheck());
    EXPECT_EQ(table.calls(function) == 0 ? 0 : -1, result) << function;
  }
}

INSTANTIATE_TEST_SUITE_P(Putters, CameraMetadataParserPutterTest, testing::ValuesIn(kPutters), CaseName());

class CameraMetadataParserPuttersTest : public testing::Test {
protected:
  LocalFrame mFrame;
  P mParser{env()};
  LogCapture mLog;
};

TEST_F(CameraMetadataParserPuttersTest, StoreObjectsAsTheyAre) {
  jobject value = javaString("value");
  jobject composition = newComposition();
  jobject map = mParser.createHashMap();
  EXPECT_EQ(0, mParser.putMetadataObjectIntoCaptureResultComposition(composition, kKey, value));
  EXPECT_EQ(0, mParser.putObjectIntoHashMap(map, kKey, value));
  EXPECT_EQ("String value", describeJava(getKey(composition, kKey)));
  EXPECT_EQ("HashMap {some.key=value}", describeJava(map));
  EXPECT_EQ("HashMap {}", describeJava(mParser.createHashMap()));
  EXPECT_EQ(-1, mParser.putMetadataObjectIntoCaptureResultComposition(composition, kKey, nullptr));
  EXPECT_EQ(-1, mParser.putMetadataObjectIntoCaptureResultComposition(nullptr, kKey, value));
  EXPECT_EQ(-1, mParser.putObjectIntoHashMap(map, kKey, nullptr));
  EXPECT_EQ(-1, mParser.putObjectIntoHashMap(nullptr, kKey, value));
  EXPECT_EQ(Lines(), parserErrors(mLog));
}

TEST_F(CameraMetadataParserPuttersTest, LogWhyNoMapIsCreated) {
  for (const char* hidden : {"java/util/HashMap", "java/util/HashMap.<init>"}) {
    P parser = parserWithout(hidden);
    mLog.clear();
    EXPECT_EQ(nullptr, parser.createHashMap());
    EXPECT_EQ(Lines{"createHashMap() createHashMap failed, input is null"}, parserErrors(mLog)) << hidden;
  }
  mLog.clear();
  JniTable table(env());
  table.fail("NewObjectV");
  EXPECT_EQ(nullptr, mParser.createHashMap());
  EXPECT_EQ(Lines{"createHashMap() createHashMap failed"}, parserErrors(mLog));
}

}  // namespace
}  // namespace orlu::test
