// Tests of the store of typed tags behind capture results. The parser's tests depend on this store.

#include <gtest/gtest.h>

#include "case_name.h"
#include "java_text.h"

namespace orlu {
namespace {

using test::env;

// Reads a tag with a key of class `askedClass`. Returns the value as text, or "refused" if get() throws.
std::string ask(jobject result, const char* tag, const char* askedClass) {
  jobject key =
      test::newObject("android/hardware/camera2/CaptureResult$Key", "(Ljava/lang/String;Ljava/lang/Class;)V",
                      test::javaString(tag), test::findClass(askedClass));
  jmethodID get = env()->GetMethodID(env()->GetObjectClass(result), "get",
                                     "(Landroid/hardware/camera2/CaptureResult$Key;)Ljava/lang/Object;");
  jobject value = env()->CallObjectMethod(result, get, key);
  const bool refused = env()->ExceptionCheck();
  env()->ExceptionClear();
  return refused ? "refused" : test::describeJava(value);
}

struct StoreCase : test::NamedCase {
  const char* tag;
  jobject (*value)();  // null: the tag is not set
  const char* askedClass;
  const char* answer;
  const char* heard;  // the listener's entry: "REQUESTED_TYPE of STORED_TYPE[, refused]"
};

class HostMetadataTest : public testing::TestWithParam<StoreCase> {};

TEST_P(HostMetadataTest, AnswersInTheTypeThatIsAskedFor) {
  const test::LocalFrame frame;
  const StoreCase& c = GetParam();
  jobject metadata = test::newMetadata();
  if (c.value != nullptr) test::setTag(metadata, c.tag, c.value());
  EXPECT_EQ(c.answer, ask(test::newCaptureResult(metadata), c.tag, c.askedClass));
  jobject log = test::newObject("com/orlu/test/LookupLog", "()V");
  test::call(metadata, "setLookupListener", "(Landroid/hardware/camera2/impl/LookupListener;)V", log);
  EXPECT_EQ(c.answer, ask(test::newCaptureResult(metadata), c.tag, c.askedClass));
  EXPECT_EQ(std::string(c.tag) + ": " + c.heard, test::toStringOf(log));
}

constexpr char kInt[] = "android.control.aeMode";
constexpr char kLong[] = "android.sensor.exposureTime";
constexpr char kFloats[] = "orlu.control.Orlu3rdAlgoAECFrameControl";

// clang-format off
INSTANTIATE_TEST_SUITE_P(Cases, HostMetadataTest, testing::Values(
    StoreCase{"IntAsInteger",     kInt,    [] { return test::javaInt(5); },             "java/lang/Integer",   "Integer 5",  "Integer of Integer"},
    StoreCase{"IntAsInts",        kInt,    [] { return test::javaInt(5); },             "[I",                  "int[] 5",  "int[] of Integer"},
    StoreCase{"IntAsLong",        kInt,    [] { return test::javaInt(5); },             "java/lang/Long",      "refused",  "Long of Integer, refused"},
    StoreCase{"LongAsLong",       kLong,   [] { return test::javaLong(1LL << 40); },    "java/lang/Long",      "Long 1099511627776",  "Long of Long"},
    StoreCase{"LongAsInteger",    kLong,   [] { return test::javaLong(7); },            "java/lang/Integer",   "refused",  "Integer of Long, refused"},
    StoreCase{"FloatsAsFloats",   kFloats, [] { return test::javaFloats({1.5F, 2}); },  "[F",                  "float[] 1.5 2.0",  "float[] of float[]"},
    StoreCase{"FloatsAsObjects",  kFloats, [] { return test::javaFloats({1.5F, 2}); },  "[Ljava/lang/Float;",  "Float[] 1.5 2.0",  "Float[] of float[]"},
    StoreCase{"FloatsAsFloat",    kFloats, [] { return test::javaFloats({1.5F, 2}); },  "java/lang/Float",     "refused",  "Float of float[], refused"},
    StoreCase{"FloatsAsDoubles",  kFloats, [] { return test::javaFloats({1.5F, 2}); },  "[D",                  "refused",  "double[] of float[], refused"},
    StoreCase{"Absent",           kInt,    nullptr,                                     "java/lang/Integer",   "null",  "Integer of nothing"},
    StoreCase{"Unknown",          "no.tag", nullptr,                                    "java/lang/Integer",   "refused",  "Integer of nothing, refused"}),
    test::CaseName());
// clang-format on

TEST(HostMetadataParcelTest, HoldsEveryTag) {
  const test::LocalFrame frame;
  jobject metadata = test::newMetadata();
  test::setTag(metadata, kInt, test::javaInt(0x01020304));
  test::setTag(metadata, kLong, test::javaLong(0x05060708));
  const std::vector<uint8_t> parcel = test::parcelBytes(metadata);
  const std::string bytes(parcel.begin(), parcel.end());
  EXPECT_EQ(std::string("\2\0\0\0", 4), bytes.substr(0, 4));
  EXPECT_NE(std::string::npos, bytes.find(std::string("\1\0\0\0\4\3\2\1", 8)));
  EXPECT_NE(std::string::npos, bytes.find(std::string("\1\0\0\0\x8\7\6\5\0\0\0\0", 12)));
}

}  // namespace
}  // namespace orlu
