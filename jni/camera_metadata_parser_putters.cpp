#include "camera_metadata_parser.h"
#include "camera_metadata_parser_boxing.h"
#include "jni_support.h"
#include "log.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-CameraMetadataParser";

constexpr auto kIntoComposition = &CameraMetadataParser::putMetadataObjectIntoCaptureResultComposition;
constexpr auto kIntoHashMap = &CameraMetadataParser::putObjectIntoHashMap;

}  // namespace

// ---- Stores

int CameraMetadataParser::putMetadataObjectIntoCaptureResultComposition(jobject composition, const char* key,
                                                                        jobject value) {
  if (value == nullptr || mMethodPutMetadata == nullptr || !isComposition(composition)) return -1;
  ScopedLocalRef<jstring> name(mEnv, mEnv->NewStringUTF(key));
  if (name) mEnv->CallVoidMethod(composition, mMethodPutMetadata, name.get(), value);
  return clearException(mEnv) ? -1 : 0;
}

int CameraMetadataParser::putObjectIntoHashMap(jobject map, const char* key, jobject value) {
  if (value == nullptr || mMethodHashMapPut == nullptr || !isInstance(mEnv, map, mClazzHashMap)) return -1;
  ScopedLocalRef<jstring> name(mEnv, mEnv->NewStringUTF(key));
  ScopedLocalRef<> previous(
      mEnv, name ? mEnv->CallObjectMethod(map, mMethodHashMapPut, name.get(), value) : nullptr);
  return clearException(mEnv) ? -1 : 0;
}

// ---- Boxing

// Boxes a scalar and stores it.
template <typename T>
int CameraMetadataParser::putBoxed(T value, jmethodID constructor, const char* key, jobject container,
                                   Store into) {
  const jclass clazz = this->*Boxed<T>::kClass;
  if (clazz == nullptr || constructor == nullptr || container == nullptr) return invalidPut(key);
  ScopedLocalRef<> boxed(mEnv, mEnv->NewObject(clazz, constructor, value));
  clearException(mEnv);
  return stored((this->*into)(container, key, boxed.get()), key);
}

// Copies an array into a new Java one and stores that. `required` is the class whose absence makes it fail.
template <typename T>
int CameraMetadataParser::putArray(const T* values, int count, jclass required, const char* key,
                                   jobject container, Store into) {
  using Box = Boxed<T>;
  if (required == nullptr || container == nullptr) return invalidPut(key);
  ScopedLocalRef<typename Box::PrimitiveArray> array(mEnv, (mEnv->*Box::kNewArray)(count));
  if (!clearException(mEnv) && array) {
    (mEnv->*Box::kSetRegion)(array.get(), 0, count, reinterpret_cast<const typename Box::Element*>(values));
  }
  return stored((this->*into)(container, key, array.get()), key);
}

int CameraMetadataParser::invalidPut(const char* key) {
  LOGE("put %s, input param is null", key);
  return -1;
}

int CameraMetadataParser::stored(int result, const char* key) {
  if (result == 0) return 0;
  LOGE("put %s is null", key);
  return -1;
}

// ---- Into a composition

int CameraMetadataParser::putInt(const int32_t& value, const char* key, jobject composition) {
  return putBoxed(value, mConstructorInt, key, composition, kIntoComposition);
}

int CameraMetadataParser::putFloat(const float& value, const char* key, jobject composition) {
  return putBoxed(value, mConstructorFloat, key, composition, kIntoComposition);
}

int CameraMetadataParser::putLong(const int64_t& value, const char* key, jobject composition) {
  return putBoxed(value, mConstructorLong, key, composition, kIntoComposition);
}

int CameraMetadataParser::putIntArray(const int32_t* values, int count, const char* key,
                                      jobject composition) {
  return putArray(values, count, mClazzIntArray, key, composition, kIntoComposition);
}

int CameraMetadataParser::putLongArray(const int64_t* values, int count, const char* key,
                                       jobject composition) {
  // Asks for the Integer[] class, not the Long[] one, deliberately.
  return putArray(values, count, mClazzIntArray, key, composition, kIntoComposition);
}

int CameraMetadataParser::putFloatArray(const float* values, int count, const char* key,
                                        jobject composition) {
  return putArray(values, count, mClazzFloatArray, key, composition, kIntoComposition);
}

int CameraMetadataParser::putDoubleArray(const double* values, int count, const char* key,
                                         jobject composition) {
  return putArray(values, count, mClazzDoubleArray, key, composition, kIntoComposition);
}

// ---- Into a hash map

jobject CameraMetadataParser::createHashMap() {
  if (mClazzHashMap == nullptr || mConstructorHashMap == nullptr) {
    LOGE("createHashMap failed, input is null");
    return nullptr;
  }
  jobject map = mEnv->NewObject(mClazzHashMap, mConstructorHashMap);
  clearException(mEnv);
  if (map == nullptr) LOGE("createHashMap failed");
  return map;
}

int CameraMetadataParser::putIntIntoHashMap(const int32_t& value, const char* key, jobject map) {
  return putBoxed(value, mConstructorInt, key, map, kIntoHashMap);
}

int CameraMetadataParser::putFloatIntoHashMap(const float& value, const char* key, jobject map) {
  return putBoxed(value, mConstructorFloat, key, map, kIntoHashMap);
}

int CameraMetadataParser::putLongIntoHashMap(const int64_t& value, const char* key, jobject map) {
  return putBoxed(value, mConstructorLong, key, map, kIntoHashMap);
}

int CameraMetadataParser::putIntArrayIntoHashMap(const int32_t* values, int count, const char* key,
                                                 jobject map) {
  return putArray(values, count, mClazzIntArray, key, map, kIntoHashMap);
}

}  // namespace orlu
