// Typed reading and writing of camera metadata through JNI: capture results, the compositions that
// override them key by key, camera characteristics, and hash maps for callbacks.
//
// A parser belongs to the thread and the JNI call that initialised it: what it keeps are local references.
// Nothing is cached across calls. Every operation copes with members that could not be resolved, and no Java
// exception stays pending.
#pragma once

#include <jni.h>

#include <cstdint>
#include <string>
#include <vector>

#include "jni_support.h"
#include "metadata_records.h"

namespace orlu {

class CameraMetadataParser {
  // The Java objects that a tag is asked for with, made when they are first needed.
  struct KeyObjects {
    explicit KeyObjects(JNIEnv* env) : name(env, nullptr), typed(env, nullptr) {}

    ScopedLocalRef<jstring> name;
    ScopedLocalRef<> typed;
    jclass valueClass = nullptr;  // of `typed`
  };

public:
  // Keeps the Java objects of a tag for its life, where the tag is read from one frame after the other. Of
  // several the last one made ends first.
  class RepeatedTag {
  public:
    // `tag` must live as long.
    RepeatedTag(CameraMetadataParser& parser, const char* tag);
    RepeatedTag(const RepeatedTag&) = delete;
    RepeatedTag& operator=(const RepeatedTag&) = delete;
    ~RepeatedTag() { mParser.mRepeatedTag = mOuter; }

  private:
    friend class CameraMetadataParser;

    CameraMetadataParser& mParser;
    const char* mTag;
    RepeatedTag* mOuter;
    KeyObjects mObjects;
  };

  // An empty parser; initFromEnv() makes it of use.
  CameraMetadataParser() = default;
  // A parser initialised for a request, with the composition class.
  explicit CameraMetadataParser(JNIEnv* env) { initFromEnv(env, false); }

  // Resolves every class and member that the operations use, for the calling thread. Each missing one is
  // logged. `withoutComposition` leaves the composition class out: callback threads may not be able to see
  // it. Answers 0 when all was found, else -1; what was found is of use all the same.
  int initFromEnv(JNIEnv* env, bool withoutComposition);

  // Checks the class of these two once, for all lookups from them until the next initialisation; either may
  // be null. They must live as long.
  void knowFrame(jobject captureResult, jobject composition);

  // Lookups. `key` is whole characters of UTF-8, as for the getters and putters. The answer is a new local
  // reference, or null: for an absent value, for a value that could not be asked for, and when
  // `captureResult`, `parameter` or `characteristics` is null or of another class.
  jobject getMetadataObjectFromCaptureResult(jobject captureResult, const char* key, jclass valueClass);
  jobject getMetadataObjectFromOrluAlgorithmParameter(jobject parameter, const char* key, jclass valueClass);
  // Asks `parameter` first; what it holds wins, whatever its type.
  jobject getMetadataObjectFromCaptureResult(jobject captureResult, jobject parameter, const char* key,
                                             jclass valueClass);
  jobject getMetadataObjectFromCharacteristics(jobject characteristics, const char* key, jclass valueClass);

  // Getters from a capture result that `parameter`, its composition, overrides; either may be null. They
  // answer 0, or -1 and a logged line when the value is missing or of the wrong type. Capacities and sizes
  // count elements and bytes; elements behind those that were read keep their values.
  int getInt(int32_t& value, const char* key, jobject captureResult, jobject parameter);
  int getFloat(float& value, const char* key, jobject captureResult, jobject parameter);
  int getLong(int64_t& value, const char* key, jobject captureResult, jobject parameter);
  // Zeroes the buffer first. A value of `size` bytes or more leaves no terminating zero.
  int getString(char* buffer, int size, const char* key, jobject captureResult, jobject parameter);
  int getArrayBytes(char* buffer, int size, const char* key, jobject captureResult, jobject parameter);
  int getIntArray(int32_t* values, int capacity, const char* key, jobject captureResult, jobject parameter);
  int getFloatArray(float* values, int capacity, const char* key, jobject captureResult, jobject parameter);
  int getDoubleArray(double* values, int capacity, const char* key, jobject captureResult, jobject parameter);
  int getLongArray(int64_t* values, int capacity, const char* key, jobject captureResult, jobject parameter);
  // Appends every string, without a limit.
  int getStringArray(std::vector<std::string>& values, const char* key, jobject captureResult,
                     jobject parameter);
  // The count becomes the array's length even when fewer faces fit, on purpose.
  int getFaceInfo(_tagOrluFaceInfo& faces, int capacity, const char* key, jobject captureResult,
                  jobject parameter);
  // Faces as four ints each; an incomplete last one is not counted.
  int getIntFaceArray(_tagOrluFaceInfo& faces, int capacity, const char* key, jobject captureResult,
                      jobject parameter);
  int getRectInfo(__tagOrluRect& rect, const char* key, jobject captureResult, jobject parameter);
  int getRectInfo_ex(SCR_Type& crop, const char* key, jobject captureResult, jobject parameter);
  // The first rectangle of the array; an empty array answers -1 without a line.
  int getMeteringRectangle(__tagOrluRect& rect, int32_t& weight, const char* key, jobject captureResult,
                           jobject parameter);
  int getGpsLocation(GpsLocation& location, const char* key, jobject captureResult, jobject parameter);

