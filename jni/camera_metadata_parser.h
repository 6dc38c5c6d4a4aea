// Reads and writes typed camera metadata through JNI: capture results, the compositions that override them
// key by key, camera characteristics, and hash maps for callbacks. A parser belongs to the thread and the JNI
// call that initialised it, because it keeps local references; nothing is cached across calls. Every
// operation is safe even if Java members could not be resolved, and leaves no Java exception pending.
#pragma once

#include <jni.h>

#include <bitset>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "jni_support.h"
#include "metadata_records.h"

namespace orlu {

class CameraMetadataParser {
  // The Java objects for reading one tag, created on first use.
  struct KeyObjects {
    explicit KeyObjects(JNIEnv* owner) : name(owner, nullptr), typed(owner, nullptr) {}

    ScopedLocalRef<jstring> name;
    ScopedLocalRef<> typed;
    jclass valueClass = nullptr;  // of `typed`
  };

  // Objects that should all be of one class, in the order of the frames. Each is checked on its first use.
  class FrameObjects {
  public:
    void reset(const std::vector<jobject>& objects);
    // Returns whether `object`, which must not be null, is of class `clazz`. If frames are read in order, an
    // object found to be of this class is not checked again.
    bool isInstance(JNIEnv* env, jobject object, jclass clazz) {
      return object == mLastPassed || check(env, object, clazz);
    }

  private:
    static constexpr size_t kMostKept = 64;  // later frames are checked each time

    bool check(JNIEnv* env, jobject object, jclass clazz);

    const std::vector<jobject>* mObjects = nullptr;
    std::bitset<kMostKept> mHasPassed;  // by index in the list
    jobject mLastPassed = nullptr;
    size_t mLast = 0;  // index of the last match; frames are mostly read in order
  };

public:
  // While a Batch exists, getters and putters don't free their local references one by one: the Batch
  // collects them in a local frame and frees the whole frame. This also frees any other local reference
  // created meanwhile, so don't call lookups, which return references. Only one Batch may exist at a time.
  class Batch {
  public:
    explicit Batch(CameraMetadataParser& parser) : mParser(parser) { parser.mBatch = this; }
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;
    ~Batch() { mParser.mBatch = nullptr; }

  private:
    friend class CameraMetadataParser;

    // Prepares for one more operation. Returns false if the VM has no memory for a local frame.
    bool makeRoom();

    CameraMetadataParser& mParser;
    std::optional<ScopedLocalFrame> mFrame;
    int mOperations = 0;  // operations whose references are in mFrame
  };

  // While a BatchPause exists, the batch frees nothing. Create one around an operation that calls a visitor:
  // getters in the visitor could otherwise make the batch free references that the operation still uses.
  class BatchPause {
  public:
    explicit BatchPause(CameraMetadataParser& parser)
        : mParser(parser), mBatch(std::exchange(parser.mBatch, nullptr)) {}
    BatchPause(const BatchPause&) = delete;
    BatchPause& operator=(const BatchPause&) = delete;
    ~BatchPause() { mParser.mBatch = mBatch; }

  private:
    CameraMetadataParser& mParser;
    Batch* mBatch;
  };

  // While a RepeatedTag exists, reads of `tag` from frames reuse one set of Java key objects. If
  // several exist, destroy them in reverse order of creation.
  class RepeatedTag {
  public:
    // `tag` must outlive this object.
    RepeatedTag(CameraMetadataParser& parser, const char* tag);
    RepeatedTag(const RepeatedTag&) = delete;
    RepeatedTag& operator=(const RepeatedTag&) = delete;
    ~RepeatedTag() { mParser.mRepeatedTag = mOuter; }

  private:
    friend class CameraMetadataParser;

    CameraMetadataParser& mParser;
    BatchPause mPause;  // otherwise the batch would free the objects
    std::string_view mTag;
    RepeatedTag* mOuter;
    KeyObjects mObjects;
  };

  // Call initFromEnv() before any other operation.
  CameraMetadataParser() = default;
  explicit CameraMetadataParser(JNIEnv* env) { initFromEnv(env, false); }

