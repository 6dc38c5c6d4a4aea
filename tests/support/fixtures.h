// Creates a request's Java objects from C++. All are local references; the test's LocalFrame frees them.
#pragma once

#include <jni.h>

#include <cstdint>
#include <string>
#include <vector>

#include "jvm.h"
#include "metadata_records.h"

namespace orlu::test {

// Frees the local references created while it lives. Each test has one.
class LocalFrame {
public:
  LocalFrame() { env()->PushLocalFrame(4096); }
  LocalFrame(const LocalFrame&) = delete;
  LocalFrame& operator=(const LocalFrame&) = delete;
  ~LocalFrame() { env()->PopLocalFrame(nullptr); }
};

// If a Java exception is pending, clears it and throws std::runtime_error with `what` and the exception's
// text.
void expectNoException(const char* what);

jclass findClass(const char* name);
jobject newObject(const char* clazz, const char* signature, ...);
// Calls a method. Its signature must return void, boolean, int, long or an object. Throws std::runtime_error
// if the method throws.
jvalue call(jobject object, const char* method, const char* signature, ...);
template <typename... Arguments>
jobject callObject(jobject object, const char* method, const char* signature, Arguments... arguments) {
  return call(object, method, signature, arguments...).l;
}
// Calls a static method that returns void or an object.
jobject callStatic(const char* clazz, const char* method, const char* signature, ...);
int intField(jobject object, const char* name);
jobject objectField(jobject object, const char* name, const char* signature);
void setObjectField(jobject object, const char* name, const char* signature, jobject value);

// Java values.
jobject javaInt(int32_t value);
jobject javaLong(int64_t value);
jobject javaFloat(float value);
jobject javaDouble(double value);
jobject javaString(const std::string& value);
jobject javaInts(const std::vector<int32_t>& values);
jobject javaLongs(const std::vector<int64_t>& values);
jobject javaFloats(const std::vector<float>& values);
jobject javaDoubles(const std::vector<double>& values);
jobject javaBytes(const std::vector<uint8_t>& values);
jobject javaStrings(const std::vector<std::string>& values);
// Null elements are allowed.
jobject javaArray(const char* elementClass, const std::vector<jobject>& elements);
jobject javaRect(const __tagOrluRect& rect);
jobject javaFaces(const std::vector<__tagOrluRect>& faces);
jobject javaRegions(const std::vector<__tagOrluRect>& regions, int weight);
jobject javaLocation(double latitude, double longitude, double altitude, int64_t time);
jobject javaList(const std::vector<jobject>& elements);
// Returns a list whose size() returns `size` or throws, and whose get() returns null or throws.
jobject newUnrulyList(int size, bool sizeThrows, bool getThrows);

// Conversions from Java.
int32_t intOf(jobject value);
std::string stringOf(jobject value);
std::vector<int32_t> intsOf(jobject value);

// Metadata.
jobject newMetadata();
void setTag(jobject metadata, const char* tag, jobject value);
// Writes the metadata to a parcel and returns the parcel's bytes.
std::vector<uint8_t> parcelBytes(jobject metadata);
jobject newCaptureResult(jobject metadata);
jobject newCharacteristics(jobject metadata);
jobject newComposition(jobject metadata = nullptr);
void putKey(jobject composition, const char* key, jobject value);
jobject getKey(jobject composition, const char* key);
jobject newThrowingComposition();
// Returns the TagType constant of a tag in the host's table, or "" for an unknown tag.
std::string typeOfTag(const std::string& tag);
// Returns the advice to list a tag with `type` in the host's table; for a tag that is missing there or has
// another type.
std::string tagTableHint(const std::string& tag, const std::string& type);

// Images.
jobject newSharedMemory(int size);
// Returns a buffer whose native handle has these words. The first `numFds` words are descriptors, which the
// buffer owns.
jobject newHardwareBuffer(int numFds, const std::vector<int32_t>& words);
jobject newHardwareBuffer(int width, int height, int format);

struct ImageSpec {
  const char* format = "NV21";  // may be null
  int width = 64;
  int height = 48;
  std::vector<int32_t> strides = {64, 64};
  std::vector<int32_t> planeSizes = {3072, 1536};
  jobject sharedMemory = nullptr;
  jobject hardwareBuffer = nullptr;
};
jobject newImage(const ImageSpec& spec);
// Returns a 64 x 48 NV21 image with its own shared memory.
jobject newSmallImage();

jobject newRequest(int64_t requestId, const char* requestType);

}  // namespace orlu::test
