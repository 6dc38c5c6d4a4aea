// The one check with a Java VM in the process.
#include <dlfcn.h>
#include <jni.h>
#include <limits.h>
#include <pthread.h>
#include <sys/stat.h>

#include <atomic>
#include <map>
#include <set>

#include "checks.h"
#include "scene.h"

namespace orlu::conform {
namespace {

JavaVM* gVm = nullptr;

bool isAttached() {
  void* env = nullptr;
  return gVm->GetEnv(&env, JNI_VERSION_1_4) == JNI_OK;
}

// Opened at run time, so that no other check has anything of a VM in its process.
bool startVm() {
  step("starting a Java VM");
  void* const library = dlopen(options().jvm.c_str(), RTLD_NOW | RTLD_GLOBAL);
  using Create = jint(JNICALL*)(JavaVM**, void**, void*);
  const auto create =
      library == nullptr ? nullptr : reinterpret_cast<Create>(dlsym(library, "JNI_CreateJavaVM"));
  if (create == nullptr) {
    ADD_FAILURE() << "there is no Java VM: " << dlerror();
    return false;
  }
  // Its own report of a crash would be left in the caller's folder.
  char names[][40] = {"-Xmx64m", "-XX:+UseSerialGC", "-XX:TieredStopAtLevel=1", "-XX:ErrorFile=/dev/null"};
  JavaVMOption all[std::size(names)] = {};
  for (size_t i = 0; i < std::size(names); ++i) all[i].optionString = names[i];
  JavaVMInitArgs arguments = {JNI_VERSION_1_8, static_cast<jint>(std::size(names)), all, JNI_FALSE};
  void* env = nullptr;
  const bool started = create(&gVm, &env, &arguments) == JNI_OK;
  HOLDS(started) << "the Java VM can't be started";
  return started;
}

std::string inspectThread() {
  JNIEnv* env = nullptr;
  if (gVm->GetEnv(reinterpret_cast<void**>(&env), JNI_VERSION_1_4) != JNI_OK || !env->ExceptionCheck())
    return "";
  env->ExceptionClear();
  return "leaves a Java exception on its thread";
}

// Threads that called back and then ended, attached or not. Told by a key whose destructor comes back as
// often as the threads' library allows, after all that the algorithm library may have put there.
std::atomic<int> gEndedAttached{0};
std::atomic<int> gEnded{0};
pthread_key_t gEndKey;

void onThreadEnd(void* rounds) {
  const auto round = reinterpret_cast<uintptr_t>(rounds);
  if (round < PTHREAD_DESTRUCTOR_ITERATIONS) {
    pthread_setspecific(gEndKey, reinterpret_cast<void*>(round + 1));
    return;
  }
  ++gEnded;
  if (isAttached()) ++gEndedAttached;
}

struct Seen {
  std::atomic<int> unattached{0};
  std::mutex mutex;
  std::set<int64_t> threads;

  void note(const Message& message) {
    if (!isAttached()) ++unattached;
    pthread_setspecific(gEndKey, reinterpret_cast<void*>(uintptr_t{1}));
    const std::lock_guard<std::mutex> lock(mutex);
    threads.insert(message.tid);
  }
};

bool isAlive(int64_t tid) {
  struct stat status;
  return stat(("/proc/self/task/" + std::to_string(tid)).c_str(), &status) == 0;
}

size_t waitForEnds(const std::set<int64_t>& threads) {
  size_t alive = 0;
  for (int round = 0; round < 20; ++round) {
    alive = 0;
    for (int64_t tid : threads) alive += isAlive(tid) ? 1 : 0;
    if (alive == 0) break;
    std::this_thread::sleep_for(std::chrono::milliseconds(25));
  }
  return alive;
}

void judgeLightStream(const std::vector<Message>& messages) {
  size_t events = 0;
  for (const Message& message : messages) {
    if (message.name() != kLightStreamCallback) continue;
    ++events;
    HOLDS(message.payloadSize() >= sizeof(LightStreamEvent))
        << "a light-stream event of " << message.payloadSize() << " bytes, fewer than "
        << sizeof(LightStreamEvent);
    HOLDS(message.handles.empty() || !message.handles[0].empty())
        << "the first handle of a light-stream event has no integer";
  }
  note(events == 0 ? "light stream is not offered" : std::to_string(events) + " light-stream events");
}

}  // namespace

void checkJava() {
#ifdef __SANITIZE_THREAD__
  constexpr bool kSeesTheVm = true;  // and reports its threads, which are not compiled for it
#else
  constexpr bool kSeesTheVm = false;
#endif
  if (kSeesTheVm) GTEST_SKIP() << "ThreadSanitizer and a Java VM don't go together";
  // The VM's threads and memory go with the process; it is not taken down in order.
  endAtOnce();
  if (!startVm()) return;
  OPEN_LIBRARY(library);
  library->observer().inspectThread = inspectThread;
  pthread_key_create(&gEndKey, onThreadEnd);
  Seen seen;
  {
    Scene scene;
    const std::thread::id self = std::this_thread::get_id();
    scene.inbox.onCallback([&](const Message& message) {
      if (message.thread != self) seen.note(message);
    });
    scene.run(1);
    scene.run(2, {"night"});
    scene.run(3, {"lightstream"});
    judgeLightStream(scene.inbox.messages());
  }
  const size_t alive = waitForEnds(seen.threads);
  HOLDS(seen.unattached == 0)
      << seen.unattached
      << " callbacks came from threads that the Java VM does not know; for full-async "
         "requests and light-stream events they are lost";
  HOLDS(gEndedAttached == 0) << gEndedAttached << " of " << gEnded
                             << " threads that called back ended without being detached from the Java VM";
  for (const std::string& thrown : library->observer().thrown()) ADD_FAILURE() << thrown;
  note(std::to_string(seen.threads.size()) + " threads called back, " + std::to_string(alive) + " live on");
}

}  // namespace orlu::conform
