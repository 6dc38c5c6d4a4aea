// The program's Java VM. A process can only have one.
#pragma once

#include <jni.h>

#include <string>
#include <vector>

namespace orlu::test {

// Starts the VM with these options and jars. A jar is a name as for jarPath(), or an absolute path. On
// failure prints a line to standard error and returns false.
bool startJvm(const std::vector<std::string>& jars, std::vector<std::string> options);

// Like startJvm(), but with -Xcheck:jni. The VM's output goes to a file that jvmIsQuiet() reads.
bool startCheckedJvm(const std::vector<std::string>& jars);
// Prints the VM's complaints about JNI calls and deletes the file. Returns true if there are none.
bool jvmIsQuiet();

JavaVM* javaVm();
// Returns the environment of the calling thread if it started the VM or has an AttachedThread, else null.
JNIEnv* env();

// Attaches the calling thread while this object lives.
class AttachedThread {
public:
  AttachedThread();
  AttachedThread(const AttachedThread&) = delete;
  AttachedThread& operator=(const AttachedThread&) = delete;
  ~AttachedThread();
};

}  // namespace orlu::test
