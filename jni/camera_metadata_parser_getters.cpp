#include <algorithm>
#include <cstring>

#include "camera_metadata_parser.h"
#include "camera_metadata_parser_boxing.h"
#include "jni_support.h"
#include "log.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-CameraMetadataParser";

// How many of `length` elements go into `capacity` slots; none when either is below 1.
int copyCount(int length, int capacity) {
  return std::max(0, std::min(length, capacity));
}

}  // namespace

// ---- Lookups

void CameraMetadataParser::knowFrame(jobject captureResult, jobject composition) {
  if (mEnv == nullptr) return;
  mKnownCaptureResult = isInstance(mEnv, captureResult, mClazzCaptureResult) ? captureResult : nullptr;
  mKnownComposition = isInstance(mEnv, composition, mClazzCaptureResultComposition) ? composition : nullptr;
}

CameraMetadataParser::RepeatedTag::RepeatedTag(CameraMetadataParser& parser, const char* tag)
    : mParser(parser), mTag(tag), mOuter(parser.mRepeatedTag), mObjects(parser.mEnv) {
  parser.mRepeatedTag = this;
}

// Those that are kept for the key, else `fresh`.
CameraMetadataParser::KeyObjects& CameraMetadataParser::keyObjects(const char* key, KeyObjects& fresh) {
  for (RepeatedTag* tag = mRepeatedTag; tag != nullptr; tag = tag->mOuter) {
    if (std::strcmp(tag->mTag, key) == 0) return tag->mObjects;
  }
  return fresh;
}

bool CameraMetadataParser::isComposition(jobject parameter) {
  if (parameter == nullptr) return false;
  return parameter == mKnownComposition || isInstance(mEnv, parameter, mClazzCaptureResultComposition);
}

jobject CameraMetadataParser::getMetadataObjectFromCaptureResult(jobject captureResult, const char* key,
                                                                 jclass valueClass) {
  return getMetadataObjectFromCaptureResult(captureResult, nullptr, key, valueClass);
}

jobject CameraMetadataParser::getMetadataObjectFromOrluAlgorithmParameter(jobject parameter, const char* key,
                                                                          jclass /*valueClass*/) {
  if (mMethodGetMetadata == nullptr || !isComposition(parameter)) return nullptr;
  ScopedLocalRef<jstring> name(mEnv, newName(key));
  return askComposition(parameter, name.get(), key);
}

jobject CameraMetadataParser::getMetadataObjectFromCaptureResult(jobject captureResult, jobject parameter,
                                                                 const char* key, jclass valueClass) {
  if (mEnv == nullptr || (captureResult == nullptr && parameter == nullptr)) return nullptr;
  KeyObjects fresh(mEnv);
  KeyObjects& objects = keyObjects(key, fresh);
  if (!objects.name) objects.name.reset(newName(key));
  if (mMethodGetMetadata != nullptr && isComposition(parameter)) {
    jobject value = askComposition(parameter, objects.name.get(), key);
    if (value != nullptr) return value;
  }
  return askTyped(captureResult, mClazzCaptureResult, mClazzKey, mConstructorKey, mMethodGet, objects, key,
                  valueClass);
}

jobject CameraMetadataParser::getMetadataObjectFromCharacteristics(jobject characteristics, const char* key,
                                                                   jclass valueClass) {
  if (mEnv == nullptr || characteristics == nullptr) return nullptr;
  KeyObjects objects(mEnv);
  objects.name.reset(newName(key));
  return askTyped(characteristics, mClazzCameraCharacteristics, mClazzCharacteristicsKey,
                  mCharacteristicsConstructorKey, mMethodCharacteristicsGet, objects, key, valueClass);
}

// A key's Java string; null when the VM has no memory for it.
jstring CameraMetadataParser::newName(const char* key) {
  jstring name = mEnv->NewStringUTF(key);
  if (name == nullptr) clearException(mEnv);
  return name;
}

jobject CameraMetadataParser::askComposition(jobject parameter, jstring name, const char* key) {
  if (name == nullptr) return nullptr;
  return cleared(mEnv->CallObjectMethod(parameter, mMethodGetMetadata, name), key);
}

