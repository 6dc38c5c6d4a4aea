#include "jvm.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace orlu::test {
namespace {

JavaVM* gVm = nullptr;
JNIEnv* gEnv = nullptr;
std::string gVmOutput;

// The VM writes to descriptor 1. It gets a file of its own, and this program's standard output another
// descriptor.
bool splitOutput() {
  char path[] = "/tmp/orlu-vm-output-XXXXXX";
  const int file = mkstemp(path);
  const int terminal = dup(STDOUT_FILENO);
  if (file < 0 || terminal < 0) return false;
  std::fflush(stdout);
  dup2(file, STDOUT_FILENO);
  close(file);
  stdout = fdopen(terminal, "w");
  setvbuf(stdout, nullptr, _IOLBF, 0);
  gVmOutput = path;
  return stdout != nullptr;
}

bool isComplaint(const std::string& line) {
  return line.find("WARNING") != std::string::npos || line.find("in native method") != std::string::npos;
}

}  // namespace

bool startJvm() {
  if (!splitOutput()) return false;
  std::vector<std::string> texts = {"-Xcheck:jni", "-Xmx256m", "-Djava.awt.headless=true",
                                    "-Djava.class.path=" ORLU_TEST_CLASS_PATH,
                                    "-Djava.library.path=" ORLU_TEST_LIBRARY_PATH};
  std::vector<JavaVMOption> options;
  for (std::string& text : texts) options.push_back({text.data(), nullptr});
  JavaVMInitArgs arguments = {};
  arguments.version = JNI_VERSION_1_8;
  arguments.options = options.data();
  arguments.nOptions = static_cast<jint>(options.size());
  if (JNI_CreateJavaVM(&gVm, reinterpret_cast<void**>(&gEnv), &arguments) == JNI_OK) return true;
  std::fprintf(stderr, "the Java VM can't be started\n");
  return false;
}

bool jvmIsQuiet() {
  std::ifstream output(gVmOutput);
  bool quiet = true;
  int following = 0;  // lines behind a complaint tell where it came from
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

}  // namespace orlu::test
