#include "java_thread_state.h"

#include <dlfcn.h>
#include <jni.h>

namespace orlu::probe {

JavaThreadState javaThreadState() {
  // Looked up by name, because the probe must also load without a VM.
  using GetCreatedJavaVms = jint(JNICALL*)(JavaVM**, jsize, jsize*);
  static const auto getCreatedVms =
      reinterpret_cast<GetCreatedJavaVms>(dlsym(RTLD_DEFAULT, "JNI_GetCreatedJavaVMs"));
  JavaVM* vm = nullptr;
  jsize count = 0;
  if (getCreatedVms == nullptr || getCreatedVms(&vm, 1, &count) != JNI_OK || count < 1) {
    return JavaThreadState::kNoVm;
  }
  void* env = nullptr;
  return vm->GetEnv(&env, JNI_VERSION_1_4) == JNI_OK ? JavaThreadState::kAttached
                                                     : JavaThreadState::kNotAttached;
}

}  // namespace orlu::probe
