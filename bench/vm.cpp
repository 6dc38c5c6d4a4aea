#include "vm.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace orlu::bench {
namespace {

JavaVM* gVm = nullptr;
thread_local JNIEnv* gEnv = nullptr;

}  // namespace

bool startVm() {
  std::vector<std::string> texts = {"-Xms256m",
                                    "-Xmx256m",
                                    "-XX:+AlwaysPreTouch",
                                    "-XX:+UseSerialGC",
                                    "-XX:-UsePerfData",
                                    "-Djava.awt.headless=true",
                                    "-Djava.class.path=" ORLU_BENCH_CLASS_PATH,
                                    "-Djava.library.path=" ORLU_BENCH_LIBRARY_PATH};
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

AttachedThread::AttachedThread() {
  if (gVm->AttachCurrentThread(reinterpret_cast<void**>(&gEnv), nullptr) != JNI_OK) std::abort();
}

AttachedThread::~AttachedThread() {
  gEnv = nullptr;
  gVm->DetachCurrentThread();
}

}  // namespace orlu::bench

// The fixtures make their objects with these.
namespace orlu::test {

JavaVM* javaVm() {
  return bench::gVm;
}

JNIEnv* env() {
  return bench::gEnv;
}

}  // namespace orlu::test