  // Resolves the classes and members of camera_metadata_parser_members.inc for the calling thread, and logs
  // missing ones. Some missing ones end the resolution (Oddity 7). `withoutComposition` skips the composition
  // class, because callback threads may not be able to find it. Returns 0 if everything was found, else -1;
  // operations that don't need a missing member still work.
  int initFromEnv(JNIEnv* env, bool withoutComposition);

  // Declares the objects of a request's frames, so that the class of each object is checked once instead of
  // in every lookup. Borrows both lists and their objects until the next initialisation.
  void checkFramesOnce(const std::vector<jobject>& captureResults, const std::vector<jobject>& compositions);

  // Lookups return a new local reference; null if the value is missing or unreadable, or if the object to
  // read from is null or of the wrong class. In every operation, `key` must consist of complete UTF-8
  // characters.
  jobject getMetadataObjectFromCaptureResult(jobject captureResult, const char* key, jclass valueClass);
  jobject getMetadataObjectFromOrluAlgorithmParameter(jobject parameter, const char* key, jclass valueClass);
  // Reads from `parameter` first; a value found there wins, whatever its type.
  jobject getMetadataObjectFromCaptureResult(jobject captureResult, jobject parameter, const char* key,
                                             jclass valueClass);
  jobject getMetadataObjectFromCharacteristics(jobject characteristics, const char* key, jclass valueClass);

  // Getters from a capture result and its composition `parameter`, which overrides it; either may be null.
  // They return 0, or -1 with a logged line if the value is missing or of the wrong type. Capacities count
  // elements, sizes count bytes. Elements that were not read keep their values.
  int getInt(int32_t& value, const char* key, jobject captureResult, jobject parameter);
  int getFloat(float& value, const char* key, jobject captureResult, jobject parameter);
  int getLong(int64_t& value, const char* key, jobject captureResult, jobject parameter);
  // Zeroes the buffer first. A value of `size` bytes or more is not zero-terminated (Oddity 13).
  int getString(char* buffer, int size, const char* key, jobject captureResult, jobject parameter);
  int getArrayBytes(char* buffer, int size, const char* key, jobject captureResult, jobject parameter);
  // Like getArrayBytes(), but into a new buffer, which stays null on failure.
  int getNewArrayBytes(std::unique_ptr<char[]>& buffer, int size, const char* key, jobject captureResult,
                       jobject parameter);
  int getIntArray(int32_t* values, int capacity, const char* key, jobject captureResult, jobject parameter);
  int getFloatArray(float* values, int capacity, const char* key, jobject captureResult, jobject parameter);
  int getDoubleArray(double* values, int capacity, const char* key, jobject captureResult, jobject parameter);
  int getLongArray(int64_t* values, int capacity, const char* key, jobject captureResult, jobject parameter);
  // Appends all strings, without a limit.
  int getStringArray(std::vector<std::string>& values, const char* key, jobject captureResult,
                     jobject parameter);
  // The count becomes the array's length, even if fewer faces fit (Oddity 11).
  int getFaceInfo(_tagOrluFaceInfo& faces, int capacity, const char* key, jobject captureResult,
                  jobject parameter);
  // Reads faces as four ints each; an incomplete last face is not counted.
  int getIntFaceArray(_tagOrluFaceInfo& faces, int capacity, const char* key, jobject captureResult,
                      jobject parameter);
  int getRectInfo(__tagOrluRect& rect, const char* key, jobject captureResult, jobject parameter);
  int getRectInfo_ex(SCR_Type& crop, const char* key, jobject captureResult, jobject parameter);
  // Reads the first rectangle of the array. Returns -1 for an empty array, without a logged line.
  int getMeteringRectangle(__tagOrluRect& rect, int32_t& weight, const char* key, jobject captureResult,
                           jobject parameter);
  int getGpsLocation(GpsLocation& location, const char* key, jobject captureResult, jobject parameter);

