#include "fake_jni.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <type_traits>
#include <vector>

namespace orlu::fuzz::fake_jni {
namespace {

constexpr jsize kArrayLength = 8;  // length of every array that Java passes

std::set<jobject> gLocals;
std::set<jobject> gGlobals;
std::vector<std::vector<jobject>> gFrames;
uintptr_t gNext = 0x1000;
const uint8_t* gChoices = nullptr;
size_t gChoiceCount = 0;
int32_t gNumber = 0;
bool gIsThrowing = false;

template <typename Type>
constexpr bool kIsObject = std::is_convertible_v<Type, jobject>;

bool goesWrong() {
  if (gChoiceCount == 0) return false;
  --gChoiceCount;
  return (*gChoices++ & 1U) != 0;
}

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "JNI: %s\n", what);
  std::abort();
}

template <typename Element>
void touch(const Element* elements, size_t count) {
  volatile uint8_t sum = 0;
  const auto* const bytes = reinterpret_cast<const uint8_t*>(elements);
  for (size_t i = 0; i < count * sizeof(Element); ++i) sum = static_cast<uint8_t>(sum ^ bytes[i]);
}

// Requires a valid argument: not null, no deleted reference, no negative length.
template <typename Argument>
void take(Argument argument) {
  if constexpr (kIsObject<Argument>)
    require(gLocals.count(argument) + gGlobals.count(argument) == 1, "dead reference used");
  if constexpr (std::is_same_v<Argument, jmethodID>) require(argument != nullptr, "null method");
  if constexpr (std::is_same_v<Argument, jsize>) require(argument >= 0, "negative length");
  if constexpr (std::is_same_v<Argument, const char*>) touch(argument, std::strlen(argument));
}

template <typename... Arguments>
void enter(Arguments... arguments) {
  require(!gIsThrowing, "a call with an exception pending");
  (take(arguments), ...);
}

// Stub for all JNI functions that differ only in their types. A failing call throws, returns null, or both.
template <typename Answer, typename... Arguments>
Answer JNICALL throwing(JNIEnv*, Arguments... arguments) {
  enter(arguments...);
  const bool isWrong = goesWrong();
  gIsThrowing = isWrong && (!kIsObject<Answer> || goesWrong());
  if constexpr (kIsObject<Answer>) return static_cast<Answer>(isWrong ? nullptr : newLocal());
  if constexpr (std::is_arithmetic_v<Answer>) return static_cast<Answer>(gNumber);
  if constexpr (std::is_pointer_v<Answer>) return isWrong ? nullptr : reinterpret_cast<Answer>(gNext++);
}

template <typename Answer, typename... Arguments>
void mayThrow(Answer(JNICALL*& slot)(JNIEnv*, Arguments...)) {
  slot = throwing<Answer, Arguments...>;
}

// Functions that never throw: objectOrNull() returns null on failure, always() returns a constant.
template <typename... Arguments>
jobject JNICALL objectOrNull(JNIEnv*, Arguments... arguments) {
  enter(arguments...);
  return goesWrong() ? nullptr : newLocal();
}

template <auto kAnswer, typename... Arguments>
auto JNICALL always(JNIEnv*, Arguments... arguments) {
  enter(arguments...);
  return kAnswer;
}

template <typename Array, typename Element>
void JNICALL setRegion(JNIEnv*, Array array, jsize start, jsize length, const Element* elements) {
  enter(array, length);
  require(start == 0, "bad region");
  touch(elements, static_cast<size_t>(length));
}

template <typename Array, typename Element>
Element* JNICALL getElements(JNIEnv*, Array array, jboolean*) {
  enter(array);
  if (goesWrong()) return nullptr;
  auto* const copy = new Element[kArrayLength];
  for (jsize i = 0; i < kArrayLength; ++i) copy[i] = static_cast<Element>(gNumber);
  return copy;
}

template <typename Array, typename Element>
void JNICALL releaseElements(JNIEnv*, Array array, Element* elements, jint) {
  enter(array);
  delete[] elements;
}

void fillCalls(JNINativeInterface_& t) {
  const auto mayAllThrow = [](auto&... slots) { (mayThrow(slots), ...); };
  mayAllThrow(t.FindClass, t.GetMethodID, t.GetStaticMethodID, t.GetFieldID);
  mayAllThrow(t.NewObjectV, t.CallObjectMethodV, t.CallStaticObjectMethodV);
  mayAllThrow(t.CallIntMethodV, t.CallLongMethodV, t.CallFloatMethodV, t.CallDoubleMethodV);
  mayAllThrow(t.CallBooleanMethodV, t.CallVoidMethodV, t.CallStaticVoidMethodV);
  mayAllThrow(t.NewStringUTF, t.NewIntArray, t.NewLongArray, t.NewFloatArray, t.NewDoubleArray);
}

