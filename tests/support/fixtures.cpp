#include "fixtures.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

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

}  // namespace

void expectNoException(const char* what) {
  if (!env()->ExceptionCheck()) return;
  std::fprintf(stderr, "Java threw at %s\n", what);
  env()->ExceptionDescribe();
  std::abort();
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

jobject callObject(jobject object, const char* method, const char* signature) {
  jobject answer = env()->CallObjectMethod(object, methodOf(object, method, signature));
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

jobject javaInt(int32_t value) {
  return newObject("java/lang/Integer", "(I)V", static_cast<jint>(value));
}
jobject javaLong(int64_t value) {
  return newObject("java/lang/Long", "(J)V", static_cast<jlong>(value));
}
jobject javaFloat(float value) {
  return newObject("java/lang/Float", "(F)V", static_cast<double>(value));
}
jobject javaDouble(double value) {
  return newObject("java/lang/Double", "(D)V", value);
}
jobject javaString(const std::string& value) {
  return env()->NewStringUTF(value.c_str());
}
jobject javaInts(const std::vector<int32_t>& values) {
  return primitives(values, &JNIEnv::NewIntArray, &JNIEnv::SetIntArrayRegion);
}
jobject javaLongs(const std::vector<int64_t>& values) {
  return primitives(values, &JNIEnv::NewLongArray, &JNIEnv::SetLongArrayRegion);
}
jobject javaFloats(const std::vector<float>& values) {
  return primitives(values, &JNIEnv::NewFloatArray, &JNIEnv::SetFloatArrayRegion);
}
jobject javaDoubles(const std::vector<double>& values) {
  return primitives(values, &JNIEnv::NewDoubleArray, &JNIEnv::SetDoubleArrayRegion);
}
jobject javaBytes(const std::vector<uint8_t>& values) {
  return primitives(values, &JNIEnv::NewByteArray, &JNIEnv::SetByteArrayRegion);
}

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
  constexpr char kFace[] = "android/hardware/camera2/params/Face";
  std::vector<jobject> objects;
  for (const __tagOrluRect& face : faces) {
    objects.push_back(newObject(kFace, "(Landroid/graphics/Rect;I)V", javaRect(face), 100));
  }
  return javaArray(kFace, objects);
}

jobject javaRegions(const std::vector<__tagOrluRect>& regions, int weight) {
  constexpr char kRegion[] = "android/hardware/camera2/params/MeteringRectangle";
  std::vector<jobject> objects;
  for (const __tagOrluRect& region : regions) {
    objects.push_back(newObject(kRegion, "(Landroid/graphics/Rect;I)V", javaRect(region), weight));
  }
  return javaArray(kRegion, objects);
}

jobject javaLocation(double latitude, double longitude, double altitude, int64_t time) {
  jobject location = newObject("android/location/Location", "(Ljava/lang/String;)V", javaString("gps"));
  env()->CallVoidMethod(location, methodOf(location, "setLatitude", "(D)V"), latitude);
  expectNoException("setLatitude");
  env()->CallVoidMethod(location, methodOf(location, "setLongitude", "(D)V"), longitude);
  expectNoException("setLongitude");
  env()->CallVoidMethod(location, methodOf(location, "setAltitude", "(D)V"), altitude);
  expectNoException("setAltitude");
  env()->CallVoidMethod(location, methodOf(location, "setTime", "(J)V"), static_cast<jlong>(time));
  expectNoException("setTime");
  return location;
}

jobject javaRational(int32_t numerator, int32_t denominator) {
  return newObject("android/util/Rational", "(II)V", numerator, denominator);
}

jobject javaList(const std::vector<jobject>& elements) {
  jobject list = newObject("java/util/ArrayList", "()V");
  jmethodID add = methodOf(list, "add", "(Ljava/lang/Object;)Z");
  for (jobject element : elements) {
    env()->CallBooleanMethod(list, add, element);
    expectNoException("add");
  }
  return list;
}

jobject newUnrulyList(int size, bool sizeThrows, bool getThrows) {
  return newObject("com/orlu/test/UnrulyList", "(IZZ)V", size, sizeThrows, getThrows);
}

int32_t intOf(jobject value) {
  const jint read = env()->CallIntMethod(value, methodOf(value, "intValue", "()I"));
  expectNoException("intValue");
  return read;
}

int64_t longOf(jobject value) {
  const jlong read = env()->CallLongMethod(value, methodOf(value, "longValue", "()J"));
  expectNoException("longValue");
  return read;
}

float floatOf(jobject value) {
  const jfloat read = env()->CallFloatMethod(value, methodOf(value, "floatValue", "()F"));
  expectNoException("floatValue");
  return read;
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
std::vector<int64_t> longsOf(jobject value) {
  return elementsOf<int64_t>(value, &JNIEnv::GetLongArrayRegion);
}
std::vector<float> floatsOf(jobject value) {
  return elementsOf<float>(value, &JNIEnv::GetFloatArrayRegion);
}
std::vector<double> doublesOf(jobject value) {
  return elementsOf<double>(value, &JNIEnv::GetDoubleArrayRegion);
}

jobject newMetadata() {
  return newObject("android/hardware/camera2/impl/CameraMetadataNative", "()V");
}

void setTag(jobject metadata, const char* tag, jobject value) {
  env()->CallVoidMethod(metadata, methodOf(metadata, "set", "(Ljava/lang/String;Ljava/lang/Object;)V"),
                        javaString(tag), value);
  expectNoException(tag);
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
  env()->CallVoidMethod(composition,
                        methodOf(composition, "putMetadata", "(Ljava/lang/String;Ljava/lang/Object;)V"),
                        javaString(key), value);
  expectNoException(key);
}

jobject getKey(jobject composition, const char* key) {
  jobject value = env()->CallObjectMethod(
      composition, methodOf(composition, "getMetadata", "(Ljava/lang/String;)Ljava/lang/Object;"),
      javaString(key));
  expectNoException(key);
  return value;
}

jobject newThrowingComposition(const char* key) {
  return newObject("com/orlu/test/ThrowingComposition", "(Ljava/lang/String;)V",
                   key == nullptr ? nullptr : javaString(key));
}

jobject newThrowingMap() {
  return newObject("com/orlu/test/ThrowingMap", "()V");
}

void registerTag(const char* tag, const char* type) {
  constexpr char kType[] = "android/hardware/camera2/impl/TagType";
  jclass types = findClass(kType);
  jfieldID constant = env()->GetStaticFieldID(types, type, (std::string("L") + kType + ";").c_str());
  expectNoException(type);
  jclass table = findClass("android/hardware/camera2/impl/TagTable");
  jmethodID method = env()->GetStaticMethodID(table, "register",
                                              "(Ljava/lang/String;Landroid/hardware/camera2/impl/TagType;)V");
  env()->CallStaticVoidMethod(table, method, javaString(tag), env()->GetStaticObjectField(types, constant));
  expectNoException(tag);
}

jobject newSharedMemory(int size) {
  jclass clazz = findClass("android/os/SharedMemory");
  jmethodID create =
      env()->GetStaticMethodID(clazz, "create", "(Ljava/lang/String;I)Landroid/os/SharedMemory;");
  jobject memory = env()->CallStaticObjectMethod(clazz, create, javaString("test"), size);
  expectNoException("SharedMemory.create");
  return memory;
}

jobject newHardwareBuffer(int numFds, const std::vector<int32_t>& words) {
  jclass clazz = findClass("android/hardware/HardwareBuffer");
  jmethodID make = env()->GetStaticMethodID(clazz, "fromHandle", "(IIII[I)Landroid/hardware/HardwareBuffer;");
  jobject buffer = env()->CallStaticObjectMethod(clazz, make, 64, 48, 0x23, numFds, javaInts(words));
  expectNoException("HardwareBuffer.fromHandle");
  return buffer;
}

jobject newHardwareBuffer(int width, int height, int format) {
  jclass clazz = findClass("android/hardware/HardwareBuffer");
  jmethodID create = env()->GetStaticMethodID(clazz, "create", "(IIIIJ)Landroid/hardware/HardwareBuffer;");
  jobject buffer =
      env()->CallStaticObjectMethod(clazz, create, width, height, format, 1, static_cast<jlong>(0x33));
  expectNoException("HardwareBuffer.create");
  return buffer;
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
