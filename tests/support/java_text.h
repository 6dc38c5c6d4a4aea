// A Java value as text, and what is put into compositions.
#pragma once

#include <jni.h>

#include <cstdarg>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "fixtures.h"
#include "scoped_jni_functions.h"

namespace orlu::test {

inline std::string toStringOf(jobject value) {
  return stringOf(callObject(value, "toString", "()Ljava/lang/String;"));
}

// A value by its class and contents: "Integer 5", "float[] 1.5 2", "Integer[] 1 2".
inline std::string describeJava(jobject value) {
  if (value == nullptr) return "null";
  jobject clazz = callObject(value, "getClass", "()Ljava/lang/Class;");
  const std::string name = stringOf(callObject(clazz, "getSimpleName", "()Ljava/lang/String;"));
  std::ostringstream text;
  text.precision(17);
  text << name;
  const auto list = [&](const auto& numbers) {
    for (const auto number : numbers) text << ' ' << number;
  };
  if (name == "int[]") {
    list(intsOf(value));
  } else if (name == "long[]") {
    list(longsOf(value));
  } else if (name == "float[]") {
    list(floatsOf(value));
  } else if (name == "double[]") {
    list(doublesOf(value));
  } else if (name.find('[') == std::string::npos) {
    text << ' ' << toStringOf(value);
  } else {
    const auto array = static_cast<jobjectArray>(value);
    for (jsize i = 0; i < env()->GetArrayLength(array); ++i) {
      text << ' ' << toStringOf(env()->GetObjectArrayElement(array, i));
    }
  }
  return text.str();
}

// Every putMetadata() during its life, in order, those that a later one overwrites too: one line each, with
// the index of the composition, the key and the value.
class PutRecorder {
public:
  explicit PutRecorder(std::vector<jobject> compositions)
      : mCompositions(std::move(compositions)), mFunctions(env()) {
    gRecorder = this;
    mFunctions.table().CallVoidMethodV = call;
  }
  PutRecorder(const PutRecorder&) = delete;
  PutRecorder& operator=(const PutRecorder&) = delete;

  const std::string& text() const { return mText; }

private:
  static void JNICALL call(JNIEnv* jni, jobject object, jmethodID method, va_list arguments) {
    va_list copy;
    va_copy(copy, arguments);
    gRecorder->record(object, copy);
    va_end(copy);
    gRecorder->mFunctions.original().CallVoidMethodV(jni, object, method, arguments);
  }

  void record(jobject object, va_list arguments) {
    for (size_t i = 0; i < mCompositions.size(); ++i) {
      if (!env()->IsSameObject(object, mCompositions[i])) continue;
      jobject key = va_arg(arguments, jobject);
      jobject value = va_arg(arguments, jobject);
      mText += std::to_string(i) + ' ' + stringOf(key) + ' ' + describeJava(value) + '\n';
    }
  }

  static inline PutRecorder* gRecorder = nullptr;
  std::vector<jobject> mCompositions;
  ScopedJniFunctions mFunctions;
  std::string mText;
};

}  // namespace orlu::test
