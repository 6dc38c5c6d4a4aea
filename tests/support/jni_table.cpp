#include "jni_table.h"

#include <algorithm>
#include <type_traits>

namespace orlu::test {
namespace {

JniTable* gTable = nullptr;

}  // namespace

struct JniTableFunctions {
  // Counts a call of `Member` and passes it on, unless it is to fail. A function that answers an object makes
  // a local reference.
  template <auto Member>
  struct Counted;

  template <typename Result, typename... Arguments,
            Result (JNICALL* JNINativeInterface_::*Member)(JNIEnv*, Arguments...)>
  struct Counted<Member> {
    static inline const char* name = nullptr;

    static Result JNICALL call(JNIEnv* env, Arguments... arguments) {
      ++gTable->mCalls[name];
      if (gTable->mFailing.count(name) != 0) {
        gTable->throwOutOfMemory();
        return Result();
      }
      if constexpr (std::is_convertible_v<Result, jobject>) {
        const Result result = (gTable->mOriginal->*Member)(env, arguments...);
        if (result != nullptr) ++gTable->mLocalReferences;
        return result;
      } else {
        return (gTable->mOriginal->*Member)(env, arguments...);
      }
    }
  };

  template <auto Member>
  static void count(JniTable& table, const char* name) {
    Counted<Member>::name = name;
    table.mTable.*Member = Counted<Member>::call;
  }

  static jclass JNICALL findClass(JNIEnv*, const char* name) { return gTable->findClass(name); }
  static jmethodID JNICALL getMethod(JNIEnv*, jclass clazz, const char* name, const char* signature) {
    return gTable->findMember<jmethodID>(clazz, name, signature, gTable->mOriginal->GetMethodID);
  }
  static jmethodID JNICALL getStaticMethod(JNIEnv*, jclass clazz, const char* name, const char* signature) {
    return gTable->findMember<jmethodID>(clazz, name, signature, gTable->mOriginal->GetStaticMethodID);
  }
  static jfieldID JNICALL getField(JNIEnv*, jclass clazz, const char* name, const char* signature) {
    return gTable->findMember<jfieldID>(clazz, name, signature, gTable->mOriginal->GetFieldID);
  }
  static jobject JNICALL newGlobalRef(JNIEnv* env, jobject object) {
    ++gTable->mCalls["NewGlobalRef"];
    return gTable->mOriginal->NewGlobalRef(env, object);
  }
  static void JNICALL deleteLocalRef(JNIEnv* env, jobject object) {
    ++gTable->mCalls["DeleteLocalRef"];
    if (object != nullptr) --gTable->mLocalReferences;
    gTable->mOriginal->DeleteLocalRef(env, object);
  }
};

#define COUNT(function) JniTableFunctions::count<&JNINativeInterface_::function>(*this, #function)

JniTable::JniTable(JNIEnv* env) : mEnv(env), mOriginal(env->functions), mTable(*env->functions) {
  gTable = this;
  mTable.FindClass = JniTableFunctions::findClass;
  mTable.GetMethodID = JniTableFunctions::getMethod;
  mTable.GetStaticMethodID = JniTableFunctions::getStaticMethod;
  mTable.GetFieldID = JniTableFunctions::getField;
  mTable.DeleteLocalRef = JniTableFunctions::deleteLocalRef;
  COUNT(CallObjectMethodV);
  COUNT(CallStaticObjectMethodV);
  COUNT(CallIntMethodV);
  COUNT(CallLongMethodV);
  COUNT(CallFloatMethodV);
  COUNT(CallVoidMethodV);
  COUNT(CallStaticVoidMethodV);
  COUNT(NewObjectV);
  COUNT(NewStringUTF);
  COUNT(NewIntArray);
  COUNT(NewLongArray);
  COUNT(NewFloatArray);
  COUNT(NewDoubleArray);
  COUNT(GetObjectClass);
  COUNT(GetObjectField);
  COUNT(GetObjectArrayElement);
  COUNT(GetIntField);
  COUNT(IsInstanceOf);
  COUNT(GetStringUTFChars);
  COUNT(ReleaseStringUTFChars);
  COUNT(GetByteArrayElements);
  COUNT(GetIntArrayElements);
  COUNT(GetLongArrayElements);
  COUNT(GetFloatArrayElements);
  COUNT(GetDoubleArrayElements);
  COUNT(ReleaseByteArrayElements);
  COUNT(ReleaseIntArrayElements);
  COUNT(ReleaseLongArrayElements);
  COUNT(ReleaseFloatArrayElements);
  COUNT(ReleaseDoubleArrayElements);
  COUNT(DeleteGlobalRef);
  mTable.NewGlobalRef = JniTableFunctions::newGlobalRef;
  env->functions = &mTable;
}

JniTable::~JniTable() {
  mEnv->functions = mOriginal;
  gTable = nullptr;
}

void JniTable::hide(const std::string& name) {
  mHidden.insert(name);
}

void JniTable::fail(const std::string& function) {
  mFailing.insert(function);
}

void JniTable::throwOutOfMemory() {
  const jclass error = mOriginal->FindClass(mEnv, "java/lang/OutOfMemoryError");
  mOriginal->ThrowNew(mEnv, error, "as the test asks");
  mOriginal->DeleteLocalRef(mEnv, error);
}

int JniTable::heldArrays() const {
  int held = 0;
  for (const char* type : {"Byte", "Int", "Long", "Float", "Double"}) {
    const std::string elements = std::string(type) + "ArrayElements";
    held += calls("Get" + elements) - calls("Release" + elements);
  }
  return held;
}

int JniTable::calls(const std::string& function) const {
  const auto found = mCalls.find(function);
  return found == mCalls.end() ? 0 : found->second;
}

jclass JniTable::findClass(const char* name) {
  ++mCalls["FindClass"];
  mLookups.emplace_back(name);
  // A name that no class has leaves the exception that the VM leaves.
  jclass clazz = mOriginal->FindClass(mEnv, mHidden.count(name) != 0 ? "no/such/Class" : name);
  if (clazz != nullptr) ++mLocalReferences;
  return clazz;
}

template <typename Id, typename Original>
Id JniTable::findMember(jclass clazz, const char* name, const char* signature, Original original) {
  ++mCalls["lookups of members"];
  const std::string member = nameOf(clazz) + "." + name;
  mLookups.push_back(member + " " + signature);
  if (clazz == nullptr) return nullptr;
  const bool hidden = mHidden.count(member) != 0 || mHidden.count(member + " " + signature) != 0;
  return original(mEnv, clazz, hidden ? "noSuchMember" : name, hidden ? "()V" : signature);
}

// As JNI names it: "java/util/List", "[I".
std::string JniTable::nameOf(jclass clazz) {
  if (clazz == nullptr) return "null";
  const jclass meta = mOriginal->GetObjectClass(mEnv, clazz);
  const jmethodID getName = mOriginal->GetMethodID(mEnv, meta, "getName", "()Ljava/lang/String;");
  const auto name = static_cast<jstring>(mOriginal->CallObjectMethod(mEnv, clazz, getName));
  mOriginal->ExceptionClear(mEnv);
  const char* chars = mOriginal->GetStringUTFChars(mEnv, name, nullptr);
  std::string text(chars);
  mOriginal->ReleaseStringUTFChars(mEnv, name, chars);
  mOriginal->DeleteLocalRef(mEnv, name);
  mOriginal->DeleteLocalRef(mEnv, meta);
  std::replace(text.begin(), text.end(), '.', '/');
  return text;
}

}  // namespace orlu::test
