#include <gtest/gtest.h>

#include <sstream>

#include "camera_metadata_parser.h"
#include "case_name.h"
#include "error_lines.h"
#include "fixtures.h"
#include "jni_table.h"

namespace orlu::test {
namespace {

using P = CameraMetadataParser;

enum Container { kComposition, kHashMap };

struct Putter {
  const char* name;
  Container container;
  int (*put)(P&, jobject container);
  const char* stored;    // the Java class and value
  const char* required;  // the class that the parser must have found, and its constructor
};

constexpr char kKey[] = "some.key";
constexpr char kInteger[] = "java/lang/Integer";
constexpr char kFloat[] = "java/lang/Float";
constexpr char kLong[] = "java/lang/Long";
constexpr char kIntegers[] = "[Ljava/lang/Integer;";
constexpr char kFloats[] = "[Ljava/lang/Float;";
constexpr char kDoubles[] = "[Ljava/lang/Double;";
constexpr int64_t kBig = 5'000'000'001;
constexpr int32_t kIntValues[] = {1, -2, 3};
constexpr int64_t kLongValues[] = {5'000'000'001, -2};
constexpr float kFloatValues[] = {1.5F, -2.0F};
constexpr double kDoubleValues[] = {0.1, -2.0};

// clang-format off
#define PUT(putter, ...) [](P& parser, jobject to) { return parser.putter(__VA_ARGS__, kKey, to); }
const Putter kPutters[] = {
    {"putInt",         kComposition, PUT(putInt, -4), "java.lang.Integer -4", kInteger},
    {"putFloat",       kComposition, PUT(putFloat, 2.5F), "java.lang.Float 2.5", kFloat},
    {"putLong",        kComposition, PUT(putLong, kBig), "java.lang.Long 5000000001", kLong},
    {"putIntArray",    kComposition, PUT(putIntArray, kIntValues, 3), "[I 1 -2 3", kIntegers},
    // Asks for the Integer[] class on purpose.
    {"putLongArray",   kComposition, PUT(putLongArray, kLongValues, 2), "[J 5000000001 -2", kIntegers},
    {"putFloatArray",  kComposition, PUT(putFloatArray, kFloatValues, 2), "[F 1.5 -2", kFloats},
    {"putDoubleArray", kComposition, PUT(putDoubleArray, kDoubleValues, 2), "[D 0.1 -2", kDoubles},
    {"putNoInts",      kComposition, PUT(putIntArray, nullptr, 0), "[I", kIntegers},
    {"putIntIntoMap",  kHashMap, PUT(putIntIntoHashMap, -4), "java.lang.Integer -4", kInteger},
    {"putFloatIntoMap", kHashMap, PUT(putFloatIntoHashMap, 2.5F), "java.lang.Float 2.5", kFloat},
    {"putLongIntoMap", kHashMap, PUT(putLongIntoHashMap, kBig), "java.lang.Long 5000000001", kLong},
    {"putIntsIntoMap", kHashMap, PUT(putIntArrayIntoHashMap, kIntValues, 3), "[I 1 -2 3", kIntegers},
};
#undef PUT
// clang-format on

template <typename T>
std::string joinedText(const std::vector<T>& values) {
  std::ostringstream text;
  for (const T& value : values) text << " " << value;
  return text.str();
}

// The class and the value.
std::string textOf(jobject value) {
  if (value == nullptr) return "nothing";
  const std::string clazz =
      stringOf(callObject(env()->GetObjectClass(value), "getName", "()Ljava/lang/String;"));
  if (clazz == "[I") return clazz + joinedText(intsOf(value));
  if (clazz == "[J") return clazz + joinedText(longsOf(value));
  if (clazz == "[F") return clazz + joinedText(floatsOf(value));
  if (clazz == "[D") return clazz + joinedText(doublesOf(value));
  return clazz + " " + stringOf(callObject(value, "toString", "()Ljava/lang/String;"));
}

constexpr char kParser[] = "CameraMetadataParser";
const std::string kNoInput = errorLine(kParser, "put some.key, input param is null");
const std::string kNotPut = errorLine(kParser, "put some.key is null");

jobject get(jobject map) {
  jmethodID method =
      env()->GetMethodID(findClass("java/util/HashMap"), "get", "(Ljava/lang/Object;)Ljava/lang/Object;");
  jobject value = env()->CallObjectMethod(map, method, javaString(kKey));
  expectNoException("get");
  return value;
}

// A parser that did not find one class or member.
P parserWithout(const std::string& hidden) {
  JniTable table(env());
  table.hide(hidden);
  return P(env());
}

class CameraMetadataParserPutterTest : public testing::TestWithParam<Putter> {
protected:
  bool isMap() const { return mPutter.container == kHashMap; }
  jobject newContainer() { return isMap() ? mParser.createHashMap() : newComposition(); }

  // Puts, and lets no exception stay pending.
  int put(P& parser, jobject container) {
    mLog.clear();
    const int result = mPutter.put(parser, container);
    EXPECT_FALSE(env()->ExceptionCheck());
    env()->ExceptionClear();
    return result;
  }
  void expectFailure(const std::string& line, P& parser, jobject container, const std::string& what) {
    EXPECT_EQ(-1, put(parser, container)) << what;
    EXPECT_EQ(Lines{line}, errorLines(mLog)) << what;
  }

  LocalFrame mFrame;
  P mParser{env()};
  LogCapture mLog;
  const Putter& mPutter = GetParam();
};

TEST_P(CameraMetadataParserPutterTest, StoresAJavaValueUnderTheKey) {
  jobject container = newContainer();
  EXPECT_EQ(0, put(mParser, container));
  EXPECT_EQ(Lines(), errorLines(mLog));
  EXPECT_EQ(mPutter.stored, textOf(isMap() ? get(container) : getKey(container, kKey)));
}

TEST_P(CameraMetadataParserPutterTest, NeedsAContainer) {
  expectFailure(kNoInput, mParser, nullptr, "null");
  expectFailure(kNotPut, mParser, isMap() ? newComposition() : mParser.createHashMap(),
                "the other container");
  expectFailure(kNotPut, mParser, isMap() ? newThrowingMap() : newThrowingComposition(), "one that throws");
}

TEST_P(CameraMetadataParserPutterTest, NeedsWhatTheValueIsMadeOf) {
  const std::string clazz = mPutter.required;
  for (const std::string& hidden : {clazz, clazz + (clazz[0] == '[' ? "" : ".<init>")}) {
    P parser = parserWithout(hidden);
    expectFailure(kNoInput, parser, newContainer(), hidden);
  }
  P parser;
  expectFailure(kNoInput, parser, newContainer(), "a parser without an environment");
}

TEST_P(CameraMetadataParserPutterTest, NeedsTheContainersMethod) {
  jobject container = newContainer();
  const std::string composition = "com/orlu/orlu3rdalgoservice/CaptureResultComposition";
  const std::string clazz = isMap() ? "java/util/HashMap" : composition;
  for (const std::string& hidden : {clazz, clazz + (isMap() ? ".put" : ".putMetadata")}) {
    P parser = parserWithout(hidden);
    expectFailure(kNotPut, parser, container, hidden);
  }
  P withoutComposition;
  withoutComposition.initFromEnv(env(), true);
  if (isMap()) {
    EXPECT_EQ(0, put(withoutComposition, container));
  } else {
    expectFailure(kNotPut, withoutComposition, container, "a callback's parser");
  }
}

TEST_P(CameraMetadataParserPutterTest, LeavesNoReferenceBehind) {
  jobject container = newContainer();
  const std::vector<jobject> containers = {container, container, nullptr,
                                           isMap() ? newThrowingMap() : newThrowingComposition()};
  for (jobject each : containers) put(mParser, each);
  const JniTable table(env());
  for (jobject each : containers) {
    put(mParser, each);
    EXPECT_EQ(0, table.localReferences());
  }
}

TEST_P(CameraMetadataParserPutterTest, CopesWithoutMemory) {
  jobject container = newContainer();
  for (const char* function :
       {"NewStringUTF", "NewObjectV", "NewIntArray", "NewLongArray", "NewFloatArray", "NewDoubleArray"}) {
    JniTable table(env());
    table.fail(function);
    const int result = put(mParser, container);
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

TEST_F(CameraMetadataParserPuttersTest, NeedNoLongArrayClassForLongs) {
  P parser = parserWithout("[Ljava/lang/Long;");
  jobject composition = newComposition();
  EXPECT_EQ(0, parser.putLongArray(kLongValues, 2, kKey, composition));
  EXPECT_EQ("[J 5000000001 -2", textOf(getKey(composition, kKey)));
}

TEST_F(CameraMetadataParserPuttersTest, HaveNoLimitOfElements) {
  const std::vector<double> values(5000, 0.5);
  jobject composition = newComposition();
  EXPECT_EQ(0, mParser.putDoubleArray(values.data(), 5000, kKey, composition));
  EXPECT_EQ(values, doublesOf(getKey(composition, kKey)));
  EXPECT_EQ(-1, mParser.putIntArray(kIntValues, -1, kKey, composition)) << "a count that no array has";
  EXPECT_FALSE(env()->ExceptionCheck());
}

TEST_F(CameraMetadataParserPuttersTest, StoreObjectsAsTheyAre) {
  jobject value = javaString("value");
  jobject composition = newComposition();
  jobject map = mParser.createHashMap();
  EXPECT_EQ(0, mParser.putMetadataObjectIntoCaptureResultComposition(composition, kKey, value));
  EXPECT_EQ(0, mParser.putObjectIntoHashMap(map, kKey, value));
  EXPECT_EQ("java.lang.String value", textOf(getKey(composition, kKey)));
  EXPECT_EQ("java.util.HashMap {some.key=value}", textOf(map));
  EXPECT_EQ("java.util.HashMap {}", textOf(mParser.createHashMap()));
  EXPECT_EQ(-1, mParser.putMetadataObjectIntoCaptureResultComposition(composition, kKey, nullptr));
  EXPECT_EQ(-1, mParser.putMetadataObjectIntoCaptureResultComposition(nullptr, kKey, value));
  EXPECT_EQ(-1, mParser.putObjectIntoHashMap(map, kKey, nullptr));
  EXPECT_EQ(-1, mParser.putObjectIntoHashMap(nullptr, kKey, value));
  EXPECT_EQ(Lines(), errorLines(mLog));
}

TEST_F(CameraMetadataParserPuttersTest, TellWhyThereIsNoMap) {
  for (const char* hidden : {"java/util/HashMap", "java/util/HashMap.<init>"}) {
    P parser = parserWithout(hidden);
    mLog.clear();
    EXPECT_EQ(nullptr, parser.createHashMap());
    EXPECT_EQ(Lines{errorLine(kParser, "createHashMap failed, input is null")}, errorLines(mLog)) << hidden;
  }
  mLog.clear();
  JniTable table(env());
  table.fail("NewObjectV");
  EXPECT_EQ(nullptr, mParser.createHashMap());
  EXPECT_EQ(Lines{errorLine(kParser, "createHashMap failed")}, errorLines(mLog));
}

}  // namespace
}  // namespace orlu::test
