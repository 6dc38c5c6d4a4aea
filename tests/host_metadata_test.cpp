// The typed store behind capture results: were it wrong, tests of the parser would test nothing.

#include <gtest/gtest.h>

#include "case_name.h"
#include "java_text.h"

namespace orlu {
namespace {

using test::env;

// What a capture result answers to a key of this class: the value, or the name of the exception.
std::string ask(jobject result, const char* tag, const char* askedClass) {
  jobject key =
      test::newObject("android/hardware/camera2/CaptureResult$Key", "(Ljava/lang/String;Ljava/lang/Class;)V",
                      test::javaString(tag), test::findClass(askedClass));
  jmethodID get = env()->GetMethodID(env()->GetObjectClass(result), "get",
                                     "(Landroid/hardware/camera2/CaptureResult$Key;)Ljava/lang/Object;");
  jobject value = env()->CallObjectMethod(result, get, key);
  jthrowable thrown = env()->ExceptionOccurred();
  env()->ExceptionClear();
  return thrown == nullptr
             ? test::describeJava(value)
             : test::stringOf(test::callObject(test::callObject(thrown, "getClass", "()Ljava/lang/Class;"),
                                               "getSimpleName", "()Ljava/lang/String;"));
}

struct StoreCase {
  const char* name;
  const char* tag;
  jobject (*value)();  // null: the tag is not set
  const char* askedClass;
  const char* answer;
};

class HostMetadataTest : public testing::TestWithParam<StoreCase> {};

TEST_P(HostMetadataTest, AnswersInTheTypeThatIsAskedFor) {
  const test::LocalFrame frame;
  const StoreCase& c = GetParam();
  jobject metadata = test::newMetadata();
  if (c.value != nullptr) test::setTag(metadata, c.tag, c.value());
  EXPECT_EQ(c.answer, ask(test::newCaptureResult(metadata), c.tag, c.askedClass));
}

constexpr char kRefused[] = "IllegalArgumentException";
constexpr char kInt[] = "android.control.aeMode";
constexpr char kLong[] = "android.sensor.exposureTime";
constexpr char kFloats[] = "orlu.control.Orlu3rdAlgoAECFrameControl";

// clang-format off
INSTANTIATE_TEST_SUITE_P(Cases, HostMetadataTest, testing::Values(
    StoreCase{"IntAsInteger",     kInt,    [] { return test::javaInt(5); },             "java/lang/Integer",   "Integer 5"},
    StoreCase{"IntAsInts",        kInt,    [] { return test::javaInt(5); },             "[I",                  "int[] 5"},
    StoreCase{"IntAsIntegers",    kInt,    [] { return test::javaInt(5); },             "[Ljava/lang/Integer;", "Integer[] 5"},
    StoreCase{"IntAsLong",        kInt,    [] { return test::javaInt(5); },             "java/lang/Long",      kRefused},
    StoreCase{"IntAsString",      kInt,    [] { return test::javaInt(5); },             "java/lang/String",    kRefused},
    StoreCase{"IntOfOneElement",  kInt,    [] { return test::javaInts({6}); },          "java/lang/Integer",   "Integer 6"},
    StoreCase{"LongAsLong",       kLong,   [] { return test::javaLong(1LL << 40); },    "java/lang/Long",      "Long 1099511627776"},
    StoreCase{"LongAsInteger",    kLong,   [] { return test::javaLong(7); },            "java/lang/Integer",   kRefused},
    StoreCase{"FloatsAsFloats",   kFloats, [] { return test::javaFloats({1.5F, 2}); },  "[F",                  "float[] 1.5 2"},
    StoreCase{"FloatsAsObjects",  kFloats, [] { return test::javaFloats({1.5F, 2}); },  "[Ljava/lang/Float;",  "Float[] 1.5 2.0"},
    StoreCase{"FloatsAsFloat",    kFloats, [] { return test::javaFloats({1.5F, 2}); },  "java/lang/Float",     kRefused},
    StoreCase{"FloatsAsDoubles",  kFloats, [] { return test::javaFloats({1.5F, 2}); },  "[D",                  kRefused},
    StoreCase{"Absent",           kInt,    nullptr,                                     "java/lang/Integer",   "null"},
    StoreCase{"AbsentOtherType",  kInt,    nullptr,                                     "java/lang/String",    "null"},
    StoreCase{"Unknown",          "no.such.tag", nullptr,                               "java/lang/Integer",   kRefused}),
    test::CaseName());
// clang-format on

TEST(HostMetadataStoreTest, KeepsNothingThatDoesNotFit) {
  const test::LocalFrame frame;
  jobject metadata = test::newMetadata();
  jmethodID set =
      env()->GetMethodID(env()->GetObjectClass(metadata), "set", "(Ljava/lang/String;Ljava/lang/Object;)V");
  const auto refused = [&](const char* tag, jobject value) {
    env()->CallVoidMethod(metadata, set, test::javaString(tag), value);
    const bool threw = env()->ExceptionCheck();
    env()->ExceptionClear();
    return threw;
  };
  EXPECT_TRUE(refused("no.such.tag", test::javaInt(1)));
  EXPECT_TRUE(refused(kInt, test::javaLong(1)));
  EXPECT_TRUE(refused(kInt, test::javaInts({1, 2})));
  EXPECT_TRUE(refused(kFloats, test::javaArray("java/lang/Float", {test::javaFloat(1), nullptr})));
  EXPECT_FALSE(refused(kInt, test::javaInt(1)));
  EXPECT_FALSE(refused(kInt, nullptr));
  EXPECT_EQ("null", ask(test::newCaptureResult(metadata), kInt, "java/lang/Integer"));
}

TEST(HostMetadataStoreTest, HandsOutCopies) {
  const test::LocalFrame frame;
  jobject metadata = test::newMetadata();
  jobject given = test::javaFloats({1, 2});
  test::setTag(metadata, kFloats, given);
  const jfloat changed = 9;
  env()->SetFloatArrayRegion(static_cast<jfloatArray>(given), 0, 1, &changed);
  EXPECT_EQ("float[] 1 2", ask(test::newCaptureResult(metadata), kFloats, "[F"));
}

// One tag of each way to be written, read back into a store that writes the same bytes.
TEST(HostMetadataStoreTest, ComesBackFromAParcelAsItWas) {
  const test::LocalFrame frame;
  jobject metadata = test::newMetadata();
  test::setTag(metadata, kInt, test::javaInt(0x01020304));
  test::setTag(metadata, kLong, test::javaLong(-2));
  test::setTag(metadata, kFloats, test::javaFloats({1.5F, -2}));
  test::setTag(metadata, "android.lens.aperture", test::javaFloat(1.75F));
  test::setTag(metadata, "android.scaler.cropRegion", test::javaRect({1, 2, 3, 4}));
  test::setTag(metadata, "android.control.afRegions",
               test::javaRegions(
                   {
                       {5, 6,  7,  8 },
                       {9, 10, 11, 12}
  },
                   13));
  test::setTag(metadata, "android.jpeg.gpsLocation", test::javaLocation(1.25, -2.5, 3, 4));
  const auto marshall = [](jobject store) {
    jobject parcel = env()->CallStaticObjectMethod(
        test::findClass("android/os/Parcel"),
        env()->GetStaticMethodID(test::findClass("android/os/Parcel"), "obtain", "()Landroid/os/Parcel;"));
    test::expectNoException("obtain");
    env()->CallVoidMethod(
        store, env()->GetMethodID(env()->GetObjectClass(store), "writeToParcel", "(Landroid/os/Parcel;I)V"),
        parcel, 0);
    test::expectNoException("writeToParcel");
    return parcel;
  };
  const auto bytesOf = [](jobject parcel) {
    const auto array = static_cast<jbyteArray>(test::callObject(parcel, "marshall", "()[B"));
    std::string bytes(static_cast<size_t>(env()->GetArrayLength(array)), '\0');
    env()->GetByteArrayRegion(array, 0, static_cast<jsize>(bytes.size()),
                              reinterpret_cast<jbyte*>(bytes.data()));
    return bytes;
  };
  jobject parcel = marshall(metadata);
  const std::string bytes = bytesOf(parcel);
  ASSERT_FALSE(bytes.empty());
  EXPECT_EQ(std::string("\7\0\0\0", 4), bytes.substr(0, 4));
  EXPECT_NE(std::string::npos, bytes.find(std::string("\1\0\0\0\4\3\2\1", 8)));

  env()->CallVoidMethod(parcel, env()->GetMethodID(env()->GetObjectClass(parcel), "setDataPosition", "(I)V"),
                        0);
  test::expectNoException("setDataPosition");
  jobject copy = test::newMetadata();
  env()->CallVoidMethod(
      copy, env()->GetMethodID(env()->GetObjectClass(copy), "readFromParcel", "(Landroid/os/Parcel;)V"),
      parcel);
  test::expectNoException("readFromParcel");
  EXPECT_EQ(bytes, bytesOf(marshall(copy)));
}

}  // namespace
}  // namespace orlu