  // Getters that read only the composition `parameter`.
  int getIntOrlu(int32_t& value, const char* key, jobject parameter);
  int getLongOrlu(int64_t& value, const char* key, jobject parameter);
  int getFloatOrlu(float& value, const char* key, jobject parameter);
  int getStringOrlu(char* buffer, int size, const char* key, jobject parameter);
  int getFaceInfoOrlu(_tagOrluFaceInfo& faces, int capacity, const char* key, jobject parameter);
  int getRectInfoOrlu(__tagOrluRect& rect, const char* key, jobject parameter);
  int getMeteringRectangleOrlu(__tagOrluRect& rect, const char* key, jobject parameter);
  // These two read only boxed arrays, such as Integer[].
  int getIntArrayOrlu(int32_t* values, int capacity, const char* key, jobject parameter);
  int getFloatArrayOrlu(float* values, int capacity, const char* key, jobject parameter);

  // Getters from camera characteristics. Arrays must be boxed, such as Integer[].
  int getCharacteristicsInt(int32_t& value, const char* key, jobject characteristics);
  int getCharacteristicsIntArray(int32_t* values, int capacity, const char* key, jobject characteristics);
  int getCharacteristicsRational(Rational& value, const char* key, jobject characteristics);
  int getCharacteristicsRectInfo(__tagOrluRect& rect, const char* key, jobject characteristics);
  int getCharacteristicsRectInfo_ex(SCR_Type& crop, const char* key, jobject characteristics);

  // Returns a whole capture result as the bytes of its parcel; empty on failure. Logs a line for each object
  // that it needs and can't get.
  std::vector<uint8_t> getMetadata(jobject captureResult);

  // Putters into a composition: store a boxed number or a new primitive array under the key. They return 0,
  // or -1 with a logged line. Arrays are copied completely; `count` has no limit.
  int putInt(const int32_t& value, const char* key, jobject composition);
  int putFloat(const float& value, const char* key, jobject composition);
  int putLong(const int64_t& value, const char* key, jobject composition);
  int putIntArray(const int32_t* values, int count, const char* key, jobject composition);
  int putLongArray(const int64_t* values, int count, const char* key, jobject composition);
  int putFloatArray(const float* values, int count, const char* key, jobject composition);
  int putDoubleArray(const double* values, int count, const char* key, jobject composition);
  // Stores a Java object under the key. Returns 0, or -1 without a logged line.
  int putMetadataObjectIntoCaptureResultComposition(jobject composition, const char* key, jobject value);

  // Returns a new, empty HashMap as a local reference; null with a logged line on failure.
  jobject createHashMap();
  // Putters into such a map. They return 0, or -1 with a logged line; putObjectIntoHashMap() logs nothing.
  int putObjectIntoHashMap(jobject map, const char* key, jobject value);
  int putIntIntoHashMap(const int32_t& value, const char* key, jobject map);
  int putFloatIntoHashMap(const float& value, const char* key, jobject map);
  int putLongIntoHashMap(const int64_t& value, const char* key, jobject map);
  int putIntArrayIntoHashMap(const int32_t* values, int count, const char* key, jobject map);

private:
  static constexpr char kLogTag[] = "_V_VASJNI-CameraMetadataParser";
  static constexpr char kShortLogTag[] = "VASJNI-CameraMetadataParser";

  struct Table;  // the rows of the cache
  template <typename T>
  struct Boxed;  // how to box and unbox a T
  friend struct Table;

  // camera_metadata_parser_lookups.cpp
  // A class that is read through the platform's typed keys.
  struct TypedSource {
    jclass clazz;
    jclass keyClass;
    jmethodID keyConstructor;
    jmethodID get;
  };
  // Returns the environment for the next operation's ScopedLocalRefs; null if the batch frees the references.
  JNIEnv* referenceOwner() { return mBatch != nullptr && mBatch->makeRoom() ? nullptr : mEnv; }
  ScopedLocalRef<> ask(jobject captureResult, jobject parameter, const char* key, jclass valueClass);
  ScopedLocalRef<> ask(jobject parameter, const char* key);
  jobject find(JNIEnv* owner, jobject captureResult, jobject parameter, const char* key, jclass valueClass);
  jobject find(JNIEnv* owner, jobject parameter, const char* key);
  bool isComposition(jobject parameter);
  KeyObjects& keyObjects(std::string_view key, KeyObjects& fresh);
  jstring newName(const char* key);
  jobject askComposition(jobject parameter, jstring name, const char* key);
  jobject askTyped(const TypedSource& source, jobject object, KeyObjects& objects, const char* key,
                   jclass valueClass, const char* operation);
  jobject unlessThrown(jobject value, const char* key, const char* operation);
  jobject callObject(jobject object, jmethodID method);
  jobject parcelOf(jobject cameraMetadata);

