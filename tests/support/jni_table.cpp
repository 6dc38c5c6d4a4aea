#include "jni_table.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "jni_functions.h"

namespace orlu::test {
namespace {

JniTable* gTable = nullptr;

}  // namespace

struct JniTableFunctions {
  // Replaces the JNI function `Member`: counts its calls, and forwards them or makes them fail.
  template <auto Member>
  struct Counted;

  template <typename Result, typename... Arguments,
            Result (JNICALL* JNINativeInterface_::*Member)(JNIEnv*, Arguments...)>
  struct Counted<Member> {
    static inline const char* name = nullptr;

    static Result JNICALL call(JNIEnv* env, Arguments... arguments) {
      const auto function = gTable->mFunctions.original().*Member;
      if (gTable->mInsideVm) return function(env, arguments...);
      // While the VM executes a call, further calls through the table come from the VM's own native methods.
      const struct Inside {
        Inside() { gTable->mInsideVm = true; }
        ~Inside() { gTable->mInsideVm = false; }
      } inside;
      ++gTable->mCalls[name];
      if (gTable->mFailing.count(name) != 0) {
        env->ThrowNew(env->FindClass("java/lang/OutOfMemoryError"), "planted by the test");
        return Result();
      }
      using Type = Result(Arguments...);
      if constexpr (std::is_same_v<Type, void(jobject)>) {
        const bool isLocal = std::strcmp(name, "DeleteLocalRef") == 0;
        if (isLocal && (arguments && ...)) --gTable->mLocalReferences;
        return function(env, arguments...);
      } else if constexpr (std::is_void_v<Result>) {
        return function(env, arguments...);
      } else {
        Result result = Result();
        if constexpr (std::is_same_v<Type, jclass(const char*)>) {
          result = gTable->findClass(arguments...);
        } else if constexpr (std::is_same_v<Result, jmethodID> || std::is_same_v<Result, jfieldID>) {
          result = gTable->findMember(function, arguments...);
        } else {
          result = function(env, arguments...);
        }
        if constexpr (std::is_convertible_v<Result, jobject>) gTable->noteObject(name, result);
        if (std::strcmp(name, "PushLocalFrame") == 0) gTable->mFrames.push_back(gTable->mLocalReferences);
        return result;
      }
    }
  };

  template <auto Member>
  static void count(JniTable& table, const char* name) {
    Counted<Member>::name = name;
    table.mFunctions.table().*Member = Counted<Member>::call;
  }
};

JniTable::JniTable(JNIEnv* env) : mFunctions(env) {
  gTable = this;
#define X(function) JniTableFunctions::count<&JNINativeInterface_::function>(*this, #function);
  ORLU_JNI_METHODS
  ORLU_JNI_PLAIN
#undef X
}

JniTable::~JniTable() {
  gTable = nullptr;
}

void JniTable::hide(const std::string& name) {
  mHidden.insert(name);
}

void JniTable::fail(const std::string& function) {
  mFailing.insert(function);
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
  mLookups.emplace_back(name);
  // For a hidden class, looks up a nonexistent class instead, so that the VM throws its usual exception.
  return mFunctions.env()->FindClass(mHidden.count(name) != 0 ? "no/such/Class" : name);
}

template <typename Id>
Id JniTable::findMember(Id (*original)(JNIEnv*, jclass, const char*, const char*), jclass clazz,
                        const char* name, const char* signature) {
  const std::string member = nameOf(clazz) + "." + name;
  mLookups.push_back(member + " " + signature);
  if (clazz == nullptr) return nullptr;
  const bool hidden = mHidden.count(member) != 0 || mHidden.count(mLookups.back()) != 0;
  return original(mFunctions.env(), clazz, hidden ? "noSuchMember" : name, hidden ? "()V" : signature);
}

// Counts local references. Every function that returns an object creates one, except NewGlobalRef().
// PopLocalFrame() frees the local references of its frame.
void JniTable::noteObject(const std::string& function, jobject object) {
  if (function == "PopLocalFrame" && !mFrames.empty()) {
    mLocalReferences = mFrames.back();
    mFrames.pop_back();
  } else if (object != nullptr && function != "NewGlobalRef") {
    ++mLocalReferences;
  }
}

// Returns the class's name in JNI's form, such as "java/util/List" or "[I".
std::string JniTable::nameOf(jclass clazz) {
  if (clazz == nullptr) return "null";
  JNIEnv* const env = mFunctions.env();
  const jclass meta = env->GetObjectClass(clazz);
  const jmethodID getName = env->GetMethodID(meta, "getName", "()Ljava/lang/String;");
  const auto name = static_cast<jstring>(env->CallObjectMethod(clazz, getName));
  env->ExceptionClear();
  const char* chars = env->GetStringUTFChars(name, nullptr);
  std::string text(chars);
  env->ReleaseStringUTFChars(name, chars);
  env->DeleteLocalRef(name);
  env->DeleteLocalRef(meta);
  std::replace(text.begin(), text.end(), '.', '/');
  return text;
}

}  // namespace orlu::test
