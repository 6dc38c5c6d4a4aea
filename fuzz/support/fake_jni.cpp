#include "fake_jni.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <type_traits>

namespace orlu::fuzz {
namespace {

FakeJni* gFake = nullptr;

constexpr jsize kArrayLength = 8;  // of arrays that Java made

template <typename Type>
constexpr bool kIsObject = std::is_convertible_v<Type, jobject>;

template <typename Element>
void touch(const Element* elements, size_t count) {
  volatile uint8_t sum = 0;
  const auto* const bytes = reinterpret_cast<const uint8_t*>(elements);
  for (size_t i = 0; i < count * sizeof(Element); ++i) sum = static_cast<uint8_t>(sum ^ bytes[i]);
}

}  // namespace

// Most functions differ in their types alone. `f` is the one fake.
struct FakeJniFunctions {
  static FakeJni& f() { return *gFake; }

  // What an argument of this type must be: no null, no dead reference, no length below 0.
  template <typename Argument>
  static void take(Argument argument) {
    if constexpr (kIsObject<Argument>) f().requireAlive(argument);
    if constexpr (std::is_same_v<Argument, jmethodID>) f().require(argument != nullptr, "null method");
    if constexpr (std::is_same_v<Argument, jsize>) f().require(argument >= 0, "negative length");
    if constexpr (std::is_same_v<Argument, const char*>) touch(argument, std::strlen(argument));
  }
  template <typename... Arguments>
  static void enter(Arguments... arguments) {
    f().require(!f().mIsThrowing, "a call with an exception pending");
    (take(arguments), ...);
  }

  // A function that throws when it goes wrong, or answers null.
  template <typename Answer, typename... Arguments>
  static Answer JNICALL throwing(JNIEnv*, Arguments... arguments) {
    enter(arguments...);
    const bool isWrong = f().goesWrong();
    f().mIsThrowing = isWrong && (!kIsObject<Answer> || f().goesWrong());
    if constexpr (kIsObject<Answer>) return static_cast<Answer>(isWrong ? nullptr : f().newLocal());
    if constexpr (std::is_arithmetic_v<Answer>) return static_cast<Answer>(f().mNumber);
    if constexpr (std::is_pointer_v<Answer>) return isWrong ? nullptr : reinterpret_cast<Answer>(f().mNext++);
  }
  template <typename Answer, typename... Arguments>
  static void mayThrow(Answer(JNICALL*& slot)(JNIEnv*, Arguments...)) {
    slot = throwing<Answer, Arguments...>;
  }

  // Those that never throw. What goes wrong is that there is no object.
  template <typename... Arguments>
  static jobject JNICALL object(JNIEnv*, Arguments... arguments) {
    enter(arguments...);
    return f().goesWrong() ? nullptr : f().newLocal();
  }
  template <typename Array, typename Element>
  static void JNICALL setRegion(JNIEnv*, Array array, jsize start, jsize length, const Element* elements) {
    enter(array, length);
    f().require(start == 0, "bad region");
    touch(elements, static_cast<size_t>(length));
  }
  template <typename Array, typename Element>
  static Element* JNICALL elements(JNIEnv*, Array array, jboolean*) {
    enter(array);
    if (f().goesWrong()) return nullptr;
    auto* const copy = new Element[kArrayLength];
    for (jsize i = 0; i < kArrayLength; ++i) copy[i] = static_cast<Element>(f().mNumber);
    return copy;
  }
  template <typename Array, typename Element>
  static void JNICALL release(JNIEnv*, Array array, Element* elements, jint) {
    enter(array);
    delete[] elements;
  }

  static void fillCalls(JNINativeInterface_& t) {
    const auto mayAllThrow = [](auto&... slots) { (mayThrow(slots), ...); };
    mayAllThrow(t.FindClass, t.GetMethodID, t.GetStaticMethodID, t.GetFieldID);
    mayAllThrow(t.NewObjectV, t.CallObjectMethodV, t.CallStaticObjectMethodV);
    mayAllThrow(t.CallIntMethodV, t.CallLongMethodV, t.CallFloatMethodV, t.CallDoubleMethodV);
    mayAllThrow(t.CallBooleanMethodV, t.CallVoidMethodV, t.CallStaticVoidMethodV);
    mayAllThrow(t.NewStringUTF, t.NewIntArray, t.NewLongArray, t.NewFloatArray, t.NewDoubleArray);
  }

