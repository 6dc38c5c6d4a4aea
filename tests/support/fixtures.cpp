#include "fixtures.h"

#include <cstdarg>
#include <cstring>
#include <stdexcept>

namespace orlu::test {
namespace {

template <typename Array, typename T, typename Element>
jobject primitives(const std::vector<T>& values, Array (JNIEnv::*make)(jsize),
                   void (JNIEnv::*set)(Array, jsize, jsize, const Element*)) {
  const auto length = static_cast<jsize>(values.size());
  Array array = (env()->*make)(length);
  (env()->*set)(array, 0, length, reinterpret_cast<const Element*>(values.data()));
  return array;
}

template <typename T, typename Array, typename Element>
std::vector<T> elementsOf(jobject array, void (JNIEnv::*get)(Array, jsize, jsize, Element*)) {
  std::vector<T> values(static_cast<size_t>(env()->GetArrayLength(static_cast<Array>(array))));
  (env()->*get)(static_cast<Array>(array), 0, static_cast<jsize>(values.size()),
                reinterpret_cast<Element*>(values.data()));
  return values;
}

jfieldID fieldOf(jobject object, const char* name, const char* signature) {
  jfieldID field = env()->GetFieldID(env()->GetObjectClass(object), name, signature);
  expectNoException(name);
  return field;
}

jmethodID methodOf(jobject object, const char* name, const char* signature) {
  jmethodID method = env()->GetMethodID(env()->GetObjectClass(object), name, signature);
  expectNoException(name);
  return method;
}

// Returns an array of objects, each constructed from a rectangle and a number.
jobject weighted(const char* clazz, const std::vector<__tagOrluRect>& rects, int weight) {
  std::vector<jobject> objects;
  for (const __tagOrluRect& rect : rects) {
    objects.push_back(newObject(clazz, "(Landroid/graphics/Rect;I)V", javaRect(rect), weight));
  }
  return javaArray(clazz, objects);
}

}  // namespace

void expectNoException(const char* what) {
  jthrowable thrown = env()->ExceptionOccurred();
  if (thrown == nullptr) return;
  env()->ExceptionClear();
  const jmethodID toString =
      env()->GetMethodID(env()->GetObjectClass(thrown), "toString", "()Ljava/lang/String;");
  jobject text = env()->CallObjectMethod(thrown, toString);
  if (env()->ExceptionCheck()) env()->ExceptionClear();
  throw std::runtime_error(std::string("Java threw at ") + what + ": " + stringOf(text));
}

jclass findClass(const char* name) {
  jclass clazz = env()->FindClass(name);
  expectNoException(name);
  return clazz;
}

jobject newObject(const char* clazz, const char* signature, ...) {
  jclass found = findClass(clazz);
  jmethodID constructor = env()->GetMethodID(found, "<init>", signature);
  expectNoException(clazz);
  va_list arguments;
  va_start(arguments, signature);
  jobject object = env()->NewObjectV(found, constructor, arguments);
  va_end(arguments);
  expectNoException(clazz);
  return object;
}

jvalue call(jobject object, const char* method, const char* signature, ...) {
  const jmethodID id = methodOf(object, method, signature);
  const char type = std::strchr(signature, ')')[1];
  jvalue answer = {};
  va_list arguments;
  va_start(arguments, signature);
  if (type == 'V') env()->CallVoidMethodV(object, id, arguments);
  if (type == 'Z') answer.z = env()->CallBooleanMethodV(object, id, arguments);
  if (type == 'I') answer.i = env()->CallIntMethodV(object, id, arguments);
  if (type == 'J') answer.j = env()->CallLongMethodV(object, id, arguments);
  if (type == 'L' || type == '[') answer.l = env()->CallObjectMethodV(object, id, arguments);
  va_end(arguments);
  expectNoException(method);
  return answer;
}

jobject callStatic(const char* clazz, const char* method, const char* signature, ...) {
  jclass found = findClass(clazz);
  const jmethodID id = env()->GetStaticMethodID(found, method, signature);
  expectNoException(method);
  const bool isVoid = std::strstr(signature, ")V") != nullptr;
  va_list arguments;
  va_start(arguments, signature);
  jobject answer = isVoid ? nullptr : env()->CallStaticObjectMethodV(found, id, arguments);
  if (isVoid) env()->CallStaticVoidMethodV(found, id, arguments);
  va_end(arguments);
  expectNoException(method);
  return answer;
}

int intField(jobject object, const char* name) {
  return env()->GetIntField(object, fieldOf(object, name, "I"));
}

jobject objectField(jobject object, const char* name, const char* signature) {
  return env()->GetObjectField(object, fieldOf(object, name, signature));
}

void setObjectField(jobject object, const char* name, const char* signature, jobject value) {
  env()->SetObjectField(object, fieldOf(object, name, signature), value);
}

jobject javaString(const std::string& value) {
  return env()->NewStringUTF(value.c_str());
}

// Boxed values and arrays. Variable arguments pass float as double.
#define JAVA_BOX(Type, Class, signature, T, JavaT)                              \
  jobject java##Type(T value) {                                                 \
    return newObject("java/lang/" Class, signature, static_cast<JavaT>(value)); \
  }
