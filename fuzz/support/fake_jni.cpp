#include "fake_jni.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace orlu::fuzz {
namespace {

FakeJni* gFake = nullptr;

constexpr jsize kArrayLength = 8;  // of arrays that Java made

template <typename Element>
void touch(const Element* bytes, jsize count) {
  volatile uint8_t sum = 0;
  const auto* const first = reinterpret_cast<const uint8_t*>(bytes);
  for (size_t i = 0; i < static_cast<size_t>(count) * sizeof(Element); ++i) {
    sum = static_cast<uint8_t>(sum ^ first[i]);
  }
}

}  // namespace

// The functions by kinds. `f` is the one fake.
struct FakeJniFunctions {
  static FakeJni& f() { return *gFake; }

  template <typename Id>
  static Id JNICALL member(JNIEnv*, jclass clazz, const char*, const char*) {
    f().enter(clazz);
    if (!f().goesWrong()) return reinterpret_cast<Id>(f().mNext++);
    f().mIsThrowing = true;
    return nullptr;
  }
  static jobject JNICALL makeObject(JNIEnv*, jclass clazz, jmethodID method, va_list) {
    f().require(method != nullptr, "null method");
    f().enter(clazz);
    return f().answer();
  }
  static jobject JNICALL callObject(JNIEnv*, jobject object, jmethodID method, va_list) {
    f().require(method != nullptr, "null method");
    f().enter(object);
    return f().answer();
  }
  template <typename Number>
  static Number JNICALL callNumber(JNIEnv*, jobject object, jmethodID method, va_list) {
    f().require(method != nullptr, "null method");
    f().enter(object);
    f().mIsThrowing = f().goesWrong();
    return static_cast<Number>(f().mNumber);
  }
  static void JNICALL callVoid(JNIEnv*, jobject object, jmethodID method, va_list) {
    callNumber<jint>(nullptr, object, method, {});
  }
  static void JNICALL callStaticVoid(JNIEnv*, jclass clazz, jmethodID method, va_list) {
    callNumber<jint>(nullptr, clazz, method, {});
  }
  template <typename Array>
  static Array JNICALL newArray(JNIEnv*, jsize length) {
    f().enter(&f());
    f().require(length >= 0, "negative length");
    return static_cast<Array>(f().answer());
  }
  template <typename Array, typename Element>
  static void JNICALL setRegion(JNIEnv*, Array array, jsize start, jsize length, const Element* elements) {
    f().enter(array);
    f().require(start == 0 && length >= 0, "bad region");
    touch(elements, length);
  }
  template <typename Array, typename Element>
  static Element* JNICALL elements(JNIEnv*, Array array, jboolean*) {
    f().enter(array);
    if (f().goesWrong()) return nullptr;
    auto* const copy = new Element[kArrayLength];
    for (jsize i = 0; i < kArrayLength; ++i) copy[i] = static_cast<Element>(f().mNumber);
    return copy;
  }
  template <typename Array, typename Element>
  static void JNICALL release(JNIEnv*, Array array, Element* elements, jint) {
    f().enter(array);
    delete[] elements;
  }

