#include "camera_metadata_parser.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "case_name.h"
#include "error_lines.h"
#include "fixtures.h"
#include "jni_table.h"

namespace orlu {
namespace {

using test::Lines;
using test::LogCapture;

// The parser's name for a class, or with a signature for a member of the class before it.
struct Entry {
  const char* name;
  const char* looked;
  const char* signature;
};

#define CAMERA2 "android/hardware/camera2/"
// clang-format off
constexpr Entry kEntries[] = {
    {"mClazzKey",                      CAMERA2 "CaptureResult$Key", nullptr},
    {"mConstructorKey",                "<init>", "(Ljava/lang/String;Ljava/lang/Class;)V"},
    {"mClazzCaptureResult",            CAMERA2 "CaptureResult", nullptr},
    {"mMethodGet",                     "get", "(L" CAMERA2 "CaptureResult$Key;)Ljava/lang/Object;"},
    {"mClazzCameraMetadataNative",     CAMERA2 "impl/CameraMetadataNative", nullptr},
    {"mMethodWriteToParcel",           "writeToParcel", "(Landroid/os/Parcel;I)V"},
    {"mClazzParcel",                   "android/os/Parcel", nullptr},
    {"mMethodParcelObtain",            "obtain", "()Landroid/os/Parcel;"},
    {"mMethodPushAllowFds",            "pushAllowFds", "(Z)Z"},
    {"mMethodParcelMarshall",          "marshall", "()[B"},
    {"mClazzCharacteristicsKey",       CAMERA2 "CameraCharacteristics$Key", nullptr},
    {"mCharacteristicsConstructorKey", "<init>", "(Ljava/lang/String;Ljava/lang/Class;)V"},
    {"mClazzCameraCharacteristics",    CAMERA2 "CameraCharacteristics", nullptr},
    {"mMethodCharacteristicsGet",      "get", "(L" CAMERA2 "CameraCharacteristics$Key;)Ljava/lang/Object;"},
    {"mClazzInt",                      "java/lang/Integer", nullptr},
    {"mMethodIntValue",                "intValue", "()I"},
    {"mConstructorInt",                "<init>", "(I)V"},
    {"mClazzFloat",                    "java/lang/Float", nullptr},
    {"mMethodFloatValue",              "floatValue", "()F"},
    {"mConstructorFloat",              "<init>", "(F)V"},
    {"mClazzDouble",                   "java/lang/Double", nullptr},
    {"mMethodDoubleValue",             "doubleValue", "()D"},
    {"mConstructorDouble",             "<init>", "(D)V"},
    {"mClazzLong",                     "java/lang/Long", nullptr},
    {"mMethodLongValue",               "longValue", "()J"},
    {"mConstructorLong",               "<init>", "(J)V"},
    {"mClazzPrimitiveIntArray",        "[I", nullptr},
    {"mClazzIntArray",                 "[Ljava/lang/Integer;", nullptr},
    {"mClazzPrimitiveLongArray",       "[J", nullptr},
    {"mClazzLongArray",                "[Ljava/lang/Long;", nullptr},
    {"mClazzPrimitiveFloatArray",      "[F", nullptr},
    {"mClazzFloatArray",               "[Ljava/lang/Float;", nullptr},
    {"mClazzPrimitiveDoubleArray",     "[D", nullptr},
    {"mClazzDoubleArray",              "[Ljava/lang/Double;", nullptr},
    {"mClazzString",                   "java/lang/String", nullptr},
    {"mMethodGetBytes",                "getBytes", "()[B"},
    {"mClazzByteArray",                "[B", nullptr},
    {"mClazzStringArray",              "[Ljava/lang/String;", nullptr},
    {"mClazzFaceArray",                "[L" CAMERA2 "params/Face;", nullptr},
    {"mClazzFace",                     CAMERA2 "params/Face", nullptr},
    {"mMethodGetBounds",               "getBounds", "()Landroid/graphics/Rect;"},
    {"mClazzRect",                     "android/graphics/Rect", nullptr},
    {"mRectFieldLeft",                 "left", "I"},
    {"mRectFieldRight",                "right", "I"},
    {"mRectFieldTop",                  "top", "I"},
    {"mRectFieldBottom",               "bottom", "I"},
    {"mClazzMeteringRectangle",        CAMERA2 "params/MeteringRectangle", nullptr},
    {"mMethodGetRect",                 "getRect", "()Landroid/graphics/Rect;"},
    {"mMethodGetMeteringWeight",       "getMeteringWeight", "()I"},
    {"mClazzMeteringRectangleArray",   "[L" CAMERA2 "params/MeteringRectangle;", nullptr},
    {"mClazzLocation",                 "android/location/Location", nullptr},
    {"mMethodGetLatitude",             "getLatitude", "()D"},
    {"mMethodGetLongitude",            "getLongitude", "()D"},
    {"mMethodGetAltitude",             "getAltitude", "()D"},
    {"mMethodGetTimestamp",            "getTime", "()J"},
    {"mMethodHasAltitude",             "hasAltitude", "()Z"},
    {"mClazzRational",                 "android/util/Rational", nullptr},
    {"mMethodGetNumerator",            "getNumerator", "()I"},
    {"mMethodGetDenominator",          "getDenominator", "()I"},
    {"mClazzCaptureResultComposition", "com/orlu/orlu3rdalgoservice/CaptureResultComposition", nullptr},
    {"mMethodGetMetadata",             "getMetadata", "(Ljava/lang/String;)Ljava/lang/Object;"},
    {"mMethodPutMetadata",             "putMetadata", "(Ljava/lang/String;Ljava/lang/Object;)V"},
    {"mClazzHashMap",                  "java/util/HashMap", nullptr},
    {"mConstructorHashMap",            "<init>", "()V"},
    {"mMethodHashMapPut",              "put", "(Ljava/lang/Object;Ljava/lang/Object;)Ljava/lang/Object;"},
};
// clang-format on
#undef CAMERA2

const Entry& classOf(const Entry& entry) {
  const Entry* clazz = &entry;
  while (clazz->signature != nullptr) --clazz;
  return *clazz;
}

// As JniTable names a lookup.
std::string lookupOf(const Entry& entry) {
  if (entry.signature == nullptr) return entry.looked;
  return std::string(classOf(entry).looked) + "." + entry.looked + " " + entry.signature;
}

std::string isNull(const char* name) {
  return test::errorLine("CameraMetadataParser", std::string(name) + " is null");
}

class CameraMetadataParserTest : public testing::Test {
protected:
  // No exception may stay pending, whatever was missing.
  int init(bool withoutComposition) {
    const int result = mParser.initFromEnv(test::env(), withoutComposition);
    EXPECT_FALSE(test::env()->ExceptionCheck());
    test::env()->ExceptionClear();
    return result;
  }