// Asks a capture result or characteristics with the platform's typed key.
jobject CameraMetadataParser::askTyped(jobject source, jclass sourceClass, jclass keyClass,
                                       jmethodID keyConstructor, jmethodID get, KeyObjects& objects,
                                       const char* key, jclass valueClass) {
  if (keyClass == nullptr || keyConstructor == nullptr || get == nullptr || valueClass == nullptr ||
      source == nullptr) {
    return nullptr;
  }
  const bool isKnown = source == mKnownCaptureResult && sourceClass == mClazzCaptureResult;
  if (!isKnown && !isInstance(mEnv, source, sourceClass)) return nullptr;
  if (!objects.name) return nullptr;
  if (!objects.typed || objects.valueClass != valueClass) {
    objects.typed.reset(mEnv->NewObject(keyClass, keyConstructor, objects.name.get(), valueClass));
    objects.valueClass = valueClass;
  }
  if (!objects.typed) return cleared(nullptr, key);
  return cleared(mEnv->CallObjectMethod(source, get, objects.typed.get()), key);
}

// The value, unless Java threw instead of answering it.
jobject CameraMetadataParser::cleared(jobject value, const char* key) {
  if (!clearException(mEnv)) return value;
  LOGE("get %s is null", key);
  return nullptr;
}

// ---- Getters: one source and one unpacking each

int CameraMetadataParser::getInt(int32_t& value, const char* key, jobject captureResult, jobject parameter) {
  return unpack(value, key, getMetadataObjectFromCaptureResult(captureResult, parameter, key, mClazzInt));
}

int CameraMetadataParser::getFloat(float& value, const char* key, jobject captureResult, jobject parameter) {
  return unpack(value, key, getMetadataObjectFromCaptureResult(captureResult, parameter, key, mClazzFloat));
}

int CameraMetadataParser::getLong(int64_t& value, const char* key, jobject captureResult, jobject parameter) {
  return unpack(value, key, getMetadataObjectFromCaptureResult(captureResult, parameter, key, mClazzLong));
}

int CameraMetadataParser::getString(char* buffer, int size, const char* key, jobject captureResult,
                                    jobject parameter) {
  return unpackString(buffer, size, key,
                      getMetadataObjectFromCaptureResult(captureResult, parameter, key, mClazzString));
}

int CameraMetadataParser::getArrayBytes(char* buffer, int size, const char* key, jobject captureResult,
                                        jobject parameter) {
  return unpackBytes(buffer, size, key,
                     getMetadataObjectFromCaptureResult(captureResult, parameter, key, mClazzByteArray));
}

int CameraMetadataParser::getIntArray(int32_t* values, int capacity, const char* key, jobject captureResult,
                                      jobject parameter) {
  return unpackArray(values, capacity, key,
                     getMetadataObjectFromCaptureResult(captureResult, parameter, key, mClazzIntArray));
}

int CameraMetadataParser::getFloatArray(float* values, int capacity, const char* key, jobject captureResult,
                                        jobject parameter) {
  return unpackArray(values, capacity, key,
                     getMetadataObjectFromCaptureResult(captureResult, parameter, key, mClazzFloatArray));
}

int CameraMetadataParser::getDoubleArray(double* values, int capacity, const char* key, jobject captureResult,
                                         jobject parameter) {
  return unpackArray(values, capacity, key,
                     getMetadataObjectFromCaptureResult(captureResult, parameter, key, mClazzDoubleArray));
}

int CameraMetadataParser::getLongArray(int64_t* values, int capacity, const char* key, jobject captureResult,
                                       jobject parameter) {
  return unpackArray(values, capacity, key,
                     getMetadataObjectFromCaptureResult(captureResult, parameter, key, mClazzLongArray));
}

int CameraMetadataParser::getStringArray(std::vector<std::string>& values, const char* key,
                                         jobject captureResult, jobject parameter) {
  return unpackStrings(values, key,
                       getMetadataObjectFromCaptureResult(captureResult, parameter, key, mClazzStringArray));
}