  static void fillReferences(JNINativeInterface_& t) {
    t.FindClass = [](JNIEnv*, const char*) {
      f().enter(gFake);
      return static_cast<jclass>(f().answer());
    };
    t.ExceptionCheck = [](JNIEnv*) -> jboolean { return f().mIsThrowing ? JNI_TRUE : JNI_FALSE; };
    t.ExceptionClear = [](JNIEnv*) { f().mIsThrowing = false; };
    t.DeleteLocalRef = [](JNIEnv*, jobject object) {
      f().require(object == nullptr || f().mLocals.erase(object) == 1, "dead reference deleted");
    };
    t.NewGlobalRef = [](JNIEnv*, jobject object) {
      f().enter(object);
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
    t.IsInstanceOf = [](JNIEnv*, jobject object, jclass clazz) -> jboolean {
      f().enter(object);
      f().enter(clazz);
      return f().goesWrong() ? JNI_FALSE : JNI_TRUE;
    };
    t.GetJavaVM = [](JNIEnv*, JavaVM** vm) -> jint {
      *vm = &f().mVm;
      return JNI_OK;
    };
  }

  static void fillMembers(JNINativeInterface_& t) {
    t.GetMethodID = member<jmethodID>;
    t.GetStaticMethodID = member<jmethodID>;
    t.GetFieldID = member<jfieldID>;
    t.NewObjectV = makeObject;
    t.CallObjectMethodV = callObject;
    t.CallStaticObjectMethodV = makeObject;
    t.CallIntMethodV = callNumber<jint>;
    t.CallLongMethodV = callNumber<jlong>;
    t.CallFloatMethodV = callNumber<jfloat>;
    t.CallDoubleMethodV = callNumber<jdouble>;
    t.CallBooleanMethodV = callNumber<jboolean>;
    t.CallVoidMethodV = callVoid;
    t.CallStaticVoidMethodV = callStaticVoid;
    t.GetObjectField = [](JNIEnv*, jobject object, jfieldID) {
      f().enter(object);
      return f().goesWrong() ? nullptr : f().newLocal();
    };
    t.SetObjectField = [](JNIEnv*, jobject object, jfieldID, jobject) { f().enter(object); };
    t.GetIntField = [](JNIEnv*, jobject object, jfieldID) {
      f().enter(object);
      return f().mNumber;
    };
    t.GetObjectClass = [](JNIEnv*, jobject object) {
      f().enter(object);
      return static_cast<jclass>(f().newLocal());
    };
    // Holds the address behind a hardware buffer; this is that of a closed one.
    t.GetLongField = [](JNIEnv*, jobject object, jfieldID) -> jlong {
      f().enter(object);
      return 0;
    };
    t.SetIntField = [](JNIEnv*, jobject object, jfieldID, jint) { f().enter(object); };
  }

  static void fillValues(JNINativeInterface_& t) {
    t.NewStringUTF = [](JNIEnv*, const char* text) {
      f().enter(gFake);
      touch(text, static_cast<jsize>(std::strlen(text)));
      return static_cast<jstring>(f().answer());
    };
    t.GetStringUTFChars = [](JNIEnv*, jstring string, jboolean*) -> const char* {
      f().enter(string);
      return f().goesWrong() ? nullptr : "NV21";
    };
    t.ReleaseStringUTFChars = [](JNIEnv*, jstring, const char*) {};
    t.GetArrayLength = [](JNIEnv*, jarray array) {
      f().enter(array);
      return kArrayLength;
    };
    t.GetObjectArrayElement = [](JNIEnv*, jobjectArray array, jsize) {
      f().enter(array);
      return f().goesWrong() ? nullptr : f().newLocal();
    };
    t.NewIntArray = newArray<jintArray>;
    t.NewLongArray = newArray<jlongArray>;
    t.NewFloatArray = newArray<jfloatArray>;
    t.NewDoubleArray = newArray<jdoubleArray>;
    t.SetIntArrayRegion = setRegion<jintArray, jint>;
    t.SetLongArrayRegion = setRegion<jlongArray, jlong>;
    t.SetFloatArrayRegion = setRegion<jfloatArray, jfloat>;
    t.SetDoubleArrayRegion = setRegion<jdoubleArray, jdouble>;
    t.GetIntArrayElements = elements<jintArray, jint>;
    t.ReleaseIntArrayElements = release<jintArray, jint>;
    t.GetByteArrayElements = elements<jbyteArray, jbyte>;
    t.ReleaseByteArrayElements = release<jbyteArray, jbyte>;
  }

  static void fillVm(JNIInvokeInterface_& t) {
    t.GetEnv = [](JavaVM*, void** env, jint) -> jint {
      *env = f().env();
      return f().goesWrong() ? JNI_EDETACHED : JNI_OK;
    };
    t.AttachCurrentThread = [](JavaVM*, void** env, void*) -> jint {
      *env = f().env();
      return JNI_OK;
    };
  }
};

FakeJni::FakeJni() {
  gFake = this;
  FakeJniFunctions::fillReferences(mTable);
  FakeJniFunctions::fillMembers(mTable);
  FakeJniFunctions::fillValues(mTable);
  FakeJniFunctions::fillVm(mVmTable);
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

// What every function asks that a pending exception forbids: `object` is alive.
void FakeJni::enter(const void* object) const {
  require(!mIsThrowing, "a call with an exception pending");
  if (object == this) return;
  auto* const reference = static_cast<jobject>(const_cast<void*>(object));
  require(mLocals.count(reference) + mGlobals.count(reference) == 1, "dead reference used");
}

// A new object, or null with an exception, or without one.
jobject FakeJni::answer() {
  if (!goesWrong()) return newLocal();
  mIsThrowing = goesWrong();
  return nullptr;
}

}  // namespace orlu::fuzz
