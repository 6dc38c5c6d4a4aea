// The program's Java VM. A process can only have one.
#pragma once

#include <jni.h>

#include <string>
#include <vector>

namespace orlu::test {

// Starts the VM with these options and jars. Each jar is an absolute path or a name that jarPath() accepts.
// On failure prints a line to standard error and returns false.
bool startJvm(const std::vector<std::string>& jars, std::vector<std::string> options);

// Like startJvm(), but with -Xcheck:jni. The VM's output goes to a file that jvmIsQuiet() reads.
bool startCheckedJvm(const std::vector<std::string>& jars);
// Prints the VM's complaints about JNI calls and deletes the file of the VM's output. Returns true if there
// are no complaints.
bool jvmIsQuiet();

JavaVM* javaVm();
// Returns the calling thread's environment; null if the thread neither started the VM nor has an
// AttachedThread.
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