int CameraMetadataParser::getFaceInfo(_tagOrluFaceInfo& faces, int capacity, const char* key,
                                      jobject captureResult, jobject parameter) {
  return unpackFaces(faces, capacity, key,
                     getMetadataObjectFromCaptureResult(captureResult, parameter, key, mClazzFaceArray));
}

int CameraMetadataParser::getIntFaceArray(_tagOrluFaceInfo& faces, int capacity, const char* key,
                                          jobject captureResult, jobject parameter) {
  return unpackIntFaces(faces, capacity, key,
                        getMetadataObjectFromCaptureResult(captureResult, parameter, key, mClazzIntArray));
}

int CameraMetadataParser::getRectInfo(__tagOrluRect& rect, const char* key, jobject captureResult,
                                      jobject parameter) {
  return unpack(rect, key, getMetadataObjectFromCaptureResult(captureResult, parameter, key, mClazzRect));
}

int CameraMetadataParser::getRectInfo_ex(SCR_Type& crop, const char* key, jobject captureResult,
                                         jobject parameter) {
  return unpack(crop, key, getMetadataObjectFromCaptureResult(captureResult, parameter, key, mClazzRect));
}

int CameraMetadataParser::getMeteringRectangle(__tagOrluRect& rect, int32_t& weight, const char* key,
                                               jobject captureResult, jobject parameter) {
  return unpackMetering(
      rect, &weight, key,
      getMetadataObjectFromCaptureResult(captureResult, parameter, key, mClazzMeteringRectangleArray));
}

int CameraMetadataParser::getGpsLocation(GpsLocation& location, const char* key, jobject captureResult,
                                         jobject parameter) {
  return unpack(location, key,
                getMetadataObjectFromCaptureResult(captureResult, parameter, key, mClazzLocation));
}

int CameraMetadataParser::getIntOrlu(int32_t& value, const char* key, jobject parameter) {
  return unpack(value, key, getMetadataObjectFromOrluAlgorithmParameter(parameter, key, mClazzInt));
}

int CameraMetadataParser::getLongOrlu(int64_t& value, const char* key, jobject parameter) {
  return unpack(value, key, getMetadataObjectFromOrluAlgorithmParameter(parameter, key, mClazzLong));
}

int CameraMetadataParser::getFloatOrlu(float& value, const char* key, jobject parameter) {
  return unpack(value, key, getMetadataObjectFromOrluAlgorithmParameter(parameter, key, mClazzFloat));
}

int CameraMetadataParser::getStringOrlu(char* buffer, int size, const char* key, jobject parameter) {
  return unpackString(buffer, size, key,
                      getMetadataObjectFromOrluAlgorithmParameter(parameter, key, mClazzString));
}

int CameraMetadataParser::getFaceInfoOrlu(_tagOrluFaceInfo& faces, int capacity, const char* key,
                                          jobject parameter) {
  return unpackFaces(faces, capacity, key,
                     getMetadataObjectFromOrluAlgorithmParameter(parameter, key, mClazzFaceArray));
}

int CameraMetadataParser::getRectInfoOrlu(__tagOrluRect& rect, const char* key, jobject parameter) {
  return unpack(rect, key, getMetadataObjectFromOrluAlgorithmParameter(parameter, key, mClazzRect));
}

int CameraMetadataParser::getMeteringRectangleOrlu(__tagOrluRect& rect, const char* key, jobject parameter) {
  return unpackMetering(
      rect, nullptr, key,
      getMetadataObjectFromOrluAlgorithmParameter(parameter, key, mClazzMeteringRectangleArray));
}

int CameraMetadataParser::getIntArrayOrlu(int32_t* values, int capacity, const char* key, jobject parameter) {
  return unpackBoxedArray(values, capacity, key,
                          getMetadataObjectFromOrluAlgorithmParameter(parameter, key, mClazzIntArray));
}

