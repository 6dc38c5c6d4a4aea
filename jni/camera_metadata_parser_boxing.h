// How the parser reads and makes the boxed and array forms of each number type. For its own files alone.
#pragma once

#include "camera_metadata_parser.h"

namespace orlu {

template <>
struct CameraMetadataParser::Boxed<int32_t> {
  using PrimitiveArray = jintArray;
  using Element = jint;
  static constexpr auto kClass = &CameraMetadataParser::mClazzInt;
  static constexpr auto kValueMethod = &CameraMetadataParser::mMethodIntValue;
  static constexpr auto kPrimitiveArrayClass = &CameraMetadataParser::mClazzPrimitiveIntArray;
  static constexpr auto kArrayClass = &CameraMetadataParser::mClazzIntArray;
  static constexpr jint (JNIEnv::*kCall)(jobject, jmethodID, ...) = &JNIEnv::CallIntMethod;
  static constexpr auto kGetElements = &JNIEnv::GetIntArrayElements;
  static constexpr auto kReleaseElements = &JNIEnv::ReleaseIntArrayElements;
  static constexpr auto kNewArray = &JNIEnv::NewIntArray;
  static constexpr auto kSetRegion = &JNIEnv::SetIntArrayRegion;
};

template <>
struct CameraMetadataParser::Boxed<int64_t> {
  using PrimitiveArray = jlongArray;
  using Element = jlong;
  static constexpr auto kClass = &CameraMetadataParser::mClazzLong;
  static constexpr auto kValueMethod = &CameraMetadataParser::mMethodLongValue;
  static constexpr auto kPrimitiveArrayClass = &CameraMetadataParser::mClazzPrimitiveLongArray;
  static constexpr auto kArrayClass = &CameraMetadataParser::mClazzLongArray;
  static constexpr jlong (JNIEnv::*kCall)(jobject, jmethodID, ...) = &JNIEnv::CallLongMethod;
  static constexpr auto kGetElements = &JNIEnv::GetLongArrayElements;
  static constexpr auto kReleaseElements = &JNIEnv::ReleaseLongArrayElements;
  static constexpr auto kNewArray = &JNIEnv::NewLongArray;
  static constexpr auto kSetRegion = &JNIEnv::SetLongArrayRegion;
};

template <>
struct CameraMetadataParser::Boxed<float> {
  using PrimitiveArray = jfloatArray;
  using Element = jfloat;
  static constexpr auto kClass = &CameraMetadataParser::mClazzFloat;
  static constexpr auto kValueMethod = &CameraMetadataParser::mMethodFloatValue;
  static constexpr auto kPrimitiveArrayClass = &CameraMetadataParser::mClazzPrimitiveFloatArray;
  static constexpr auto kArrayClass = &CameraMetadataParser::mClazzFloatArray;
  static constexpr jfloat (JNIEnv::*kCall)(jobject, jmethodID, ...) = &JNIEnv::CallFloatMethod;
  static constexpr auto kGetElements = &JNIEnv::GetFloatArrayElements;
  static constexpr auto kReleaseElements = &JNIEnv::ReleaseFloatArrayElements;
  static constexpr auto kNewArray = &JNIEnv::NewFloatArray;
  static constexpr auto kSetRegion = &JNIEnv::SetFloatArrayRegion;
};

template <>
struct CameraMetadataParser::Boxed<double> {
  using PrimitiveArray = jdoubleArray;
  using Element = jdouble;
  static constexpr auto kClass = &CameraMetadataParser::mClazzDouble;
  static constexpr auto kValueMethod = &CameraMetadataParser::mMethodDoubleValue;
  static constexpr auto kPrimitiveArrayClass = &CameraMetadataParser::mClazzPrimitiveDoubleArray;
  static constexpr auto kArrayClass = &CameraMetadataParser::mClazzDoubleArray;
  static constexpr jdouble (JNIEnv::*kCall)(jobject, jmethodID, ...) = &JNIEnv::CallDoubleMethod;
  static constexpr auto kGetElements = &JNIEnv::GetDoubleArrayElements;
  static constexpr auto kReleaseElements = &JNIEnv::ReleaseDoubleArrayElements;
  static constexpr auto kNewArray = &JNIEnv::NewDoubleArray;
  static constexpr auto kSetRegion = &JNIEnv::SetDoubleArrayRegion;
};

}  // namespace orlu
