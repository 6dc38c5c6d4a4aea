#include "jni_table.h"

#include <algorithm>
#include <type_traits>

#include "jni_functions.h"

namespace orlu::test {
namespace {

JniTable* gTable = nullptr;

}  // namespace

struct JniTableFunctions {
  // While the VM answers a call, what comes through the table is its own native methods' doing.
  struct InsideVm {
    InsideVm() { gTable->mInsideVm = true; }
    ~InsideVm() { gTable->mInsideVm = false; }
  };

  // Counts a call of `Member` and passes it on, unless it is to fail. A function that answers an object makes
  // a local reference.
  template <auto Member>
  struct Counted;

  template <typename Result, typename... Arguments,
            Result (JNICALL* JNINativeInterface_::*Member)(JNIEnv*, Arguments...)>
  struct Counted<Member> {
    static inline const char* name = nullptr;

    static Result JNICALL call(JNIEnv* env, Arguments... arguments) {
      if (gTable->mInsideVm) return (gTable->mFunctions.original().*Member)(env, arguments...);
      ++gTable->mCalls[name];
      if (gTable->mFailing.count(name) != 0) {
        gTable->throwOutOfMemory();
        return Result();
      }
      const InsideVm inside;
      if constexpr (std::is_convertible_v<Result, jobject>) {
        const Result result = (gTable->mFunctions.original().*Member)(env, arguments...);
        if (result != nullptr) ++gTable->mLocalReferences;
        return result;
      } else {
        return (gTable->mFunctions.original().*Member)(env, arguments...);
      }
    }
  };

  template <auto Member>
  static void count(JniTable& table, const char* name) {
    Counted<Member>::name = name;
    table.mFunctions.table().*Member = Counted<Member>::call;
  }

  static jclass JNICALL findClass(JNIEnv*, const char* name) { return gTable->findClass(name); }
  static jmethodID JNICALL getMethod(JNIEnv*, jclass clazz, const char* name, const char* signature) {
    return gTable->findMember<jmethodID>(clazz, name, signature, gTable->mFunctions.original().GetMethodID);
  }
  static jmethodID JNICALL getStaticMethod(JNIEnv*, jclass clazz, const char* name, const char* signature) {
    return gTable->findMember<jmethodID>(clazz, name, signature,
                                         gTable->mFunctions.original().GetStaticMethodID);
  }
  static jfieldID JNICALL getField(JNIEnv*, jclass clazz, const char* name, const char* signature) {
    return gTable->findMember<jfieldID>(clazz, name, signature, gTable->mFunctions.original().GetFieldID);
  }
  static jobject JNICALL newGlobalRef(JNIEnv* env, jobject object) {
    if (!gTable->mInsideVm) ++gTable->mCalls["NewGlobalRef"];
    return gTable->mFunctions.original().NewGlobalRef(env, object);
  }
  static void JNICALL deleteLocalRef(JNIEnv* env, jobject object) {
    if (!gTable->mInsideVm) {
      ++gTable->mCalls["DeleteLocalRef"];
      if (object != nullptr) --gTable->mLocalReferences;
    }
    gTable->mFunctions.original().DeleteLocalRef(env, object);
  }
  // References that are made in a frame end with it.
  static jint JNICALL pushLocalFrame(JNIEnv* env, jint capacity) {
    if (!gTable->mInsideVm) gTable->mFrames.push_back(gTable->mLocalReferences);
    return gTable->mFunctions.original().PushLocalFrame(env, capacity);
  }
  static jobject JNICALL popLocalFrame(JNIEnv* env, jobject result) {
    if (!gTable->mInsideVm && !gTable->mFrames.empty()) {
      gTable->mLocalReferences = gTable->mFrames.back();
      gTable->mFrames.pop_back();
    }
    return gTable->mFunctions.original().PopLocalFrame(env, result);
  }
};

JniTable::JniTable(JNIEnv* env) : mFunctions(env) {
  gTable = this;
  JNINativeInterface_& table = mFunctions.table();
#define X(function) JniTableFunctions::count<&JNINativeInterface_::function>(*this, #function);
  ORLU_JNI_METHODS
  ORLU_JNI_PLAIN
#undef X
  table.FindClass = JniTableFunctions::findClass;
  table.GetMethodID = JniTableFunctions::getMethod;
  table.GetStaticMethodID = JniTableFunctions::getStaticMethod;
  table.GetFieldID = JniTableFunctions::getField;
  table.DeleteLocalRef = JniTableFunctions::deleteLocalRef;
  table.NewGlobalRef = JniTableFunctions::newGlobalRef;
  table.PushLocalFrame = JniTableFunctions::pushLocalFrame;
  table.PopLocalFrame = JniTableFunctions::popLocalFrame;
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

void JniTable::throwOutOfMemory() {
  const jclass error = mFunctions.original().FindClass(mFunctions.env(), "java/lang/OutOfMemoryError");
  mFunctions.original().ThrowNew(mFunctions.env(), error, "as the test asks");
  mFunctions.original().DeleteLocalRef(mFunctions.env(), error);
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
  if (mInsideVm) return mFunctions.original().FindClass(mFunctions.env(), name);
  const JniTableFunctions::InsideVm inside;
  ++mCalls["FindClass"];
  mLookups.emplace_back(name);
  // A name that no class has leaves the exception that the VM leaves.
  jclass clazz =
      mFunctions.original().FindClass(mFunctions.env(), mHidden.count(name) != 0 ? "no/such/Class" : name);
  if (clazz != nullptr) ++mLocalReferences;
  return clazz;
}

template <typename Id, typename Original>
Id JniTable::findMember(jclass clazz, const char* name, const char* signature, Original original) {
  if (mInsideVm) return original(mFunctions.env(), clazz, name, signature);
  const JniTableFunctions::InsideVm inside;
  ++mCalls["lookups of members"];
  const std::string member = nameOf(clazz) + "." + name;
  mLookups.push_back(member + " " + signature);
  if (clazz == nullptr) return nullptr;
  const bool hidden = mHidden.count(member) != 0 || mHidden.count(member + " " + signature) != 0;
  return original(mFunctions.env(), clazz, hidden ? "noSuchMember" : name, hidden ? "()V" : signature);
}

// As JNI names it: "java/util/List", "[I".
std::string JniTable::nameOf(jclass clazz) {
  if (clazz == nullptr) return "null";
  const jclass meta = mFunctions.original().GetObjectClass(mFunctions.env(), clazz);
  const jmethodID getName =
      mFunctions.original().GetMethodID(mFunctions.env(), meta, "getName", "()Ljava/lang/String;");
  const auto name =
      static_cast<jstring>(mFunctions.original().CallObjectMethod(mFunctions.env(), clazz, getName));
  mFunctions.original().ExceptionClear(mFunctions.env());
  const char* chars = mFunctions.original().GetStringUTFChars(mFunctions.env(), name, nullptr);
  std::string text(chars);
  mFunctions.original().ReleaseStringUTFChars(mFunctions.env(), name, chars);
  mFunctions.original().DeleteLocalRef(mFunctions.env(), name);
  mFunctions.original().DeleteLocalRef(mFunctions.env(), meta);
  std::replace(text.begin(), text.end(), '.', '/');
  return text;
}

}  // namespace orlu::test