int CameraMetadataParser::getFloatArrayOrlu(float* values, int capacity, const char* key, jobject parameter) {
  return unpackBoxedArray(values, capacity, key,
                          getMetadataObjectFromOrluAlgorithmParameter(parameter, key, mClazzFloatArray));
}

int CameraMetadataParser::getCharacteristicsInt(int32_t& value, const char* key, jobject characteristics) {
  return unpack(value, key, getMetadataObjectFromCharacteristics(characteristics, key, mClazzInt));
}

int CameraMetadataParser::getCharacteristicsIntArray(int32_t* values, int capacity, const char* key,
                                                     jobject characteristics) {
  return unpackBoxedArray(values, capacity, key,
                          getMetadataObjectFromCharacteristics(characteristics, key, mClazzIntArray));
}

int CameraMetadataParser::getCharacteristicsRational(Rational& value, const char* key,
                                                     jobject characteristics) {
  return unpack(value, key, getMetadataObjectFromCharacteristics(characteristics, key, mClazzRational));
}

int CameraMetadataParser::getCharacteristicsRectInfo(__tagOrluRect& rect, const char* key,
                                                     jobject characteristics) {
  return unpack(rect, key, getMetadataObjectFromCharacteristics(characteristics, key, mClazzRect));
}

int CameraMetadataParser::getCharacteristicsRectInfo_ex(SCR_Type& crop, const char* key,
                                                        jobject characteristics) {
  return unpack(crop, key, getMetadataObjectFromCharacteristics(characteristics, key, mClazzRect));
}

// ---- Unpacking

int CameraMetadataParser::missing(const char* key) {
  LOGE("get %s is null", key);
  return -1;
}

int CameraMetadataParser::wrongType(const char* key) {
  LOGE("wrong object type %s", key);
  return -1;
}

int CameraMetadataParser::unpack(int32_t& out, const char* key, jobject value) {
  return unpackScalar(out, key, value);
}

int CameraMetadataParser::unpack(float& out, const char* key, jobject value) {
  return unpackScalar(out, key, value);
}

int CameraMetadataParser::unpack(int64_t& out, const char* key, jobject value) {
  return unpackScalar(out, key, value);
}

int CameraMetadataParser::unpack(__tagOrluRect& out, const char* key, jobject value) {
  ScopedLocalRef<> owned(mEnv, value);
  if (!owned) return missing(key);
  return readRect(out, value) ? 0 : wrongType(key);
}

int CameraMetadataParser::unpack(SCR_Type& out, const char* key, jobject value) {
  __tagOrluRect rect;
  const int status = unpack(rect, key, value);
  if (status != 0) return status;
  // The rectangle class has no fifth field on any platform so far, so the flag stays false.
  std::memset(&out, 0, sizeof out);
  out.left = rect.left;
  out.right = rect.right;
  out.top = rect.top;
  out.bottom = rect.bottom;
  return 0;
}

int CameraMetadataParser::unpack(GpsLocation& out, const char* key, jobject value) {
  ScopedLocalRef<> owned(mEnv, value);
  if (!owned) return missing(key);
  if (mMethodGetLatitude == nullptr || mMethodGetLongitude == nullptr || mMethodGetAltitude == nullptr ||
      mMethodGetTimestamp == nullptr || mMethodHasAltitude == nullptr ||
      !isInstance(mEnv, value, mClazzLocation)) {
    return wrongType(key);
  }
  out.latitude = mEnv->CallDoubleMethod(value, mMethodGetLatitude);
  clearException(mEnv);
  out.longitude = mEnv->CallDoubleMethod(value, mMethodGetLongitude);
  clearException(mEnv);
  out.altitude = mEnv->CallDoubleMethod(value, mMethodGetAltitude);
  clearException(mEnv);
  out.timestamp = mEnv->CallLongMethod(value, mMethodGetTimestamp);
  clearException(mEnv);
  out.hasAltitude = mEnv->CallBooleanMethod(value, mMethodHasAltitude) != JNI_FALSE ? 1 : 0;
  clearException(mEnv);
  return 0;
}

