#include "camera_metadata_parser.h"

#include "jni_member_table.h"
#include "log.h"

namespace orlu {
namespace {

// Local references that the cache holds until the native method returns: its classes, with some to spare for
// what is looked up through them.
constexpr jint kLocalReferences = 96;

}  // namespace

// The cache, in the order of resolution: a class, then its members.
struct CameraMetadataParser::Table {
  using P = CameraMetadataParser;
  using Row = JniMember<P>;

#define CLASS(name, slot) jniClass<P>(name, &P::slot, #slot)
#define METHOD(name, signature, slot) jniMethod<P>(name, signature, &P::slot, #slot)
#define STATIC_METHOD(name, signature, slot) jniStaticMethod<P>(name, signature, &P::slot, #slot)
#define FIELD(name, signature, slot) jniField<P>(name, signature, &P::slot, #slot)
  // clang-format off
  static constexpr Row kRows[] = {
      CLASS("android/hardware/camera2/CaptureResult$Key", mClazzKey),
      METHOD("<init>", "(Ljava/lang/String;Ljava/lang/Class;)V", mConstructorKey),
      CLASS("android/hardware/camera2/CaptureResult", mClazzCaptureResult),
      METHOD("get", "(Landroid/hardware/camera2/CaptureResult$Key;)Ljava/lang/Object;", mMethodGet),
      CLASS("android/hardware/camera2/impl/CameraMetadataNative", mClazzCameraMetadataNative),
      METHOD("writeToParcel", "(Landroid/os/Parcel;I)V", mMethodWriteToParcel),
      CLASS("android/os/Parcel", mClazzParcel),
      STATIC_METHOD("obtain", "()Landroid/os/Parcel;", mMethodParcelObtain),
      METHOD("pushAllowFds", "(Z)Z", mMethodPushAllowFds),
      METHOD("marshall", "()[B", mMethodParcelMarshall),
      CLASS("android/hardware/camera2/CameraCharacteristics$Key", mClazzCharacteristicsKey),
      METHOD("<init>", "(Ljava/lang/String;Ljava/lang/Class;)V", mCharacteristicsConstructorKey),
      CLASS("android/hardware/camera2/CameraCharacteristics", mClazzCameraCharacteristics),
      METHOD("get", "(Landroid/hardware/camera2/CameraCharacteristics$Key;)Ljava/lang/Object;",
             mMethodCharacteristicsGet),
      CLASS("java/lang/Integer", mClazzInt),
      METHOD("intValue", "()I", mMethodIntValue),
      METHOD("<init>", "(I)V", mConstructorInt),
      CLASS("java/lang/Float", mClazzFloat),
      METHOD("floatValue", "()F", mMethodFloatValue),
      METHOD("<init>", "(F)V", mConstructorFloat),
      // Oddity 7: Double is examined through the Float class, and its rows end the walk.
      CLASS("java/lang/Double", mClazzDouble).examining(&P::mClazzFloat).with(Row::kStop),
      METHOD("doubleValue", "()D", mMethodDoubleValue).with(Row::kStop),
      METHOD("<init>", "(D)V", mConstructorDouble).with(Row::kStop),
      CLASS("java/lang/Long", mClazzLong),
      METHOD("longValue", "()J", mMethodLongValue),
      METHOD("<init>", "(J)V", mConstructorLong),
      CLASS("[I", mClazzPrimitiveIntArray),
      CLASS("[Ljava/lang/Integer;", mClazzIntArray),
      // Oddity 8.
      CLASS("[J", mClazzPrimitiveLongArray).reportedAs("mClazzPrimitiveIntArray"),
      CLASS("[Ljava/lang/Long;", mClazzLongArray),
      CLASS("[F", mClazzPrimitiveFloatArray),
      CLASS("[Ljava/lang/Float;", mClazzFloatArray),
      CLASS("[D", mClazzPrimitiveDoubleArray).with(Row::kStop),
      CLASS("[Ljava/lang/Double;", mClazzDoubleArray).with(Row::kStop),
      CLASS("java/lang/String", mClazzString),
      METHOD("getBytes", "()[B", mMethodGetBytes),
      CLASS("[B", mClazzByteArray),
      CLASS("[Ljava/lang/String;", mClazzStringArray),
      CLASS("[Landroid/hardware/camera2/params/Face;", mClazzFaceArray),
      CLASS("android/hardware/camera2/params/Face", mClazzFace),
      METHOD("getBounds", "()Landroid/graphics/Rect;", mMethodGetBounds),
      CLASS("android/graphics/Rect", mClazzRect),
      FIELD("left", "I", mRectFieldLeft),
      FIELD("right", "I", mRectFieldRight),
      FIELD("top", "I", mRectFieldTop),
      FIELD("bottom", "I", mRectFieldBottom),
      CLASS("android/hardware/camera2/params/MeteringRectangle", mClazzMeteringRectangle),
      METHOD("getRect", "()Landroid/graphics/Rect;", mMethodGetRect),
      // Oddity 9.
      METHOD("getMeteringWeight", "()I", mMethodGetMeteringWeight)
          .with(Row::kAnyClass | Row::kBareTag).reportedAs("mMethodGetRect"),
      CLASS("[Landroid/hardware/camera2/params/MeteringRectangle;", mClazzMeteringRectangleArray),
      CLASS("android/location/Location", mClazzLocation),
      METHOD("getLatitude", "()D", mMethodGetLatitude),
      METHOD("getLongitude", "()D", mMethodGetLongitude),
      METHOD("getAltitude", "()D", mMethodGetAltitude),
      METHOD("getTime", "()J", mMethodGetTimestamp),
      METHOD("hasAltitude", "()Z", mMethodHasAltitude),
      CLASS("android/util/Rational", mClazzRational),
      METHOD("getNumerator", "()I", mMethodGetNumerator),
      METHOD("getDenominator", "()I", mMethodGetDenominator),
  };
  // Oddity 9 again: the methods do without their class.
  static constexpr Row kCompositionRows[] = {
      CLASS("com/orlu/orlu3rdalgoservice/CaptureResultComposition", mClazzCaptureResultComposition),
      METHOD("getMetadata", "(Ljava/lang/String;)Ljava/lang/Object;", mMethodGetMetadata)
          .with(Row::kAnyClass),
      METHOD("putMetadata", "(Ljava/lang/String;Ljava/lang/Object;)V", mMethodPutMetadata)
          .with(Row::kAnyClass),
  };
  static constexpr Row kHashMapRows[] = {
      CLASS("java/util/HashMap", mClazzHashMap).with(Row::kStop),
      METHOD("<init>", "()V", mConstructorHashMap),
      METHOD("put", "(Ljava/lang/Object;Ljava/lang/Object;)Ljava/lang/Object;", mMethodHashMapPut),
  };
  // clang-format on
#undef CLASS
#undef METHOD
#undef STATIC_METHOD
#undef FIELD
};

int CameraMetadataParser::initFromEnv(JNIEnv* env, bool withoutComposition) {
  *this = CameraMetadataParser();
  mEnv = env;
  if (mEnv == nullptr) {
    LOGE("mEnv is null");
    return -1;
  }
  reserveLocalReferences(mEnv, kLocalReferences);
  JniMemberWalk<CameraMetadataParser> walk(mEnv, *this, LOG_PLACE, kShortLogTag);
  walk.resolve(Table::kRows);
  if (!withoutComposition) walk.resolve(Table::kCompositionRows);
  walk.resolve(Table::kHashMapRows);
  return walk.result();
}

}  // namespace orlu
