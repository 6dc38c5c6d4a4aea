// The JNI functions that requests may call, as lists: X(name) for each.
#pragma once

// With a function for each type of Java.
#define ORLU_JNI_TYPES(X) X(Boolean) X(Byte) X(Char) X(Short) X(Int) X(Long) X(Float) X(Double)

// Those that call a Java method and take its arguments as a list.
#define ORLU_JNI_METHODS_OF(Type) X(Call##Type##MethodV)
#define ORLU_JNI_STATIC_METHODS_OF(Type) X(CallStatic##Type##MethodV)

#define ORLU_JNI_METHODS                                                              \
  ORLU_JNI_TYPES(ORLU_JNI_METHODS_OF)                                                 \
  X(CallObjectMethodV)                                                                \
  X(CallVoidMethodV)                                                                  \
  X(NewObjectV) ORLU_JNI_TYPES(ORLU_JNI_STATIC_METHODS_OF) X(CallStaticObjectMethodV) \
      X(CallStaticVoidMethodV)

#define ORLU_JNI_PLAIN_OF(Type)                                                                             \
  X(Get##Type##Field)                                                                                       \
  X(Set##Type##Field)                                                                                       \
  X(GetStatic##Type##Field) X(New##Type##Array) X(Get##Type##ArrayElements) X(Release##Type##ArrayElements) \
      X(Set##Type##ArrayRegion)

#define ORLU_JNI_PLAIN                                                                                      \
  ORLU_JNI_TYPES(ORLU_JNI_PLAIN_OF)                                                                         \
  X(FindClass)                                                                                              \
  X(GetMethodID)                                                                                            \
  X(GetStaticMethodID) X(GetFieldID) X(GetStaticFieldID) X(GetObjectClass) X(GetSuperclass) X(IsInstanceOf) \
      X(IsAssignableFrom) X(IsSameObject) X(GetObjectField) X(SetObjectField) X(GetStaticObjectField)       \
          X(GetArrayLength) X(NewObjectArray) X(GetObjectArrayElement) X(SetObjectArrayElement)             \
              X(NewStringUTF) X(GetStringLength) X(GetStringUTFLength) X(GetStringUTFChars)                 \
                  X(ReleaseStringUTFChars) X(NewGlobalRef) X(DeleteGlobalRef) X(NewLocalRef)                \
                      X(DeleteLocalRef) X(PushLocalFrame) X(PopLocalFrame) X(EnsureLocalCapacity)           \
                          X(ExceptionCheck) X(ExceptionClear) X(ExceptionOccurred)
