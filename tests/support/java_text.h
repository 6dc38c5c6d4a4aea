// Formats Java values as text, and records the values that native code puts into compositions.
#pragma once

#include <jni.h>

#include <cstdarg>
#include <string>
#include <utility>
#include <vector>

#include "fixtures.h"
#include "scoped_jni_functions.h"

namespace orlu::test {

inline std::string toStringOf(jobject value) {
  return stringOf(callObject(value, "toString", "()Ljava/lang/String;"));
}

// Returns the value's class and contents: "Integer 5", "float[] 1.5 2.0", "Integer[] 1 2".
inline std::string describeJava(jobject value) {
  if (value == nullptr) return "null";
  jobject clazz = callObject(value, "getClass", "()Ljava/lang/Class;");
  std::string text = stringOf(callObject(clazz, "getSimpleName", "()Ljava/lang/String;"));
  if (text.find('[') == std::string::npos) return text + ' ' + toStringOf(value);
  for (jsize i = 0; i < env()->GetArrayLength(static_cast<jarray>(value)); ++i) {
    jobject element =
        callStatic("java/lang/reflect/Array", "get", "(Ljava/lang/Object;I)Ljava/lang/Object;", value, i);
    text += ' ' + toStringOf(element);
  }
  return text;
}

// While it exists, records every call of putMetadata() on the given compositions, in order, even if a later
// call overwrites the value. Each line of text() has the index of the composition, the key and the value.
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
    const LocalFrame frame;
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
