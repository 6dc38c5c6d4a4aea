// The getters: each looks up a value and unpacks it.

#include <algorithm>
#include <cstring>
#include <utility>

#include "camera_metadata_parser.h"
#include "camera_metadata_parser_boxing.h"
#include "jni_support.h"
#include "log.h"

namespace orlu {

// ---- Output destinations

// BytesOut receives the bytes of a byte array; TextOut, those of a string. Both always zero the buffer first.
struct CameraMetadataParser::BytesOut {
  BytesOut(char* buffer, int capacity) : data(buffer), size(capacity) {
    std::fill_n(data, std::max(0, size), '\0');
  }

  char* data;
  int size;
};
struct CameraMetadataParser::TextOut : BytesOut {
  using BytesOut::BytesOut;
};

// Receives the bytes of a byte array. Allocates the buffer only if the value is a byte array.
struct CameraMetadataParser::NewBytesOut {
  std::unique_ptr<char[]>& buffer;
  int size;
};

// ArrayOut receives a primitive or boxed array, BoxedArrayOut only a boxed one.
template <typename T>
struct CameraMetadataParser::ArrayOut {
  T* values;
  int capacity;
};
template <typename T>
struct CameraMetadataParser::BoxedArrayOut {
  T* values;
  int capacity;
};

// Receive at most `capacity` faces: FacesOut from an array of faces, IntFacesOut from four ints per face.
struct CameraMetadataParser::FacesOut {
  _tagOrluFaceInfo& faces;
  int capacity;
};
struct CameraMetadataParser::IntFacesOut {
  _tagOrluFaceInfo& faces;
  int capacity;
};

// `weight` may be null.
struct CameraMetadataParser::MeteringOut {
  __tagOrluRect& rect;
  int32_t* weight;
};

// ---- Unpacking

// Unpacks a value that was looked up. Returns 0 on success. On failure, returns -1 and logs a line that names
// the getter; for an empty array of metering rectangles, returns -1 but logs nothing.
template <typename Out>
int CameraMetadataParser::read(const char* getter, const char* key, const ScopedLocalRef<>& value,
                               Out&& out) {
  if (!value) {
    LOGE_AS(getter, "get %s is null", key);
    return -1;
  }
  const Unpacked unpacked = unpack(out, value.get());
  if (unpacked == kWrongType) LOGE_AS(getter, "wrong object type %s", key);
  return unpacked == kRead ? 0 : -1;
}

template <typename Number, typename>
CameraMetadataParser::Unpacked CameraMetadataParser::unpack(Number& out, jobject value) {
  return isInstance(mEnv, value, this->*Boxed<Number>::kClass) && unbox(out, value) ? kRead : kWrongType;
}

// Reads `boxed`, which is null or of T's boxing class. Returns false if it can't be read. The VM's checker
// (-Xcheck:jni) requires an exception check after each method call, even where no exception is possible.
template <typename T>
bool CameraMetadataParser::unbox(T& out, jobject boxed) {
  using Box = Boxed<T>;
  if (boxed == nullptr || this->*Box::kValueMethod == nullptr) return false;
  const auto value = (mEnv->*Box::kCall)(boxed, this->*Box::kValueMethod);
  if (clearException(mEnv)) return false;
  out = static_cast<T>(value);
  return true;
}

template <typename T>
CameraMetadataParser::Unpacked CameraMetadataParser::unpack(const ArrayOut<T>& out, jobject value) {
  // Capture results contain boxed arrays; compositions may contain boxed or primitive arrays.
  if (isInstance(mEnv, value, this->*Boxed<T>::kArrayClass)) {
    copyBoxed(out.values, out.capacity, value);
  } else if (isInstance(mEnv, value, this->*Boxed<T>::kPrimitiveArrayClass)) {
    copyPrimitives(out.values, out.capacity, value);
  } else {
    return kWrongType;
  }
  return kRead;
}

template <typename T>
CameraMetadataParser::Unpacked CameraMetadataParser::unpack(const BoxedArrayOut<T>& out, jobject value) {
  if (!isInstance(mEnv, value, this->*Boxed<T>::kArrayClass)) return kWrongType;
  copyBoxed(out.values, out.capacity, value);
  return kRead;
}

template <typename T>
void CameraMetadataParser::copyPrimitives(T* out, int capacity, jobject array) {
  using Element = typename Boxed<T>::Element;
  ScopedElements<Element>(mEnv, static_cast<typename JniArray<Element>::Type>(array)).copyTo(out, capacity);
}

// The array's class guarantees that its elements are boxed values of T or null. Freeing their references in
// batches takes fewer calls than freeing them one by one, and limits the number of live references.
template <typename T>
void CameraMetadataParser::copyBoxed(T* out, int capacity, jobject array) {
  constexpr int kElementsAtOnce = 32;
  const auto typed = static_cast<jobjectArray>(array);
  const int count = std::min(static_cast<int>(mEnv->GetArrayLength(typed)), capacity);
  for (int i = 0; i < count;) {
    const int end = std::min(i + kElementsAtOnce, count);
    const ScopedLocalFrame frame(mEnv, end - i);
    if (!frame) return;
    for (; i < end; ++i) unbox(out[i], mEnv->GetObjectArrayElement(typed, i));
  }
}

// Reads `rect`, which is null or of the rectangle class. Returns false if it can't be read.
bool CameraMetadataParser::readRect(__tagOrluRect& out, jobject rect) {
  if (rect == nullptr || mRectFieldLeft == nullptr || mRectFieldRight == nullptr ||
      mRectFieldTop == nullptr || mRectFieldBottom == nullptr) {
    return false;
  }
  out.left = mEnv->GetIntField(rect, mRectFieldLeft);
  out.top = mEnv->GetIntField(rect, mRectFieldTop);
  out.right = mEnv->GetIntField(rect, mRectFieldRight);
  out.bottom = mEnv->GetIntField(rect, mRectFieldBottom);
  return true;
}

CameraMetadataParser::Unpacked CameraMetadataParser::unpack(__tagOrluRect& out, jobject value) {
  return isInstance(mEnv, value, mClazzRect) && readRect(out, value) ? kRead : kWrongType;
}

CameraMetadataParser::Unpacked CameraMetadataParser::unpack(SCR_Type& out, jobject value) {
  __tagOrluRect rect;
  const Unpacked unpacked = unpack(rect, value);
  if (unpacked != kRead) return unpacked;
  // The rectangle class has no counterpart of SCR_Type::flag, which becomes false.
  std::memset(&out, 0, sizeof out);
  out.left = rect.left;
  out.right = rect.right;
  out.top = rect.top;
  out.bottom = rect.bottom;
  return kRead;
}

// Calls a method that returns a number; returns 0 if it throws.
template <typename Number>
Number CameraMetadataParser::callNumber(Number (JNIEnv::*call)(jobject, jmethodID, ...), jobject object,
                                        jmethodID method) {
  const Number number = (mEnv->*call)(object, method);
  return clearException(mEnv) ? Number() : number;
}

CameraMetadataParser::Unpacked CameraMetadataParser::unpack(GpsLocation& out, jobject value) {
  if (mMethodGetLatitude == nullptr || mMethodGetLongitude == nullptr || mMethodGetAltitude == nullptr ||
      mMethodGetTimestamp == nullptr || mMethodHasAltitude == nullptr ||
      !isInstance(mEnv, value, mClazzLocation)) {
    return kWrongType;
  }
  out.latitude = callNumber(&JNIEnv::CallDoubleMethod, value, mMethodGetLatitude);
  out.longitude = callNumber(&JNIEnv::CallDoubleMethod, value, mMethodGetLongitude);
  out.altitude = callNumber(&JNIEnv::CallDoubleMethod, value, mMethodGetAltitude);
  out.timestamp = callNumber(&JNIEnv::CallLongMethod, value, mMethodGetTimestamp);
  out.hasAltitude = callNumber(&JNIEnv::CallBooleanMethod, value, mMethodHasAltitude) != JNI_FALSE ? 1 : 0;
  return kRead;
}

CameraMetadataParser::Unpacked CameraMetadataParser::unpack(Rational& out, jobject value) {
  if (mMethodGetNumerator == nullptr || mMethodGetDenominator == nullptr ||
      !isInstance(mEnv, value, mClazzRational)) {
    return kWrongType;
  }
  out.numerator = callNumber(&JNIEnv::CallIntMethod, value, mMethodGetNumerator);
  out.denominator = callNumber(&JNIEnv::CallIntMethod, value, mMethodGetDenominator);
  return kRead;
}

CameraMetadataParser::Unpacked CameraMetadataParser::unpack(const BytesOut& out, jobject value) {
  if (!isInstance(mEnv, value, mClazzByteArray)) return kWrongType;
  ScopedElements<jbyte>(mEnv, static_cast<jbyteArray>(value)).copyTo(out.data, out.size);
  return kRead;
}

CameraMetadataParser::Unpacked CameraMetadataParser::unpack(const NewBytesOut& out, jobject value) {
  if (!isInstance(mEnv, value, mClazzByteArray)) return kWrongType;
  out.buffer = std::make_unique<char[]>(static_cast<size_t>(out.size));
  return unpack(BytesOut(out.buffer.get(), out.size), value);
}

CameraMetadataParser::Unpacked CameraMetadataParser::unpack(const TextOut& out, jobject value) {
  if (!isInstance(mEnv, value, mClazzString)) return kWrongType;
  const ScopedLocalRef<jbyteArray> bytes(mEnv, static_cast<jbyteArray>(callObject(value, mMethodGetBytes)));
  if (!bytes) return kWrongType;
  ScopedElements<jbyte>(mEnv, bytes.get()).copyTo(out.data, out.size);
  return kRead;
}

CameraMetadataParser::Unpacked CameraMetadataParser::unpack(std::vector<std::string>& out, jobject value) {
  if (!isInstance(mEnv, value, mClazzStringArray)) return kWrongType;
  const auto array = static_cast<jobjectArray>(value);
  const int length = mEnv->GetArrayLength(array);
  for (int i = 0; i < length; ++i) {
    const ScopedLocalRef<> string(mEnv, mEnv->GetObjectArrayElement(array, i));
    const ScopedLocalRef<jbyteArray> bytes(
        mEnv, static_cast<jbyteArray>(callObject(string.get(), mMethodGetBytes)));
    if (!bytes) continue;
    const ScopedElements<jbyte> elements(mEnv, bytes.get());
    std::string text(static_cast<size_t>(elements.length()), '\0');
    elements.copyTo(text.data(), elements.length());
    out.push_back(std::move(text));
  }
  return kRead;
}

CameraMetadataParser::Unpacked CameraMetadataParser::unpack(const FacesOut& out, jobject value) {
  if (!isInstance(mEnv, value, mClazzFaceArray)) return kWrongType;
  const auto array = static_cast<jobjectArray>(value);
  out.faces.count = mEnv->GetArrayLength(array);
  const int count = std::min({out.faces.count, out.capacity, kMaxFaces});
  for (int i = 0; i < count; ++i) {
    const ScopedLocalRef<> face(mEnv, mEnv->GetObjectArrayElement(array, i));
    const ScopedLocalRef<> bounds(mEnv, callObject(face.get(), mMethodGetBounds));
    readRect(out.faces.rects[i], bounds.get());
  }
  return kRead;
}

CameraMetadataParser::Unpacked CameraMetadataParser::unpack(const IntFacesOut& out, jobject value) {
  constexpr int kIntsPerFace = 4;
  const bool boxed = isInstance(mEnv, value, mClazzIntArray);
  if (!boxed && !isInstance(mEnv, value, mClazzPrimitiveIntArray)) return kWrongType;
  out.faces.count = mEnv->GetArrayLength(static_cast<jarray>(value)) / kIntsPerFace;
  const int faces = std::min({out.faces.count, out.capacity, kMaxFaces});
  if (faces < 1) return kRead;
  // The record's rectangles are laid out as four ints per face.
  int32_t ints[kMaxFaces * kIntsPerFace];
  std::memcpy(ints, out.faces.rects, sizeof ints);
  if (boxed) {
    copyBoxed(ints, faces * kIntsPerFace, value);
  } else {
    copyPrimitives(ints, faces * kIntsPerFace, value);
  }
  std::memcpy(out.faces.rects, ints, sizeof ints);
  return kRead;
}

CameraMetadataParser::Unpacked CameraMetadataParser::unpack(const MeteringOut& out, jobject value) {
  if (!isInstance(mEnv, value, mClazzMeteringRectangleArray)) return kWrongType;
  const auto array = static_cast<jobjectArray>(value);
  if (mEnv->GetArrayLength(array) < 1) return kEmpty;
  const ScopedLocalRef<> first(mEnv, mEnv->GetObjectArrayElement(array, 0));
  const ScopedLocalRef<> bounds(mEnv, callObject(first.get(), mMethodGetRect));
  readRect(out.rect, bounds.get());
  if (out.weight != nullptr && first && mMethodGetMeteringWeight != nullptr) {
    const jint weight = mEnv->CallIntMethod(first.get(), mMethodGetMeteringWeight);
    if (!clearException(mEnv)) *out.weight = weight;
  }
  return kRead;
}

// ---- The getters: one row each, with its name, the class of its typed key (if any), and its outputs

using P = CameraMetadataParser;

#define LIST(...) __VA_ARGS__
#define FROM_RESULT(name, slot, outputs, ...)                                            \
  int P::name(LIST outputs, const char* key, jobject captureResult, jobject parameter) { \
    return read(__func__, key, ask(captureResult, parameter, key, slot), __VA_ARGS__);   \
  }
#define FROM_PARAMETER(name, outputs, ...)                        \
  int P::name(LIST outputs, const char* key, jobject parameter) { \
    return read(__func__, key, ask(parameter, key), __VA_ARGS__); \
  }
#define FROM_CHARACTERISTICS(name, slot, outputs, ...)                                                   \
  int P::name(LIST outputs, const char* key, jobject characteristics) {                                  \
    return read(__func__, key, {mEnv, getMetadataObjectFromCharacteristics(characteristics, key, slot)}, \
                __VA_ARGS__);                                                                            \
  }

// clang-format off
FROM_RESULT(getInt,          mClazzInt,         (int32_t& v),                v)
FROM_RESULT(getFloat,        mClazzFloat,       (float& v),                  v)
FROM_RESULT(getLong,         mClazzLong,        (int64_t& v),                v)
FROM_RESULT(getString,       mClazzString,      (char* v, int size),         TextOut(v, size))
FROM_RESULT(getArrayBytes,   mClazzByteArray,   (char* v, int size),         BytesOut(v, size))
FROM_RESULT(getIntArray,     mClazzIntArray,    (int32_t* v, int n),         ArrayOut<int32_t>{v, n})
FROM_RESULT(getFloatArray,   mClazzFloatArray,  (float* v, int n),           ArrayOut<float>{v, n})
FROM_RESULT(getDoubleArray,  mClazzDoubleArray, (double* v, int n),          ArrayOut<double>{v, n})
FROM_RESULT(getLongArray,    mClazzLongArray,   (int64_t* v, int n),         ArrayOut<int64_t>{v, n})
FROM_RESULT(getStringArray,  mClazzStringArray, (std::vector<std::string>& v), v)
FROM_RESULT(getFaceInfo,     mClazzFaceArray,   (_tagOrluFaceInfo& v, int n), FacesOut{v, n})
FROM_RESULT(getIntFaceArray, mClazzIntArray,    (_tagOrluFaceInfo& v, int n), IntFacesOut{v, n})
FROM_RESULT(getRectInfo,     mClazzRect,        (__tagOrluRect& v),          v)
FROM_RESULT(getRectInfo_ex,  mClazzRect,        (SCR_Type& v),               v)
FROM_RESULT(getMeteringRectangle, mClazzMeteringRectangleArray, (__tagOrluRect& v, int32_t& w),
            MeteringOut{v, &w})
FROM_RESULT(getGpsLocation,  mClazzLocation,    (GpsLocation& v),            v)

FROM_PARAMETER(getIntOrlu,        (int32_t& v),            v)
FROM_PARAMETER(getLongOrlu,       (int64_t& v),            v)
FROM_PARAMETER(getFloatOrlu,      (float& v),              v)
FROM_PARAMETER(getStringOrlu,     (char* v, int size),     TextOut(v, size))
FROM_PARAMETER(getFaceInfoOrlu,   (_tagOrluFaceInfo& v, int n), FacesOut{v, n})
FROM_PARAMETER(getRectInfoOrlu,   (__tagOrluRect& v),      v)
FROM_PARAMETER(getMeteringRectangleOrlu, (__tagOrluRect& v),
               MeteringOut{v, nullptr})
FROM_PARAMETER(getIntArrayOrlu,   (int32_t* v, int n),     BoxedArrayOut<int32_t>{v, n})
FROM_PARAMETER(getFloatArrayOrlu, (float* v, int n),       BoxedArrayOut<float>{v, n})

FROM_CHARACTERISTICS(getCharacteristicsInt,         mClazzInt,      (int32_t& v),        v)
FROM_CHARACTERISTICS(getCharacteristicsIntArray,    mClazzIntArray, (int32_t* v, int n),
                     BoxedArrayOut<int32_t>{v, n})
FROM_CHARACTERISTICS(getCharacteristicsRational,    mClazzRational, (Rational& v),       v)
FROM_CHARACTERISTICS(getCharacteristicsRectInfo,    mClazzRect,     (__tagOrluRect& v),  v)
FROM_CHARACTERISTICS(getCharacteristicsRectInfo_ex, mClazzRect,     (SCR_Type& v),       v)
// clang-format on

int P::getNewArrayBytes(std::unique_ptr<char[]>& buffer, int size, const char* key, jobject captureResult,
                        jobject parameter) {
  return read("getArrayBytes", key, ask(captureResult, parameter, key, mClazzByteArray),
              NewBytesOut{buffer, size});
}

#undef LIST
#undef FROM_RESULT
#undef FROM_PARAMETER
#undef FROM_CHARACTERISTICS

}  // namespace orlu