void fillReferences(JNINativeInterface_& t) {
  t.ExceptionCheck = [](JNIEnv*) -> jboolean { return gIsThrowing ? JNI_TRUE : JNI_FALSE; };
  t.ExceptionClear = [](JNIEnv*) { gIsThrowing = false; };
  t.DeleteLocalRef = [](JNIEnv*, jobject object) {
    require(object == nullptr || gLocals.erase(object) == 1, "dead reference deleted");
  };
  t.NewGlobalRef = [](JNIEnv*, jobject object) {
    enter(object);
    return *gGlobals.insert(reinterpret_cast<jobject>(gNext++)).first;
  };
  t.DeleteGlobalRef = [](JNIEnv*, jobject object) {
    require(gGlobals.erase(object) == 1, "dead global reference deleted");
  };
  t.PushLocalFrame = [](JNIEnv*, jint) {
    gFrames.emplace_back();
    return JNI_OK;
  };
  t.PopLocalFrame = [](JNIEnv*, jobject) -> jobject {
    require(!gFrames.empty(), "no frame");
    for (jobject object : gFrames.back()) gLocals.erase(object);
    gFrames.pop_back();
    return nullptr;
  };
  t.EnsureLocalCapacity = [](JNIEnv*, jint) -> jint {
    enter();
    gIsThrowing = goesWrong();
    return gIsThrowing ? JNI_ERR : JNI_OK;
  };
}

void fillValues(JNINativeInterface_& t) {
  t.IsInstanceOf = [](JNIEnv*, jobject object, jclass clazz) -> jboolean {
    enter(object, clazz);
    return goesWrong() ? JNI_FALSE : JNI_TRUE;
  };
  t.GetObjectClass = [](JNIEnv*, jobject object) {
    enter(object);
    return static_cast<jclass>(newLocal());
  };
  t.GetIntField = [](JNIEnv*, jobject object, jfieldID) {
    enter(object);
    return gNumber;
  };
  t.SetObjectField = [](JNIEnv*, jobject object, jfieldID, jobject value) {
    enter(object);
    if (value != nullptr) take(value);
  };
  t.SetIntField = [](JNIEnv*, jobject object, jfieldID, jint) { enter(object); };
  t.GetObjectField = objectOrNull;
  t.GetObjectArrayElement = objectOrNull;
  t.GetLongField = always<jlong{0}>;  // a HardwareBuffer's native address; 0 if closed
  t.GetArrayLength = always<kArrayLength>;
  t.GetStringUTFChars = [](JNIEnv*, jstring string, jboolean*) -> const char* {
    enter(string);
    return goesWrong() ? nullptr : "NV21";
  };
  t.ReleaseStringUTFChars = [](JNIEnv*, jstring, const char*) {};
  const auto fillSetters = [](auto&... slots) { ((slots = setRegion), ...); };
  fillSetters(t.SetIntArrayRegion, t.SetLongArrayRegion, t.SetFloatArrayRegion, t.SetDoubleArrayRegion);
  t.GetIntArrayElements = getElements;
  t.ReleaseIntArrayElements = releaseElements;
  t.GetByteArrayElements = getElements;
  t.ReleaseByteArrayElements = releaseElements;
}

JavaVM* vm() {
  static JNIInvokeInterface_ table = {};
  table.GetEnv = [](JavaVM*, void** answer, jint) -> jint {
    *answer = env();
    return goesWrong() ? JNI_EDETACHED : JNI_OK;
  };
  table.AttachCurrentThread = [](JavaVM*, void** answer, void*) -> jint {
    *answer = env();
    return JNI_OK;
  };
  static JavaVM made = {&table};
  return &made;
}

JNINativeInterface_ fullTable() {
  JNINativeInterface_ table = {};
  fillCalls(table);
  fillReferences(table);
  fillValues(table);
  table.GetJavaVM = [](JNIEnv*, JavaVM** answer) -> jint {
    *answer = vm();
    return JNI_OK;
  };
  return table;
}

}  // namespace

JNIEnv* env() {
  static const JNINativeInterface_ table = fullTable();
  static JNIEnv made = {&table};
  return &made;
}

void setChoices(const uint8_t* bytes, size_t size) {
  gChoices = bytes;
  gChoiceCount = size;
}

void setNumber(int32_t number) {
  gNumber = number;
}

jobject newLocal() {
  jobject object = *gLocals.insert(reinterpret_cast<jobject>(gNext++)).first;
  if (!gFrames.empty()) gFrames.back().push_back(object);
  return object;
}

size_t localReferences() {
  return gLocals.size();
}

size_t globalReferences() {
  return gGlobals.size();
}

}  // namespace orlu::fuzz::fake_jni