  static void fillReferences(JNINativeInterface_& t) {
    t.ExceptionCheck = [](JNIEnv*) -> jboolean { return f().mIsThrowing ? JNI_TRUE : JNI_FALSE; };
    t.ExceptionClear = [](JNIEnv*) { f().mIsThrowing = false; };
    t.DeleteLocalRef = [](JNIEnv*, jobject object) {
      f().require(object == nullptr || f().mLocals.erase(object) == 1, "dead reference deleted");
    };
    t.NewGlobalRef = [](JNIEnv*, jobject object) {
      enter(object);
      return *f().mGlobals.insert(reinterpret_cast<jobject>(f().mNext++)).first;
    };
    t.DeleteGlobalRef = [](JNIEnv*, jobject object) {
      f().require(f().mGlobals.erase(object) == 1, "dead global reference deleted");
    };
    t.PushLocalFrame = [](JNIEnv*, jint) {
      f().mFrames.emplace_back();
      return JNI_OK;
    };
    t.PopLocalFrame = [](JNIEnv*, jobject) -> jobject {
      f().require(!f().mFrames.empty(), "no frame");
      for (jobject object : f().mFrames.back()) f().mLocals.erase(object);
      f().mFrames.pop_back();
      return nullptr;
    };
    t.EnsureLocalCapacity = [](JNIEnv*, jint) -> jint {
      f().mIsThrowing = f().goesWrong();
      return f().mIsThrowing ? JNI_ERR : JNI_OK;
    };
  }

  static void fillObjects(JNINativeInterface_& t) {
    t.IsInstanceOf = [](JNIEnv*, jobject object, jclass clazz) -> jboolean {
      enter(object, clazz);
      return f().goesWrong() ? JNI_FALSE : JNI_TRUE;
    };
    t.GetObjectClass = [](JNIEnv*, jobject object) {
      enter(object);
      return static_cast<jclass>(f().newLocal());
    };
    t.GetObjectField = object;
    t.SetObjectField = [](JNIEnv*, jobject object, jfieldID, jobject) { enter(object); };
    t.GetIntField = [](JNIEnv*, jobject object, jfieldID) {
      enter(object);
      return f().mNumber;
    };
    t.SetIntField = [](JNIEnv*, jobject object, jfieldID, jint) { enter(object); };
    // Holds the address behind a hardware buffer; this is that of a closed one.
    t.GetLongField = [](JNIEnv*, jobject object, jfieldID) -> jlong {
      enter(object);
      return 0;
    };
  }

  static void fillValues(JNINativeInterface_& t) {
    t.GetStringUTFChars = [](JNIEnv*, jstring string, jboolean*) -> const char* {
      enter(string);
      return f().goesWrong() ? nullptr : "NV21";
    };
    t.ReleaseStringUTFChars = [](JNIEnv*, jstring, const char*) {};
    t.GetArrayLength = [](JNIEnv*, jarray array) {
      enter(array);
      return kArrayLength;
    };
    t.GetObjectArrayElement = object;
    t.SetIntArrayRegion = setRegion;
    t.SetLongArrayRegion = setRegion;
    t.SetFloatArrayRegion = setRegion;
    t.SetDoubleArrayRegion = setRegion;
    t.GetIntArrayElements = elements;
    t.ReleaseIntArrayElements = release;
    t.GetByteArrayElements = elements;
    t.ReleaseByteArrayElements = release;
  }

  static void fillVm(JNINativeInterface_& t, JNIInvokeInterface_& vm) {
    t.GetJavaVM = [](JNIEnv*, JavaVM** answer) -> jint {
      *answer = &f().mVm;
      return JNI_OK;
    };
    vm.GetEnv = [](JavaVM*, void** env, jint) -> jint {
      *env = f().env();
      return f().goesWrong() ? JNI_EDETACHED : JNI_OK;
    };
    vm.AttachCurrentThread = [](JavaVM*, void** env, void*) -> jint {
      *env = f().env();
      return JNI_OK;
    };
  }
};

FakeJni::FakeJni() {
  gFake = this;
  FakeJniFunctions::fillCalls(mTable);
  FakeJniFunctions::fillReferences(mTable);
  FakeJniFunctions::fillObjects(mTable);
  FakeJniFunctions::fillValues(mTable);
  FakeJniFunctions::fillVm(mTable, mVmTable);
  mEnv.functions = &mTable;
  mVm.functions = &mVmTable;
}

FakeJni::~FakeJni() {
  gFake = nullptr;
}

void FakeJni::setChoices(const uint8_t* bytes, size_t size) {
  mChoices = bytes;
  mChoiceCount = size;
}

jobject FakeJni::newLocal() {
  jobject object = *mLocals.insert(reinterpret_cast<jobject>(mNext++)).first;
  if (!mFrames.empty()) mFrames.back().push_back(object);
  return object;
}

bool FakeJni::goesWrong() {
  if (mChoiceCount == 0) return false;
  --mChoiceCount;
  return (*mChoices++ & 1U) != 0;
}

void FakeJni::require(bool holds, const char* what) const {
  if (holds) return;
  std::fprintf(stderr, "JNI: %s\n", what);
  std::abort();
}

void FakeJni::requireAlive(jobject object) const {
  require(mLocals.count(object) + mGlobals.count(object) == 1, "dead reference used");
}

}  // namespace orlu::fuzz