#define JAVA_ARRAY(Type, T)                                                                \
  jobject java##Type##s(const std::vector<T>& values) {                                    \
    return primitives(values, &JNIEnv::New##Type##Array, &JNIEnv::Set##Type##ArrayRegion); \
  }
JAVA_BOX(Int, "Integer", "(I)V", int32_t, jint)
JAVA_BOX(Long, "Long", "(J)V", int64_t, jlong)
JAVA_BOX(Float, "Float", "(F)V", float, double)
JAVA_BOX(Double, "Double", "(D)V", double, double)
JAVA_ARRAY(Int, int32_t)
JAVA_ARRAY(Long, int64_t)
JAVA_ARRAY(Float, float)
JAVA_ARRAY(Double, double)
JAVA_ARRAY(Byte, uint8_t)
#undef JAVA_BOX
#undef JAVA_ARRAY

jobject javaArray(const char* elementClass, const std::vector<jobject>& elements) {
  jobjectArray array =
      env()->NewObjectArray(static_cast<jsize>(elements.size()), findClass(elementClass), nullptr);
  for (size_t i = 0; i < elements.size(); ++i) {
    env()->SetObjectArrayElement(array, static_cast<jsize>(i), elements[i]);
    expectNoException(elementClass);
  }
  return array;
}

jobject javaStrings(const std::vector<std::string>& values) {
  std::vector<jobject> strings;
  for (const std::string& value : values) strings.push_back(javaString(value));
  return javaArray("java/lang/String", strings);
}

jobject javaRect(const __tagOrluRect& rect) {
  return newObject("android/graphics/Rect", "(IIII)V", rect.left, rect.top, rect.right, rect.bottom);
}

jobject javaFaces(const std::vector<__tagOrluRect>& faces) {
  return weighted("android/hardware/camera2/params/Face", faces, 100);
}

jobject javaRegions(const std::vector<__tagOrluRect>& regions, int weight) {
  return weighted("android/hardware/camera2/params/MeteringRectangle", regions, weight);
}

jobject javaLocation(double latitude, double longitude, double altitude, int64_t time) {
  jobject location = newObject("android/location/Location", "(Ljava/lang/String;)V", javaString("gps"));
  call(location, "setLatitude", "(D)V", latitude);
  call(location, "setLongitude", "(D)V", longitude);
  call(location, "setAltitude", "(D)V", altitude);
  call(location, "setTime", "(J)V", static_cast<jlong>(time));
  return location;
}

jobject javaList(const std::vector<jobject>& elements) {
  jobject list = newObject("java/util/ArrayList", "()V");
  for (jobject element : elements) call(list, "add", "(Ljava/lang/Object;)Z", element);
  return list;
}

jobject newUnrulyList(int size, bool sizeThrows, bool getThrows) {
  return newObject("com/orlu/test/UnrulyList", "(IZZ)V", size, sizeThrows, getThrows);
}

int32_t intOf(jobject value) {
  return call(value, "intValue", "()I").i;
}
std::string stringOf(jobject value) {
  if (value == nullptr) return "(null)";
  const char* chars = env()->GetStringUTFChars(static_cast<jstring>(value), nullptr);
  std::string text(chars);
  env()->ReleaseStringUTFChars(static_cast<jstring>(value), chars);
  return text;
}

std::vector<int32_t> intsOf(jobject value) {
  return elementsOf<int32_t>(value, &JNIEnv::GetIntArrayRegion);
}

jobject newMetadata() {
  return newObject("android/hardware/camera2/impl/CameraMetadataNative", "()V");
}

