#include "jvm.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "paths.h"

namespace orlu::test {
namespace {

JavaVM* gVm = nullptr;
thread_local JNIEnv* gEnv = nullptr;
std::string gVmOutput;

// Redirects descriptor 1, the VM's output, to a file. This program's output gets another descriptor.
bool splitOutput() {
  char path[] = "/tmp/orlu-vm-output-XXXXXX";
  const int file = mkstemp(path);
  const int terminal = dup(STDOUT_FILENO);
  if (file < 0 || terminal < 0) return false;
  std::fflush(stdout);
  dup2(file, STDOUT_FILENO);
  close(file);
  gVmOutput = path;
  stdout = fdopen(terminal, "w");
  return stdout != nullptr && setvbuf(stdout, nullptr, _IOLBF, 0) == 0;
}

bool isComplaint(const std::string& line) {
  return line.find("WARNING") != std::string::npos || line.find("in native method") != std::string::npos;
}

}  // namespace

bool startJvm(const std::vector<std::string>& jars, std::vector<std::string> options) {
  std::string classPath;
  for (const std::string& jar : jars) {
    classPath += (classPath.empty() ? "" : ":") + (jar[0] == '/' ? jar : jarPath(jar));
  }
  options.push_back("-Djava.awt.headless=true");
  options.push_back("-Djava.class.path=" + classPath);
  options.push_back("-Djava.library.path=" + libraryFolder());
  std::vector<JavaVMOption> vmOptions;
  for (std::string& option : options) vmOptions.push_back({option.data(), nullptr});
  JavaVMInitArgs arguments = {};
  arguments.version = JNI_VERSION_1_8;
  arguments.options = vmOptions.data();
  arguments.nOptions = static_cast<jint>(vmOptions.size());
  if (JNI_CreateJavaVM(&gVm, reinterpret_cast<void**>(&gEnv), &arguments) == JNI_OK) return true;
  std::fprintf(stderr, "the Java VM can't be started\n");
  return false;
}

bool startCheckedJvm(const std::vector<std::string>& jars) {
  if (splitOutput()) return startJvm(jars, {"-Xcheck:jni", "-Xmx256m"});
  std::perror("can't redirect the VM's output");
  return false;
}

bool jvmIsQuiet() {
  std::ifstream output(gVmOutput);
  bool quiet = true;
  int following = 0;  // lines still to print; the lines after a complaint show its origin
  for (std::string line; std::getline(output, line);) {
    if (isComplaint(line)) {
      quiet = false;
      following = 12;
    }
    if (following-- > 0) std::fprintf(stderr, "VM: %s\n", line.c_str());
  }
  std::remove(gVmOutput.c_str());
  return quiet;
}

JavaVM* javaVm() {
  return gVm;
}

JNIEnv* env() {
  return gEnv;
}

AttachedThread::AttachedThread() {
  if (gVm->AttachCurrentThread(reinterpret_cast<void**>(&gEnv), nullptr) != JNI_OK) std::abort();
}

AttachedThread::~AttachedThread() {
  gEnv = nullptr;
  gVm->DetachCurrentThread();
}

}  // namespace orlu::test