  // The same from a parameter object alone.
  int getIntOrlu(int32_t& value, const char* key, jobject parameter);
  int getLongOrlu(int64_t& value, const char* key, jobject parameter);
  int getFloatOrlu(float& value, const char* key, jobject parameter);
  int getStringOrlu(char* buffer, int size, const char* key, jobject parameter);
  int getFaceInfoOrlu(_tagOrluFaceInfo& faces, int capacity, const char* key, jobject parameter);
  int getRectInfoOrlu(__tagOrluRect& rect, const char* key, jobject parameter);
  int getMeteringRectangleOrlu(__tagOrluRect& rect, const char* key, jobject parameter);
  // Boxed arrays only.
  int getIntArrayOrlu(int32_t* values, int capacity, const char* key, jobject parameter);
  int getFloatArrayOrlu(float* values, int capacity, const char* key, jobject parameter);

  // The same from camera characteristics. Boxed arrays only.
  int getCharacteristicsInt(int32_t& value, const char* key, jobject characteristics);
  int getCharacteristicsIntArray(int32_t* values, int capacity, const char* key, jobject characteristics);
  int getCharacteristicsRational(Rational& value, const char* key, jobject characteristics);
  int getCharacteristicsRectInfo(__tagOrluRect& rect, const char* key, jobject characteristics);
  int getCharacteristicsRectInfo_ex(SCR_Type& crop, const char* key, jobject characteristics);

  // A whole capture result, serialised as its parcel is; empty when it can't be.
  std::vector<uint8_t> getMetadata(jobject captureResult);

  // Putters into a composition: box the value and store it under the key. They answer 0, or -1 and a logged
  // line. Arrays are copied whole; `count` has no limit.
  int putInt(const int32_t& value, const char* key, jobject composition);
  int putFloat(const float& value, const char* key, jobject composition);
  int putLong(const int64_t& value, const char* key, jobject composition);
  int putIntArray(const int32_t* values, int count, const char* key, jobject composition);
  int putLongArray(const int64_t* values, int count, const char* key, jobject composition);
  int putFloatArray(const float* values, int count, const char* key, jobject composition);
  int putDoubleArray(const double* values, int count, const char* key, jobject composition);
  int putMetadataObjectIntoCaptureResultComposition(jobject composition, const char* key, jobject value);

  // A new, empty HashMap as a local reference, or null and a logged line.
  jobject createHashMap();
  // Putters into such a map; answers as above.
  int putObjectIntoHashMap(jobject map, const char* key, jobject value);
  int putIntIntoHashMap(const int32_t& value, const char* key, jobject map);
  int putFloatIntoHashMap(const float& value, const char* key, jobject map);
  int putLongIntoHashMap(const int64_t& value, const char* key, jobject map);
  int putIntArrayIntoHashMap(const int32_t* values, int count, const char* key, jobject map);

private:
  using Store = int (CameraMetadataParser::*)(jobject container, const char* key, jobject value);

  // camera_metadata_parser_getters.cpp
  bool isComposition(jobject parameter);
  KeyObjects& keyObjects(const char* key, KeyObjects& fresh);
  jstring newName(const char* key);
  jobject askComposition(jobject parameter, jstring name, const char* key);
  jobject askTyped(jobject source, jclass sourceClass, jclass keyClass, jmethodID keyConstructor,
                   jmethodID get, KeyObjects& objects, const char* key, jclass valueClass);
  jobject cleared(jobject value, const char* key);
  // Each takes over the looked-up value, which may be null.
  int unpack(int32_t& out, const char* key, jobject value);
  int unpack(float& out, const char* key, jobject value);
  int unpack(int64_t& out, const char* key, jobject value);
  int unpack(__tagOrluRect& out, const char* key, jobject value);
  int unpack(SCR_Type& out, const char* key, jobject value);
  int unpack(GpsLocation& out, const char* key, jobject value);
  int unpack(Rational& out, const char* key, jobject value);
  int unpackString(char* buffer, int size, const char* key, jobject value);
  int unpackBytes(char* buffer, int size, const char* key, jobject value);
  int unpackStrings(std::vector<std::string>& out, const char* key, jobject value);
  int unpackFaces(_tagOrluFaceInfo& out, int capacity, const char* key, jobject value);
  int unpackIntFaces(_tagOrluFaceInfo& out, int capacity, const char* key, jobject value);
  int unpackMetering(__tagOrluRect& rect, int32_t* weight, const char* key, jobject value);
  template <typename T>
  int unpackScalar(T& out, const char* key, jobject value);
  template <typename T>
  int unpackArray(T* out, int capacity, const char* key, jobject value);
  template <typename T>
  int unpackBoxedArray(T* out, int capacity, const char* key, jobject value);
  int missing(const char* key);
  int wrongType(const char* key);
  template <typename T>
  bool unbox(T& out, jobject boxed);
  template <typename T>
  void copyPrimitives(T* out, int capacity, jobject array);
  template <typename T>
  void copyBoxed(T* out, int capacity, jobject array);
  bool readRect(__tagOrluRect& out, jobject rect);
  void copyBytes(char* buffer, int size, jbyteArray array);
  bool appendString(std::vector<std::string>& out, jobject string);
  jobject callObject(jobject object, jmethodID method);
  std::vector<uint8_t> marshal(jobject cameraMetadata);

