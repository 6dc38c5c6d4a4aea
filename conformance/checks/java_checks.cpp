// The only check that runs a Java VM in its process.
#include <dlfcn.h>
#include <jni.h>
#include <limits.h>
#include <pthread.h>
#include <sys/stat.h>

#include <atomic>
#include <cstdlib>
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

// GTEST_SKIP() only works in functions that return void.
bool skip(const std::string& reason) {
  [&] { GTEST_SKIP() << reason; }();
  return false;
}

using CreateVm = jint(JNICALL*)(JavaVM**, JNIEnv**, void*);

// Finds JNI_CreateJavaVM in the library options().jvm, or, if this is empty, in one of the usual libraries.
// Loads the library at run time, so that the other checks need no VM. On failure returns null and sets
// `reason`.
CreateVm findVm(std::string& reason) {
  std::vector<std::string> names = {options().jvm};
#ifdef __ANDROID__
  if (options().jvm.empty()) names = {"libnativehelper.so", "libart.so"};
#else
  const char* const home =
      std::getenv("JAVA_HOME");  // NOLINT(concurrency-mt-unsafe): no other thread exists yet
  if (options().jvm.empty()) names = {"libjvm.so"};
  if (options().jvm.empty() && home != nullptr) names.push_back(std::string(home) + "/lib/server/libjvm.so");
#endif
  for (const std::string& name : names) {
    void* const library = dlopen(name.c_str(), RTLD_NOW | RTLD_GLOBAL);
    void* const create = library == nullptr ? nullptr : dlsym(library, "JNI_CreateJavaVM");
    if (create == nullptr) {
      reason += (reason.empty() ? "" : "; ") + std::string(dlerror());
      continue;
    }
    // Newer versions of Android's library load the runtime only after JniInvocationInit().
    const auto newInvocation = reinterpret_cast<void* (*)()>(dlsym(library, "JniInvocationCreate"));
    const auto init = reinterpret_cast<bool (*)(void*, const char*)>(dlsym(library, "JniInvocationInit"));
    if (newInvocation == nullptr || init == nullptr || init(newInvocation(), nullptr))
      return reinterpret_cast<CreateVm>(create);
    reason += (reason.empty() ? "" : "; ") + name + " finds no runtime";
  }
  return nullptr;
}

jint createVm(CreateVm create) {
  JNIEnv* env = nullptr;
#ifdef __ANDROID__
  JavaVMInitArgs arguments = {JNI_VERSION_1_6, 0, nullptr, JNI_TRUE};
#else
  // Without ErrorFile, a crash of the VM leaves a report in the current folder.
  char names[][40] = {"-Xmx64m", "-XX:+UseSerialGC", "-XX:TieredStopAtLevel=1", "-XX:ErrorFile=/dev/null"};
  JavaVMOption all[std::size(names)] = {};
  for (size_t i = 0; i < std::size(names); ++i) all[i].optionString = names[i];
  JavaVMInitArgs arguments = {JNI_VERSION_1_6, static_cast<jint>(std::size(names)), all, JNI_FALSE};
#endif
  return create(&gVm, &env, &arguments);
}

// Returns whether the VM started. If it did not, fails the check. If no VM was found and options().jvm is
// empty, skips the check instead.
bool startVm() {
  step("starting a Java VM");
  std::string reason;
  const CreateVm create = findVm(reason);
  if (create == nullptr) {
    if (options().jvm.empty()) return skip("no Java VM: " + reason);
    ADD_FAILURE() << "no Java VM: " << reason;
    return false;
  }
  const bool started = createVm(create) == JNI_OK;
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

// Counts of the threads that called back and then exited. onThreadEnd(), the destructor of gEndKey, updates
// the counts. It first sets the key again as often as the thread library allows, so that the algorithm
// library's own destructors run before it counts.
std::atomic<int> gEndedAttached{0};  // threads still attached to the VM
std::atomic<int> gEnded{0};          // all threads
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
  // The sanitizer reports false errors in the VM's threads, because they are not instrumented.
  constexpr bool kSeesTheVm = true;
#else
  constexpr bool kSeesTheVm = false;
#endif
  if (kSeesTheVm) GTEST_SKIP() << "ThreadSanitizer does not support a Java VM";
  // Skips the exit handlers, because nothing shuts the VM down: it lives until the process exits.
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
      << " callbacks came from threads that are not attached to the Java VM; such callbacks of full-async "
         "requests and light-stream events are lost";
  HOLDS(gEndedAttached == 0) << gEndedAttached << " of " << gEnded
                             << " threads that called back exited while attached to the Java VM";
  for (const std::string& thrown : library->observer().thrown()) ADD_FAILURE() << thrown;
  note(std::to_string(seen.threads.size()) + " threads called back, " + std::to_string(alive) +
       " are still running");
}

}  // namespace orlu::conform
