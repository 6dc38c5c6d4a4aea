// The one Java VM of a test program, with -Xcheck:jni on. Made before the first test, checked after the last.
#pragma once

#include <jni.h>

namespace orlu::test {

// Starts the VM with the host's classes. False, with a line on standard error, when it can't be started.
bool startJvm();
// Prints what the VM had to say about JNI calls; true when that is nothing.
bool jvmIsQuiet();

JavaVM* javaVm();
// The environment of the main thread, on which the tests run.
JNIEnv* env();

}  // namespace orlu::test