void setTag(jobject metadata, const char* tag, jobject value) {
  call(metadata, "set", "(Ljava/lang/String;Ljava/lang/Object;)V", javaString(tag), value);
}

std::vector<uint8_t> parcelBytes(jobject metadata) {
  jobject parcel = callStatic("android/os/Parcel", "obtain", "()Landroid/os/Parcel;");
  call(metadata, "writeToParcel", "(Landroid/os/Parcel;I)V", parcel, 0);
  return elementsOf<uint8_t>(callObject(parcel, "marshall", "()[B"), &JNIEnv::GetByteArrayRegion);
}

jobject newCaptureResult(jobject metadata) {
  return newObject("android/hardware/camera2/CaptureResult",
                   "(Landroid/hardware/camera2/impl/CameraMetadataNative;)V", metadata);
}

jobject newCharacteristics(jobject metadata) {
  return newObject("android/hardware/camera2/CameraCharacteristics",
                   "(Landroid/hardware/camera2/impl/CameraMetadataNative;)V", metadata);
}

jobject newComposition(jobject metadata) {
  return newObject("com/orlu/orlu3rdalgoservice/CaptureResultComposition",
                   "(Landroid/hardware/camera2/impl/CameraMetadataNative;)V",
                   metadata == nullptr ? newMetadata() : metadata);
}

void putKey(jobject composition, const char* key, jobject value) {
  call(composition, "putMetadata", "(Ljava/lang/String;Ljava/lang/Object;)V", javaString(key), value);
}

jobject getKey(jobject composition, const char* key) {
  return callObject(composition, "getMetadata", "(Ljava/lang/String;)Ljava/lang/Object;", javaString(key));
}

jobject newThrowingComposition() {
  return newObject("com/orlu/test/ThrowingComposition", "()V");
}

std::string typeOfTag(const std::string& tag) {
  jobject type = callStatic("android/hardware/camera2/impl/TagTable", "typeOf",
                            "(Ljava/lang/String;)Landroid/hardware/camera2/impl/TagType;", javaString(tag));
  return type == nullptr ? "" : stringOf(callObject(type, "name", "()Ljava/lang/String;"));
}

std::string tagTableHint(const std::string& tag, const std::string& type) {
  return "add a line to host/java/android/hardware/camera2/impl/tags.txt: " + tag + ' ' + type;
}

jobject newSharedMemory(int size) {
  return callStatic("android/os/SharedMemory", "create", "(Ljava/lang/String;I)Landroid/os/SharedMemory;",
                    javaString("test"), size);
}

jobject newHardwareBuffer(int numFds, const std::vector<int32_t>& words) {
  return callStatic("android/hardware/HardwareBuffer", "fromHandle",
                    "(IIII[I)Landroid/hardware/HardwareBuffer;", 64, 48, 0x23, numFds, javaInts(words));
}

jobject newHardwareBuffer(int width, int height, int format) {
  return callStatic("android/hardware/HardwareBuffer", "create", "(IIIIJ)Landroid/hardware/HardwareBuffer;",
                    width, height, format, 1, jlong{0x33});
}

jobject newImage(const ImageSpec& spec) {
  jobject image = newObject("com/orlu/orlu3rdalgoservice/datastruct/VImageIPC", "()V");
  if (spec.format != nullptr) {
    setObjectField(image, "mFormat", "Ljava/lang/String;", javaString(spec.format));
  }
  env()->SetIntField(image, fieldOf(image, "mWidth", "I"), spec.width);
  env()->SetIntField(image, fieldOf(image, "mHeight", "I"), spec.height);
  setObjectField(image, "mRowStrides", "[I", javaInts(spec.strides));
  setObjectField(image, "mPlaneSizes", "[I", javaInts(spec.planeSizes));
  setObjectField(image, "mImageDataShmem", "Landroid/os/SharedMemory;", spec.sharedMemory);
  setObjectField(image, "mImageDataHwbuff", "Landroid/hardware/HardwareBuffer;", spec.hardwareBuffer);
  return image;
}

jobject newSmallImage() {
  ImageSpec spec;
  spec.sharedMemory = newSharedMemory(64 * 48 * 3 / 2);
  return newImage(spec);
}

jobject newRequest(int64_t requestId, const char* requestType) {
  return newObject("com/orlu/orlu3rdalgoservice/datastruct/VRequest", "(JLjava/lang/String;)V",
                   static_cast<jlong>(requestId), javaString(requestType));
}

}  // namespace orlu::test
