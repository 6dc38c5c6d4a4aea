// Assigns to each C++ number type the Java class that boxes it, and the classes of its Java arrays. Included
// only by the source files of CameraMetadataParser.
#pragma once

#include "camera_metadata_parser.h"
#include "jni_support.h"

namespace orlu {

// clang-format off
#define BOXED(T, JniType, Name)                                                                        \
  template <>                                                                                          \
  struct CameraMetadataParser::Boxed<T> {                                                              \
    using Element = JniType;                                                                           \
    static constexpr auto kClass = &CameraMetadataParser::mClazz##Name;                                \
    static constexpr auto kConstructor = &CameraMetadataParser::mConstructor##Name;                    \
    static constexpr auto kValueMethod = &CameraMetadataParser::mMethod##Name##Value;                  \
    static constexpr auto kPrimitiveArrayClass = &CameraMetadataParser::mClazzPrimitive##Name##Array;  \
    static constexpr auto kArrayClass = &CameraMetadataParser::mClazz##Name##Array;                    \
    static constexpr JniType (JNIEnv::*kCall)(jobject, jmethodID, ...) = &JNIEnv::Call##Name##Method;  \
  }
BOXED(int32_t, jint,    Int);
BOXED(int64_t, jlong,   Long);
BOXED(float,   jfloat,  Float);
BOXED(double,  jdouble, Double);
// clang-format on
#undef BOXED

}  // namespace orlu