int CameraMetadataParser::unpack(Rational& out, const char* key, jobject value) {
  ScopedLocalRef<> owned(mEnv, value);
  if (!owned) return missing(key);
  if (mMethodGetNumerator == nullptr || mMethodGetDenominator == nullptr ||
      !isInstance(mEnv, value, mClazzRational)) {
    return wrongType(key);
  }
  out.numerator = mEnv->CallIntMethod(value, mMethodGetNumerator);
  clearException(mEnv);
  out.denominator = mEnv->CallIntMethod(value, mMethodGetDenominator);
  clearException(mEnv);
  return 0;
}

template <typename T>
int CameraMetadataParser::unpackScalar(T& out, const char* key, jobject value) {
  ScopedLocalRef<> owned(mEnv, value);
  if (!owned) return missing(key);
  return unbox(out, value) ? 0 : wrongType(key);
}

template <typename T>
bool CameraMetadataParser::unbox(T& out, jobject boxed) {
  using Box = Boxed<T>;
  if (this->*Box::kValueMethod == nullptr || !isInstance(mEnv, boxed, this->*Box::kClass)) return false;
  const auto value = (mEnv->*Box::kCall)(boxed, this->*Box::kValueMethod);
  if (clearException(mEnv)) return false;
  out = static_cast<T>(value);
  return true;
}

template <typename T>
int CameraMetadataParser::unpackArray(T* out, int capacity, const char* key, jobject value) {
  ScopedLocalRef<> owned(mEnv, value);
  if (!owned) return missing(key);
  if (isInstance(mEnv, value, this->*Boxed<T>::kPrimitiveArrayClass)) {
    copyPrimitives(out, capacity, value);
  } else if (isInstance(mEnv, value, this->*Boxed<T>::kArrayClass)) {
    copyBoxed(out, capacity, value);
  } else {
    return wrongType(key);
  }
  return 0;
}

template <typename T>
int CameraMetadataParser::unpackBoxedArray(T* out, int capacity, const char* key, jobject value) {
  ScopedLocalRef<> owned(mEnv, value);
  if (!owned) return missing(key);
  if (!isInstance(mEnv, value, this->*Boxed<T>::kArrayClass)) return wrongType(key);
  copyBoxed(out, capacity, value);
  return 0;
}

template <typename T>
void CameraMetadataParser::copyPrimitives(T* out, int capacity, jobject array) {
  using Box = Boxed<T>;
  const auto typed = static_cast<typename Box::PrimitiveArray>(array);
  auto* elements = (mEnv->*Box::kGetElements)(typed, nullptr);
  if (elements == nullptr) {
    clearException(mEnv);
    return;
  }
  std::copy_n(elements, copyCount(mEnv->GetArrayLength(typed), capacity), out);
  (mEnv->*Box::kReleaseElements)(typed, elements, 0);
}

template <typename T>
void CameraMetadataParser::copyBoxed(T* out, int capacity, jobject array) {
  const auto typed = static_cast<jobjectArray>(array);
  const int count = copyCount(mEnv->GetArrayLength(typed), capacity);
  for (int i = 0; i < count; ++i) {
    ScopedLocalRef<> element(mEnv, mEnv->GetObjectArrayElement(typed, i));
    unbox(out[i], element.get());
  }
}

bool CameraMetadataParser::readRect(__tagOrluRect& out, jobject rect) {
  if (mRectFieldLeft == nullptr || mRectFieldRight == nullptr || mRectFieldTop == nullptr ||
      mRectFieldBottom == nullptr || !isInstance(mEnv, rect, mClazzRect)) {
    return false;
  }
  out.left = mEnv->GetIntField(rect, mRectFieldLeft);
  out.top = mEnv->GetIntField(rect, mRectFieldTop);
  out.right = mEnv->GetIntField(rect, mRectFieldRight);
  out.bottom = mEnv->GetIntField(rect, mRectFieldBottom);
  return true;
}

// What a method without arguments answers, as a new local reference; null when it can't be called.
jobject CameraMetadataParser::callObject(jobject object, jmethodID method) {
  if (object == nullptr || method == nullptr) return nullptr;
  jobject answer = mEnv->CallObjectMethod(object, method);
  return clearException(mEnv) ? nullptr : answer;
}

