#include "camera_metadata_parser.h"

#include "jni_member_table.h"
#include "log.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-CameraMetadataParser";
constexpr char kShortLogTag[] = "VASJNI-CameraMetadataParser";

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
      METHOD("get", "(Landroid/hardware/camera2/CameraCharacteristics$Key;)Ljava/lang/Object;", mMethodCharacteristicsGet),
      CLASS("java/lang/Integer", mClazzInt),
      METHOD("intValue", "()I", mMethodIntValue),
      METHOD("<init>", "(I)V", mConstructorInt),
      CLASS("java/lang/Float", mClazzFloat),
      METHOD("floatValue", "()F", mMethodFloatValue),
      METHOD("<init>", "(F)V", mConstructorFloat),
      // The presence test of Double deliberately looks at the Float class, and the Double rows end the walk.
      CLASS("java/lang/Double", mClazzDouble).examining(&P::mClazzFloat).with(Row::kStop),
      METHOD("doubleValue", "()D", mMethodDoubleValue).with(Row::kStop),
      METHOD("<init>", "(D)V", mConstructorDouble).with(Row::kStop),
      CLASS("java/lang/Long", mClazzLong),
      METHOD("longValue", "()J", mMethodLongValue),
      METHOD("<init>", "(J)V", mConstructorLong),
      CLASS("[I", mClazzPrimitiveIntArray),
      CLASS("[Ljava/lang/Integer;", mClazzIntArray),
      // Reported with the name of "[I", deliberately.
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
      // Looked up without its class too, and reported as the row above, deliberately.
      METHOD("getMeteringWeight", "()I", mMethodGetMeteringWeight).with(Row::kAnyClass | Row::kBareTag).reportedAs("mMethodGetRect"),
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
      // The methods are looked up even when their class is missing, deliberately.
      CLASS("com/orlu/orlu3rdalgoservice/CaptureResultComposition", mClazzCaptureResultComposition).with(Row::kComposition),
      METHOD("getMetadata", "(Ljava/lang/String;)Ljava/lang/Object;", mMethodGetMetadata).with(Row::kComposition | Row::kAnyClass),
      METHOD("putMetadata", "(Ljava/lang/String;Ljava/lang/Object;)V", mMethodPutMetadata).with(Row::kComposition | Row::kAnyClass),
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

  int result = 0;
  JniMemberWalk<CameraMetadataParser> walk(mEnv, *this, Table::kRows,
                                           withoutComposition ? Table::Row::kComposition : Table::Row::kNone);
  while (const Table::Row* row = walk.nextMissing()) {
    result = -1;
    if (row->has(Table::Row::kBareTag)) {
      LOGE_BARE(kShortLogTag, "%s is null", row->label);
    } else {
      LOGE("%s is null", row->label);
    }
    if (row->has(Table::Row::kStop)) break;
  }
  return result;
}

}  // namespace orlu