  test::LocalFrame mFrame;
  CameraMetadataParser mParser{test::env()};  // the VM loads its classes before they are counted
  LogCapture mLog;
  test::JniTable mTable{test::env()};
};

TEST_F(CameraMetadataParserTest, LooksEverythingUpInOrder) {
  Lines lookups;
  for (const Entry& entry : kEntries) lookups.push_back(lookupOf(entry));
  EXPECT_EQ(0, init(false));
  EXPECT_EQ(test::joined(lookups), test::joined(mTable.lookups()));
  EXPECT_EQ(Lines(), errorLines(mLog));
  EXPECT_EQ(30, mTable.localReferences()) << "the classes, until the native method returns";
}

TEST_F(CameraMetadataParserTest, LeavesTheCompositionOut) {
  Lines lookups;
  for (const Entry& entry : kEntries) {
    const bool isOfComposition = std::string(classOf(entry).name) == "mClazzCaptureResultComposition";
    if (!isOfComposition) lookups.push_back(lookupOf(entry));
  }
  EXPECT_EQ(0, init(true));
  EXPECT_EQ(test::joined(lookups), test::joined(mTable.lookups()));
  EXPECT_EQ(Lines(), errorLines(mLog));
}

TEST_F(CameraMetadataParserTest, NeedsAnEnvironment) {
  EXPECT_EQ(-1, mParser.initFromEnv(nullptr, false));
  EXPECT_TRUE(mTable.lookups().empty());
  EXPECT_EQ(Lines{isNull("mEnv")}, errorLines(mLog));
}

struct Missing {
  std::string name;
  Lines hidden;
  Lines errors;
  std::string last;  // the lookup that ends the walk, if not the table's end
};

std::vector<Missing> irregularCases() {
  const std::string bare = "VASJNI-CameraMetadataParser: mMethodGetRect is null";
  const Lines floatAndDouble = {isNull("mClazzFloat"), isNull("mClazzDouble")};
  const std::string metering = "android/hardware/camera2/params/MeteringRectangle";
  const std::string composition = "com/orlu/orlu3rdalgoservice/CaptureResultComposition";
  const std::string doubleClass = "java/lang/Double";
  // clang-format off
  return {
      // Whether Double was found is told by the Float class, and what belongs to Double ends the walk.
      {"mClazzFloat",    {"java/lang/Float"},              floatAndDouble,                 doubleClass},
      {"FloatAndDouble", {"java/lang/Float", doubleClass}, floatAndDouble,                 doubleClass},
      {"mClazzDouble",   {doubleClass},                    {isNull("mMethodDoubleValue")}, doubleClass},
      {"mMethodDoubleValue", {"java/lang/Double.doubleValue"}, {isNull("mMethodDoubleValue")},
       "java/lang/Double.doubleValue ()D"},
      {"mConstructorDouble", {"java/lang/Double.<init>"},      {isNull("mConstructorDouble")},
       "java/lang/Double.<init> (D)V"},
      {"mClazzPrimitiveDoubleArray", {"[D"}, {isNull("mClazzPrimitiveDoubleArray")}, "[D"},
      {"mClazzDoubleArray", {"[Ljava/lang/Double;"}, {isNull("mClazzDoubleArray")}, "[Ljava/lang/Double;"},
      {"mClazzHashMap",     {"java/util/HashMap"},   {isNull("mClazzHashMap")},     "java/util/HashMap"},
      {"mClazzPrimitiveLongArray", {"[J"}, {isNull("mClazzPrimitiveIntArray")}, ""},
      // These members are missed with their class, too.
      {"mClazzMeteringRectangle",  {metering}, {isNull("mClazzMeteringRectangle"), bare}, ""},
      {"mMethodGetMeteringWeight", {metering + ".getMeteringWeight"}, {bare}, ""},
      {"mClazzCaptureResultComposition", {composition},
       {isNull("mClazzCaptureResultComposition"), isNull("mMethodGetMetadata"), isNull("mMethodPutMetadata")},
       ""},
  };
  // clang-format on
}

std::vector<Missing> missingCases() {
  std::vector<Missing> cases = irregularCases();
  const auto isTold = [&](const Entry& entry) {
    return std::any_of(cases.begin(), cases.end(), [&](const Missing& c) { return c.name == entry.name; });
  };
  for (const Entry& entry : kEntries) {
    if (!isTold(entry)) cases.push_back({entry.name, {lookupOf(entry)}, {isNull(entry.name)}, ""});
  }
  return cases;
}

// The members of a missing class are not looked up, and nothing is behind the walk's end.
Lines lookupsOf(const Missing& missing) {
  Lines lookups;
  for (const Entry& entry : kEntries) {
    const bool isMember = entry.signature != nullptr;
    const std::string clazz = classOf(entry).looked;
    const bool isHidden = std::count(missing.hidden.begin(), missing.hidden.end(), clazz) != 0;
    if (!isMember || !isHidden) lookups.push_back(lookupOf(entry));
    if (lookupOf(entry) == missing.last) break;
  }
  return lookups;
}

class CameraMetadataParserMissingTest : public CameraMetadataParserTest,
                                        public testing::WithParamInterface<Missing> {};

TEST_P(CameraMetadataParserMissingTest, TellsWhatIsMissingAndGoesOn) {
  for (const std::string& name : GetParam().hidden) mTable.hide(name);
  EXPECT_EQ(-1, init(false));
  EXPECT_EQ(GetParam().errors, errorLines(mLog));
  EXPECT_EQ(test::joined(lookupsOf(GetParam())), test::joined(mTable.lookups()));
}

INSTANTIATE_TEST_SUITE_P(Entries, CameraMetadataParserMissingTest, testing::ValuesIn(missingCases()),
                         test::CaseName());

}  // namespace
}  // namespace orlu