void CameraMetadataParser::copyBytes(char* buffer, int size, jbyteArray array) {
  jbyte* elements = mEnv->GetByteArrayElements(array, nullptr);
  if (elements == nullptr) {
    clearException(mEnv);
    return;
  }
  std::copy_n(elements, copyCount(mEnv->GetArrayLength(array), size), buffer);
  mEnv->ReleaseByteArrayElements(array, elements, 0);
}

int CameraMetadataParser::unpackString(char* buffer, int size, const char* key, jobject value) {
  ScopedLocalRef<> owned(mEnv, value);
  std::fill_n(buffer, std::max(0, size), '\0');
  if (!owned) return missing(key);
  if (!isInstance(mEnv, value, mClazzString)) return wrongType(key);
  ScopedLocalRef<jbyteArray> bytes(mEnv, static_cast<jbyteArray>(callObject(value, mMethodGetBytes)));
  if (!bytes) return wrongType(key);
  copyBytes(buffer, size, bytes.get());
  return 0;
}

int CameraMetadataParser::unpackBytes(char* buffer, int size, const char* key, jobject value) {
  ScopedLocalRef<> owned(mEnv, value);
  std::fill_n(buffer, std::max(0, size), '\0');
  if (!owned) return missing(key);
  if (!isInstance(mEnv, value, mClazzByteArray)) return wrongType(key);
  copyBytes(buffer, size, static_cast<jbyteArray>(value));
  return 0;
}

bool CameraMetadataParser::appendString(std::vector<std::string>& out, jobject string) {
  if (!isInstance(mEnv, string, mClazzString)) return false;
  ScopedLocalRef<jbyteArray> bytes(mEnv, static_cast<jbyteArray>(callObject(string, mMethodGetBytes)));
  if (!bytes) return false;
  const int length = mEnv->GetArrayLength(bytes.get());
  std::string text(static_cast<size_t>(length), '\0');
  copyBytes(text.data(), length, bytes.get());
  out.push_back(std::move(text));
  return true;
}

int CameraMetadataParser::unpackStrings(std::vector<std::string>& out, const char* key, jobject value) {
  ScopedLocalRef<> owned(mEnv, value);
  if (!owned) return missing(key);
  if (!isInstance(mEnv, value, mClazzStringArray)) return wrongType(key);
  const auto array = static_cast<jobjectArray>(value);
  const int length = mEnv->GetArrayLength(array);
  for (int i = 0; i < length; ++i) {
    ScopedLocalRef<> element(mEnv, mEnv->GetObjectArrayElement(array, i));
    appendString(out, element.get());
  }
  return 0;
}

int CameraMetadataParser::unpackFaces(_tagOrluFaceInfo& out, int capacity, const char* key, jobject value) {
  ScopedLocalRef<> owned(mEnv, value);
  if (!owned) return missing(key);
  if (!isInstance(mEnv, value, mClazzFaceArray)) return wrongType(key);
  const auto array = static_cast<jobjectArray>(value);
  out.count = mEnv->GetArrayLength(array);
  const int count = copyCount(out.count, std::min(capacity, kMaxFaces));
  for (int i = 0; i < count; ++i) {
    ScopedLocalRef<> face(mEnv, mEnv->GetObjectArrayElement(array, i));
    ScopedLocalRef<> bounds(mEnv, callObject(face.get(), mMethodGetBounds));
    readRect(out.rects[i], bounds.get());
  }
  return 0;
}

