#include "camera_metadata_parser.h"
#include "camera_metadata_parser_boxing.h"
#include "jni_support.h"
#include "log.h"

namespace orlu {
// ---- Stores

int CameraMetadataParser::putMetadataObjectIntoCaptureResultComposition(jobject composition, const char* key,
                                                                        jobject value) {
  return intoComposition(mEnv, composition, key, value);
}

int CameraMetadataParser::putObjectIntoHashMap(jobject map, const char* key, jobject value) {
  return intoHashMap(mEnv, map, key, value);
}

int CameraMetadataParser::intoComposition(JNIEnv* owner, jobject composition, const char* key,
                                          jobject value) {
  if (value == nullptr || mMethodPutMetadata == nullptr || !isComposition(composition)) return -1;
  const ScopedLocalRef<jstring> name(owner, newName(key));
  if (!name) return -1;
  mEnv->CallVoidMethod(composition, mMethodPutMetadata, name.get(), value);
  return clearException(mEnv) ? -1 : 0;
}

int CameraMetadataParser::intoHashMap(JNIEnv* owner, jobject map, const char* key, jobject value) {
  if (value == nullptr || mMethodHashMapPut == nullptr || !isInstance(mEnv, map, mClazzHashMap)) return -1;
  const ScopedLocalRef<jstring> name(owner, newName(key));
  if (!name) return -1;
  const ScopedLocalRef<> previous(owner, mEnv->CallObjectMethod(map, mMethodHashMapPut, name.get(), value));
  return clearException(mEnv) ? -1 : 0;
}

// ---- Boxing

// Boxes a scalar and stores it. The log lines name the putter.
template <typename T>
int CameraMetadataParser::putBoxed(const char* putter, T value, const char* key, jobject container,
                                   Store into) {
  const jclass clazz = this->*Boxed<T>::kClass;
  const jmethodID constructor = this->*Boxed<T>::kConstructor;
  if (clazz == nullptr || constructor == nullptr || container == nullptr) {
    LOGE_AS(putter, "put %s, input param is null", key);
    return -1;
  }
  JNIEnv* const owner = referenceOwner();
  const ScopedLocalRef<> boxed(owner, clearIfNull(mEnv, mEnv->NewObject(clazz, constructor, value)));
  if ((this->*into)(owner, container, key, boxed.get()) == 0) return 0;
  LOGE_AS(putter, "put %s is null", key);
  return -1;
}

// Copies the values into a new Java array and stores the array. Fails if the class `required` is null, but
// does not use the class.
template <typename T>
int CameraMetadataParser::putArray(const char* putter, const T* values, int count, jclass required,
                                   const char* key, jobject container, Store into) {
  using Element = typename Boxed<T>::Element;
  using Functions = JniArray<Element>;
  if (required == nullptr || container == nullptr) {
    LOGE_AS(putter, "put %s, input param is null", key);
    return -1;
  }
  JNIEnv* const owner = referenceOwner();
  const ScopedLocalRef<typename Functions::Type> array(owner,
                                                       clearIfNull(mEnv, (mEnv->*Functions::kNew)(count)));
  if (array) (mEnv->*Functions::kSetRegion)(array.get(), 0, count, reinterpret_cast<const Element*>(values));
  if ((this->*into)(owner, container, key, array.get()) == 0) return 0;
  LOGE_AS(putter, "put %s is null", key);
  return -1;
}

jobject CameraMetadataParser::createHashMap() {
  if (mClazzHashMap == nullptr || mConstructorHashMap == nullptr) {
    LOGE("createHashMap failed, input is null");
    return nullptr;
  }
  jobject map = clearIfNull(mEnv, mEnv->NewObject(mClazzHashMap, mConstructorHashMap));
  if (map == nullptr) LOGE("createHashMap failed");
  return map;
}

// ---- The putters: name, type of the values, class that must not be null (for arrays), and store

using P = CameraMetadataParser;

#define PUT(name, T, into)                                          \
  int P::name(const T& value, const char* key, jobject container) { \
    return putBoxed(__func__, value, key, container, into);         \
  }
#define PUT_ARRAY(name, T, required, into)                                      \
  int P::name(const T* values, int count, const char* key, jobject container) { \
    return putArray(__func__, values, count, required, key, container, into);   \
  }

// clang-format off
PUT(putInt,             int32_t, &P::intoComposition)
PUT(putFloat,           float,   &P::intoComposition)
PUT(putLong,            int64_t, &P::intoComposition)
PUT_ARRAY(putIntArray,    int32_t, mClazzIntArray,    &P::intoComposition)
PUT_ARRAY(putLongArray,   int64_t, mClazzIntArray,    &P::intoComposition)  // Oddity 12.
PUT_ARRAY(putFloatArray,  float,   mClazzFloatArray,  &P::intoComposition)
PUT_ARRAY(putDoubleArray, double,  mClazzDoubleArray, &P::intoComposition)

PUT(putIntIntoHashMap,   int32_t, &P::intoHashMap)
PUT(putFloatIntoHashMap, float,   &P::intoHashMap)
PUT(putLongIntoHashMap,  int64_t, &P::intoHashMap)
PUT_ARRAY(putIntArrayIntoHashMap, int32_t, mClazzIntArray, &P::intoHashMap)
// clang-format on
#undef PUT
#undef PUT_ARRAY

}  // namespace orlu
