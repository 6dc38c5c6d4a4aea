#include "camera_metadata_parser.h"

#include <gtest/gtest.h>

#include "case_name.h"
#include "error_lines.h"
#include "fixtures.h"
#include "jni_table.h"

namespace orlu {
namespace {

using test::Lines;
using test::LogCapture;

struct Entry {
  const char* name;    // the parser's
  const char* lookup;  // as JniTable tells it; the members follow their class
  // When it is missing: what is logged, if not its own name alone, and the name of what ends the walk, if
  // that is not the table's end.
  std::vector<std::string> told = {};
  std::string last = "";
};

// Logged under another tag.
const std::string kBareGetRect = "VASJNI-CameraMetadataParser: mMethodGetRect";

#define CAMERA2 "android/hardware/camera2/"
#define COMPOSITION "com/orlu/orlu3rdalgoservice/CaptureResultComposition"
// clang-format off
const Entry kEntries[] = {
    {"mClazzKey",                      CAMERA2 "CaptureResult$Key"},
    {"mConstructorKey",                CAMERA2 "CaptureResult$Key.<init> (Ljava/lang/String;Ljava/lang/Class;)V"},
    {"mClazzCaptureResult",            CAMERA2 "CaptureResult"},
    {"mMethodGet",                     CAMERA2 "CaptureResult.get (L" CAMERA2 "CaptureResult$Key;)Ljava/lang/Object;"},
    {"mClazzCameraMetadataNative",     CAMERA2 "impl/CameraMetadataNative"},
    {"mMethodWriteToParcel",           CAMERA2 "impl/CameraMetadataNative.writeToParcel (Landroid/os/Parcel;I)V"},
    {"mClazzParcel",                   "android/os/Parcel"},
    {"mMethodParcelObtain",            "android/os/Parcel.obtain ()Landroid/os/Parcel;"},
    {"mMethodPushAllowFds",            "android/os/Parcel.pushAllowFds (Z)Z"},
    {"mMethodParcelMarshall",          "android/os/Parcel.marshall ()[B"},
    {"mClazzCharacteristicsKey",       CAMERA2 "CameraCharacteristics$Key"},
    {"mCharacteristicsConstructorKey", CAMERA2 "CameraCharacteristics$Key.<init> (Ljava/lang/String;Ljava/lang/Class;)V"},
    {"mClazzCameraCharacteristics",    CAMERA2 "CameraCharacteristics"},
    {"mMethodCharacteristicsGet",      CAMERA2 "CameraCharacteristics.get (L" CAMERA2 "CameraCharacteristics$Key;)Ljava/lang/Object;"},
    {"mClazzInt",                      "java/lang/Integer"},
    {"mMethodIntValue",                "java/lang/Integer.intValue ()I"},
    {"mConstructorInt",                "java/lang/Integer.<init> (I)V"},
    // Whether Double was found is told by the Float class, and what belongs to Double ends the walk.
    {"mClazzFloat",                    "java/lang/Float", {"mClazzFloat", "mClazzDouble"}, "mClazzDouble"},
    {"mMethodFloatValue",              "java/lang/Float.floatValue ()F"},
    {"mConstructorFloat",              "java/lang/Float.<init> (F)V"},
    {"mClazzDouble",                   "java/lang/Double", {"mMethodDoubleValue"}, "mClazzDouble"},
    {"mMethodDoubleValue",             "java/lang/Double.doubleValue ()D", {}, "mMethodDoubleValue"},
    {"mConstructorDouble",             "java/lang/Double.<init> (D)V", {}, "mConstructorDouble"},
    {"mClazzLong",                     "java/lang/Long"},
    {"mMethodLongValue",               "java/lang/Long.longValue ()J"},
    {"mConstructorLong",               "java/lang/Long.<init> (J)V"},
    {"mClazzPrimitiveIntArray",        "[I"},
    {"mClazzIntArray",                 "[Ljava/lang/Integer;"},
    {"mClazzPrimitiveLongArray",       "[J", {"mClazzPrimitiveIntArray"}},
    {"mClazzLongArray",                "[Ljava/lang/Long;"},
    {"mClazzPrimitiveFloatArray",      "[F"},
    {"mClazzFloatArray",               "[Ljava/lang/Float;"},
    {"mClazzPrimitiveDoubleArray",     "[D", {}, "mClazzPrimitiveDoubleArray"},
    {"mClazzDoubleArray",              "[Ljava/lang/Double;", {}, "mClazzDoubleArray"},
    {"mClazzString",                   "java/lang/String"},
    {"mMethodGetBytes",                "java/lang/String.getBytes ()[B"},
    {"mClazzByteArray",                "[B"},
    {"mClazzStringArray",              "[Ljava/lang/String;"},
    {"mClazzFaceArray",                "[L" CAMERA2 "params/Face;"},
    {"mClazzFace",                     CAMERA2 "params/Face"},
    {"mMethodGetBounds",               CAMERA2 "params/Face.getBounds ()Landroid/graphics/Rect;"},
    {"mClazzRect",                     "android/graphics/Rect"},
    {"mRectFieldLeft",                 "android/graphics/Rect.left I"},
    {"mRectFieldRight",                "android/graphics/Rect.right I"},
    {"mRectFieldTop",                  "android/graphics/Rect.top I"},
    {"mRectFieldBottom",               "android/graphics/Rect.bottom I"},
    // The member that is missed with its class, too.
    {"mClazzMeteringRectangle",        CAMERA2 "params/MeteringRectangle", {"mClazzMeteringRectangle", kBareGetRect}},
    {"mMethodGetRect",                 CAMERA2 "params/MeteringRectangle.getRect ()Landroid/graphics/Rect;"},
    {"mMethodGetMeteringWeight",       CAMERA2 "params/MeteringRectangle.getMeteringWeight ()I", {kBareGetRect}},
    {"mClazzMeteringRectangleArray",   "[L" CAMERA2 "params/MeteringRectangle;"},
    {"mClazzLocation",                 "android/location/Location"},
    {"mMethodGetLatitude",             "android/location/Location.getLatitude ()D"},
    {"mMethodGetLongitude",            "android/location/Location.getLongitude ()D"},
    {"mMethodGetAltitude",             "android/location/Location.getAltitude ()D"},
    {"mMethodGetTimestamp",            "android/location/Location.getTime ()J"},
    {"mMethodHasAltitude",             "android/location/Location.hasAltitude ()Z"},
    {"mClazzRational",                 "android/util/Rational"},
    {"mMethodGetNumerator",            "android/util/Rational.getNumerator ()I"},
    {"mMethodGetDenominator",          "android/util/Rational.getDenominator ()I"},
    {"mClazzCaptureResultComposition", COMPOSITION, {"mClazzCaptureResultComposition", "mMethodGetMetadata", "mMethodPutMetadata"}},
    {"mMethodGetMetadata",             COMPOSITION ".getMetadata (Ljava/lang/String;)Ljava/lang/Object;"},
    {"mMethodPutMetadata",             COMPOSITION ".putMetadata (Ljava/lang/String;Ljava/lang/Object;)V"},
    {"mClazzHashMap",                  "java/util/HashMap", {}, "mClazzHashMap"},
    {"mConstructorHashMap",            "java/util/HashMap.<init> ()V"},
    {"mMethodHashMapPut",              "java/util/HashMap.put (Ljava/lang/Object;Ljava/lang/Object;)Ljava/lang/Object;"},
};
// clang-format on
#undef CAMERA2

std::string classOf(const Entry& entry) {
  const std::string lookup = entry.lookup;
  return lookup.substr(0, lookup.find('.'));
}

std::string isNull(const std::string& name) {
  if (name == kBareGetRect) return name + " is null";
  return test::errorLine("CameraMetadataParser", name + " is null");
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
};

TEST_F(CameraMetadataParserTest, LooksEverythingUpInOrder) {
  for (const bool withoutComposition : {true, false}) {
    const test::JniTable table(test::env());
    EXPECT_EQ(0, init(withoutComposition));
    Lines lookups;
    for (const Entry& entry : kEntries) {
      if (!withoutComposition || classOf(entry) != COMPOSITION) lookups.push_back(entry.lookup);
    }
    EXPECT_EQ(test::joined(lookups), test::joined(table.lookups()));
    EXPECT_EQ(withoutComposition ? 29 : 30, table.localReferences())
        << "the classes, until the native method returns";
  }
  EXPECT_EQ(Lines(), errorLines(mLog));
}

TEST_F(CameraMetadataParserTest, NeedsAnEnvironment) {
  EXPECT_EQ(-1, mParser.initFromEnv(nullptr, false));
  EXPECT_EQ(Lines{isNull("mEnv")}, errorLines(mLog));
}

class CameraMetadataParserMissingTest : public CameraMetadataParserTest,
                                        public testing::WithParamInterface<Entry> {};

TEST_P(CameraMetadataParserMissingTest, TellsWhatIsMissingAndGoesOn) {
  const Entry& missing = GetParam();
  test::JniTable table(test::env());
  table.hide(missing.lookup);
  EXPECT_EQ(-1, init(false));
  Lines errors;
  for (const std::string& name : missing.told) errors.push_back(isNull(name));
  EXPECT_EQ(missing.told.empty() ? Lines{isNull(missing.name)} : errors, errorLines(mLog));
  // The members of a missing class are not looked up, and nothing is behind the walk's end.
  Lines lookups;
  for (const Entry& entry : kEntries) {
    if (entry.name == missing.name || classOf(entry) != missing.lookup) lookups.push_back(entry.lookup);
    if (entry.name == missing.last) break;
  }
  EXPECT_EQ(test::joined(lookups), test::joined(table.lookups()));
}

INSTANTIATE_TEST_SUITE_P(Entries, CameraMetadataParserMissingTest, testing::ValuesIn(kEntries),
                         test::CaseName());

}  // namespace
}  // namespace orlu