  // camera_metadata_parser_putters.cpp
  template <typename T>
  int putBoxed(T value, jmethodID constructor, const char* key, jobject container, Store into);
  template <typename T>
  int putArray(const T* values, int count, jclass required, const char* key, jobject container, Store into);
  int stored(int result, const char* key);
  int invalidPut(const char* key);

  struct Table;  // the rows of the cache
  template <typename T>
  struct Boxed;  // how a boxed value of T is made and read
  friend struct Table;

  JNIEnv* mEnv = nullptr;
  jobject mKnownCaptureResult = nullptr;  // borrowed, and of its class
  jobject mKnownComposition = nullptr;
  RepeatedTag* mRepeatedTag = nullptr;  // the last one made

  jclass mClazzKey = nullptr;
  jmethodID mConstructorKey = nullptr;
  jclass mClazzCaptureResult = nullptr;
  jmethodID mMethodGet = nullptr;
  jclass mClazzCameraMetadataNative = nullptr;
  jmethodID mMethodWriteToParcel = nullptr;
  jclass mClazzParcel = nullptr;
  jmethodID mMethodParcelObtain = nullptr;
  jmethodID mMethodPushAllowFds = nullptr;
  jmethodID mMethodParcelMarshall = nullptr;
  jclass mClazzCharacteristicsKey = nullptr;
  jmethodID mCharacteristicsConstructorKey = nullptr;
  jclass mClazzCameraCharacteristics = nullptr;
  jmethodID mMethodCharacteristicsGet = nullptr;
  jclass mClazzInt = nullptr;
  jmethodID mMethodIntValue = nullptr;
  jmethodID mConstructorInt = nullptr;
  jclass mClazzFloat = nullptr;
  jmethodID mMethodFloatValue = nullptr;
  jmethodID mConstructorFloat = nullptr;
  jclass mClazzDouble = nullptr;
  jmethodID mMethodDoubleValue = nullptr;
  jmethodID mConstructorDouble = nullptr;
  jclass mClazzLong = nullptr;
  jmethodID mMethodLongValue = nullptr;
  jmethodID mConstructorLong = nullptr;
  jclass mClazzPrimitiveIntArray = nullptr;
  jclass mClazzIntArray = nullptr;
  jclass mClazzPrimitiveLongArray = nullptr;
  jclass mClazzLongArray = nullptr;
  jclass mClazzPrimitiveFloatArray = nullptr;
  jclass mClazzFloatArray = nullptr;
  jclass mClazzPrimitiveDoubleArray = nullptr;
  jclass mClazzDoubleArray = nullptr;
  jclass mClazzString = nullptr;
  jmethodID mMethodGetBytes = nullptr;
  jclass mClazzByteArray = nullptr;
  jclass mClazzStringArray = nullptr;
  jclass mClazzFaceArray = nullptr;
  jclass mClazzFace = nullptr;
  jmethodID mMethodGetBounds = nullptr;
  jclass mClazzRect = nullptr;
  jfieldID mRectFieldLeft = nullptr;
  jfieldID mRectFieldRight = nullptr;
  jfieldID mRectFieldTop = nullptr;
  jfieldID mRectFieldBottom = nullptr;
  jclass mClazzMeteringRectangle = nullptr;
  jmethodID mMethodGetRect = nullptr;
  jmethodID mMethodGetMeteringWeight = nullptr;
  jclass mClazzMeteringRectangleArray = nullptr;
  jclass mClazzLocation = nullptr;
  jmethodID mMethodGetLatitude = nullptr;
  jmethodID mMethodGetLongitude = nullptr;
  jmethodID mMethodGetAltitude = nullptr;
  jmethodID mMethodGetTimestamp = nullptr;
  jmethodID mMethodHasAltitude = nullptr;
  jclass mClazzRational = nullptr;
  jmethodID mMethodGetNumerator = nullptr;
  jmethodID mMethodGetDenominator = nullptr;
  jclass mClazzCaptureResultComposition = nullptr;
  jmethodID mMethodGetMetadata = nullptr;
  jmethodID mMethodPutMetadata = nullptr;
  jclass mClazzHashMap = nullptr;
  jmethodID mConstructorHashMap = nullptr;
  jmethodID mMethodHashMapPut = nullptr;
};

}  // namespace orlu
