// libandroid_runtime.so: the natives of android.os.SystemProperties.

#include <cutils/properties.h>
#include <jni.h>

#include "java_object.h"

extern "C" JNIEXPORT void JNICALL Java_android_os_SystemProperties_nSet(JNIEnv* env, jclass, jstring key,
                                                                        jstring value) {
  const char* keyChars = env->GetStringUTFChars(key, nullptr);
  const char* valueChars = env->GetStringUTFChars(value, nullptr);
  const int status = property_set(keyChars, valueChars);
  env->ReleaseStringUTFChars(key, keyChars);
  env->ReleaseStringUTFChars(value, valueChars);
  if (status != 0)
    orlu::host::throwNew(env, "java/lang/IllegalArgumentException", "value of system property too long");
}

extern "C" JNIEXPORT jstring JNICALL Java_android_os_SystemProperties_nGet(JNIEnv* env, jclass, jstring key) {
  char value[PROPERTY_VALUE_MAX] = {};
  const char* keyChars = env->GetStringUTFChars(key, nullptr);
  property_get(keyChars, value, nullptr);
  env->ReleaseStringUTFChars(key, keyChars);
  return env->NewStringUTF(value);
}
