// Lists of the JNI functions that the library may call for a request, as X(name).
#pragma once

// clang-format off

#define ORLU_JNI_TYPES(X) X(Boolean) X(Byte) X(Char) X(Short) X(Int) X(Long) X(Float) X(Double)

// Functions that call a Java method and take its arguments as va_list.
#define ORLU_JNI_METHODS_OF(Type) X(Call##Type##MethodV) X(CallStatic##Type##MethodV)
#define ORLU_JNI_METHODS                                                         \
  ORLU_JNI_TYPES(ORLU_JNI_METHODS_OF)                                            \
  X(CallObjectMethodV) X(CallStaticObjectMethodV)                                \
  X(CallVoidMethodV) X(CallStaticVoidMethodV) X(NewObjectV)

// Functions without variable arguments.
#define ORLU_JNI_PLAIN_OF(Type)                                                  \
  X(Get##Type##Field) X(Set##Type##Field) X(GetStatic##Type##Field)              \
  X(New##Type##Array) X(Set##Type##ArrayRegion)                                  \
  X(Get##Type##ArrayElements) X(Release##Type##ArrayElements)
#define ORLU_JNI_PLAIN                                                           \
  ORLU_JNI_TYPES(ORLU_JNI_PLAIN_OF)                                              \
  X(FindClass) X(GetObjectClass) X(GetSuperclass)                                \
  X(GetMethodID) X(GetStaticMethodID) X(GetFieldID) X(GetStaticFieldID)          \
  X(IsInstanceOf) X(IsAssignableFrom) X(IsSameObject)                            \
  X(GetObjectField) X(SetObjectField) X(GetStaticObjectField)                    \
  X(GetArrayLength) X(NewObjectArray)                                            \
  X(GetObjectArrayElement) X(SetObjectArrayElement)                              \
  X(NewStringUTF) X(GetStringLength) X(GetStringUTFLength)                       \
  X(GetStringUTFChars) X(ReleaseStringUTFChars)                                  \
  X(NewGlobalRef) X(DeleteGlobalRef) X(NewLocalRef) X(DeleteLocalRef)            \
  X(PushLocalFrame) X(PopLocalFrame) X(EnsureLocalCapacity)                      \
  X(ExceptionCheck) X(ExceptionClear) X(ExceptionOccurred)

// clang-format on