int CameraMetadataParser::unpackIntFaces(_tagOrluFaceInfo& out, int capacity, const char* key,
                                         jobject value) {
  constexpr int kIntsPerFace = 4;
  ScopedLocalRef<> owned(mEnv, value);
  if (!owned) return missing(key);
  const bool primitive = isInstance(mEnv, value, mClazzPrimitiveIntArray);
  if (!primitive && !isInstance(mEnv, value, mClazzIntArray)) return wrongType(key);
  out.count = mEnv->GetArrayLength(static_cast<jarray>(value)) / kIntsPerFace;
  const int faces = copyCount(out.count, std::min(capacity, kMaxFaces));
  if (faces == 0) return 0;
  // The record's rectangles are the four ints of each face, one after the other.
  int32_t ints[kMaxFaces * kIntsPerFace];
  std::memcpy(ints, out.rects, sizeof ints);
  if (primitive) {
    copyPrimitives(ints, faces * kIntsPerFace, value);
  } else {
    copyBoxed(ints, faces * kIntsPerFace, value);
  }
  std::memcpy(out.rects, ints, sizeof ints);
  return 0;
}

int CameraMetadataParser::unpackMetering(__tagOrluRect& rect, int32_t* weight, const char* key,
                                         jobject value) {
  ScopedLocalRef<> owned(mEnv, value);
  if (!owned) return missing(key);
  if (!isInstance(mEnv, value, mClazzMeteringRectangleArray)) return wrongType(key);
  const auto array = static_cast<jobjectArray>(value);
  if (mEnv->GetArrayLength(array) < 1) return -1;
  ScopedLocalRef<> first(mEnv, mEnv->GetObjectArrayElement(array, 0));
  ScopedLocalRef<> bounds(mEnv, callObject(first.get(), mMethodGetRect));
  readRect(rect, bounds.get());
  if (weight != nullptr && first && mMethodGetMeteringWeight != nullptr) {
    const jint read = mEnv->CallIntMethod(first.get(), mMethodGetMeteringWeight);
    if (!clearException(mEnv)) *weight = read;
  }
  return 0;
}

// ---- Serialising

std::vector<uint8_t> CameraMetadataParser::getMetadata(jobject captureResult) {
  if (captureResult == nullptr || mEnv == nullptr) {
    LOGE("get metadata failed, input is null");
    return {};
  }
  jfieldID results = nullptr;
  if (isInstance(mEnv, captureResult, mClazzCaptureResult)) {
    results = mEnv->GetFieldID(mClazzCaptureResult, "mResults",
                               "Landroid/hardware/camera2/impl/CameraMetadataNative;");
    clearException(mEnv);
  }
  if (results == nullptr) LOGE("cameraNativeFiled is null");
  ScopedLocalRef<> native(mEnv, results == nullptr ? nullptr : mEnv->GetObjectField(captureResult, results));
  if (!native) LOGE("camerametadataNative is null");
  return marshal(native.get());
}

// The bytes of a parcel that the camera metadata (or nothing, when it is null) was written to.
std::vector<uint8_t> CameraMetadataParser::marshal(jobject cameraMetadata) {
  ScopedLocalRef<> parcel(mEnv, mMethodParcelObtain == nullptr
                                    ? nullptr
                                    : mEnv->CallStaticObjectMethod(mClazzParcel, mMethodParcelObtain));
  clearException(mEnv);
  if (!parcel) LOGE("parcel is null");
  if (parcel && mMethodPushAllowFds != nullptr) {
    mEnv->CallBooleanMethod(parcel.get(), mMethodPushAllowFds, static_cast<jboolean>(JNI_FALSE));
    clearException(mEnv);
  }
  if (parcel && mMethodWriteToParcel != nullptr &&
      isInstance(mEnv, cameraMetadata, mClazzCameraMetadataNative)) {
    mEnv->CallVoidMethod(cameraMetadata, mMethodWriteToParcel, parcel.get(), 0);
    clearException(mEnv);
  }
  ScopedLocalRef<jbyteArray> bytes(mEnv,
                                   static_cast<jbyteArray>(callObject(parcel.get(), mMethodParcelMarshall)));
  if (!bytes) {
    LOGE("metadata is null");
    return {};
  }
  const int length = mEnv->GetArrayLength(bytes.get());
  std::vector<uint8_t> result(static_cast<size_t>(length));
  copyBytes(reinterpret_cast<char*>(result.data()), length, bytes.get());
  return result;
}

}  // namespace orlu
