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
