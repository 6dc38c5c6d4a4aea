// A Java value as text.
#pragma once

#include <jni.h>

#include <sstream>
#include <string>

#include "fixtures.h"

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

}  // namespace orlu::test