  // camera_metadata_parser_getters.cpp
  enum Unpacked { kRead, kWrongType, kEmpty };
  // Destinations that consist of several C++ objects, such as a buffer and its capacity.
  struct TextOut;
  struct BytesOut;
  struct NewBytesOut;
  template <typename T>
  struct ArrayOut;
  template <typename T>
  struct BoxedArrayOut;
  struct FacesOut;
  struct IntFacesOut;
  struct MeteringOut;
  template <typename Out>
  int read(const char* getter, const char* key, const ScopedLocalRef<>& value, Out&& out);
  template <typename Number, typename = std::enable_if_t<std::is_arithmetic_v<Number>>>
  Unpacked unpack(Number& out, jobject value);
  Unpacked unpack(__tagOrluRect& out, jobject value);
  Unpacked unpack(SCR_Type& out, jobject value);
  Unpacked unpack(GpsLocation& out, jobject value);
  Unpacked unpack(Rational& out, jobject value);
  Unpacked unpack(std::vector<std::string>& out, jobject value);
  Unpacked unpack(const TextOut& out, jobject value);
  Unpacked unpack(const BytesOut& out, jobject value);
  Unpacked unpack(const NewBytesOut& out, jobject value);
  template <typename T>
  Unpacked unpack(const ArrayOut<T>& out, jobject value);
  template <typename T>
  Unpacked unpack(const BoxedArrayOut<T>& out, jobject value);
  Unpacked unpack(const FacesOut& out, jobject value);
  Unpacked unpack(const IntFacesOut& out, jobject value);
  Unpacked unpack(const MeteringOut& out, jobject value);
  template <typename Number>
  Number callNumber(Number (JNIEnv::*call)(jobject, jmethodID, ...), jobject object, jmethodID method);
  template <typename T>
  bool unbox(T& out, jobject boxed);
  template <typename T>
  void copyPrimitives(T* out, int capacity, jobject array);
  template <typename T>
  void copyBoxed(T* out, int capacity, jobject array);
  bool readRect(__tagOrluRect& out, jobject rect);

  // camera_metadata_parser_putters.cpp
  using Store = int (CameraMetadataParser::*)(JNIEnv* owner, jobject container, const char* key,
                                              jobject value);
  int intoComposition(JNIEnv* owner, jobject composition, const char* key, jobject value);
  int intoHashMap(JNIEnv* owner, jobject map, const char* key, jobject value);
  template <typename T>
  int putBoxed(const char* putter, T value, const char* key, jobject container, Store into);
  template <typename T>
  int putArray(const char* putter, const T* values, int count, jclass required, const char* key,
               jobject container, Store into);

  JNIEnv* mEnv = nullptr;
  FrameObjects mCaptureResults;
  FrameObjects mCompositions;
  RepeatedTag* mRepeatedTag = nullptr;  // the newest; null if none exists
  Batch* mBatch = nullptr;              // null if none exists or it is paused

#define TABLE(name)
#define END_TABLE
#define CLASS(name, slot) jclass slot = nullptr;
#define CLASS_WITH(name, slot, change) jclass slot = nullptr;
#define METHOD(name, signature, slot) jmethodID slot = nullptr;
#define METHOD_WITH(name, signature, slot, change) jmethodID slot = nullptr;
#define STATIC_METHOD(name, signature, slot) jmethodID slot = nullptr;
#define FIELD(name, signature, slot) jfieldID slot = nullptr;
#include "camera_metadata_parser_members.inc"
};

}  // namespace orlu
