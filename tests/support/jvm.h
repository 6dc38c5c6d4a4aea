// The one Java VM of a program.
#pragma once

#include <jni.h>

#include <string>
#include <vector>

namespace orlu::test {

// Starts the VM with these options and a class path of these jars, given by name (see jarPath()) or, when
// they are not ours, by an absolute path. False, with a line on standard error, when it can't be started.
bool startJvm(const std::vector<std::string>& jars, std::vector<std::string> options);

// The same with -Xcheck:jni on. The VM's output goes to a file that jvmIsQuiet() reads.
bool startCheckedJvm(const std::vector<std::string>& jars);
// Prints what the VM complained of about JNI calls, and removes the file. True when there was nothing.
bool jvmIsQuiet();

JavaVM* javaVm();
// The environment of the calling thread: the one that started the VM, or one that holds an AttachedThread.
// Null on any other.
JNIEnv* env();

// Attaches a thread for the life of this object.
class AttachedThread {
public:
  AttachedThread();
  AttachedThread(const AttachedThread&) = delete;
  AttachedThread& operator=(const AttachedThread&) = delete;
  ~AttachedThread();
};

}  // namespace orlu::test
