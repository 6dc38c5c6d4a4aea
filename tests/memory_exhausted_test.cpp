// Makes each allocation of this library fail, one at a time. A native method may then fail, but must not
// throw into the VM or leak.

#include <android/log.h>
#include <dlfcn.h>

#include <cstdlib>
#include <new>
#include <utility>

#include "request_scene.h"

extern "C" char __executable_start;
extern "C" char etext;

namespace {

// Number of this thread's allocations before the failing one; negative: none fails.
thread_local int gLeft = -1;

// Allocations of the algorithm library and of the C++ library are not counted.
bool isCounted(const void* caller) {
  return gLeft >= 0 && caller >= &__executable_start && caller < &etext;
}

}  // namespace

__attribute__((noinline)) void* operator new(std::size_t size) {
  if (isCounted(__builtin_return_address(0)) && gLeft-- == 0) throw std::bad_alloc();
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) std::abort();
  return memory;
}
__attribute__((noinline)) void operator delete(void* memory) noexcept {
  std::free(memory);
}
__attribute__((noinline)) void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}

#define ORLU_NATIVE(name) Java_com_orlu_orlu3rdalgoservice_Orlu3rdAlgoService_##name
extern "C" {
jlong ORLU_NATIVE(createNativeClient)(JNIEnv*, jobject, jobject);
jint ORLU_NATIVE(processImage)(JNIEnv*, jobject, jlong, jobject, jobject, jobject, jobject);
jint ORLU_NATIVE(processImageUpdateResult)(JNIEnv*, jobject, jlong, jobject, jobject, jobject, jobject);
}

namespace orlu {
namespace {

using test::env;

class MemoryExhaustedTest : public test::RequestScene {
protected:
  MemoryExhaustedTest() {
    create();
    // Removes the observer and the log, which allocate on this thread.
    const auto setScript = reinterpret_cast<standin::SetScriptFunction>(
        dlsym(dlopen("liborlu.vac.interface.so", RTLD_NOW), "AlgoStandInSetScript"));
    setScript(nullptr);
    __android_log_set_logger([](const __android_log_message*) {});
  }

  // Calls the native method repeatedly: in the first call, the first allocation fails, in the second call the
  // second, and so on, until no allocation fails in a call. Returns the number of failed allocations.
  template <typename Native>
  static int failEach(const Native& native) {
    for (int failed = 0;; ++failed) {
      const test::LocalFrame frame;
      gLeft = failed;
      native();
      const bool isOver = std::exchange(gLeft, -1) >= 0;
      EXPECT_FALSE(env()->ExceptionCheck());
      EXPECT_EQ(0, test::Algo::counts().cameraBlocks);
      if (isOver || HasFailure()) return failed;
    }
  }
  template <typename Native>
  int failEachImage(Native native, int isFullAsync) {
    test::putKey(mCompositions[0], "isFullAsync", test::javaInt(isFullAsync));
    const jobject request = test::newRequest(kReqId, "capture");
    const jobject compositions = test::javaList(mCompositions);
    return failEach([&] { native(env(), nullptr, mInst, request, mInputs, mOutputs, compositions); });
  }
};

TEST_F(MemoryExhaustedTest, FailsOneCallAlone) {
  EXPECT_LT(15, failEachImage(ORLU_NATIVE(processImage), 1));
  EXPECT_TRUE(test::Algo::waitIdle(60'000));
  const uint64_t newest = newestRequest();
  for (uint64_t id = newest - 19; id < newest; ++id) updateResult(id);
  test::putKey(mCompositions[0], "nativeRequestAddr", test::javaLong(static_cast<int64_t>(newest)));
  EXPECT_LT(5, failEachImage(ORLU_NATIVE(processImageUpdateResult), 1));
  EXPECT_FALSE(isKnown(newest));

  test::putKey(mCompositions[0], "orlu.control.image.score", test::javaDoubles({1'000'000.0}));
  EXPECT_LT(15, failEachImage(ORLU_NATIVE(processImage), 0));
  EXPECT_LT(2, failEach([] {
              RequestProcessor::destroy(env(), ORLU_NATIVE(createNativeClient)(env(), nullptr, nullptr));
            }));
}

}  // namespace
}  // namespace orlu
