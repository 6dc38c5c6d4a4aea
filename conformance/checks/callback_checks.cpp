// Checks of calls that Java makes on a callback's thread, or on another thread while a callback is running.
#include <atomic>
#include <future>

#include "checks.h"
#include "scene.h"

namespace orlu::conform {
namespace {

// How long callbacks are blocked: long enough to be noticed, but too short for a waiting operation to count
// as hanging.
std::chrono::milliseconds holdTime() {
  return std::chrono::milliseconds(std::max(options().patienceSeconds, 2) * 1000 / 3);
}

// Shorter than holdTime(), because a flush may have its own timeout.
constexpr std::chrono::milliseconds kFlushHold{500};

// Blocks the first callback until open() or a timeout. Callbacks co-own the gate, because they may arrive
// late.
class Gate {
public:
  explicit Gate(std::chrono::milliseconds hold) : mHold(hold) {}

  void wait() {
    std::unique_lock<std::mutex> lock(mMutex);
    if (mIsReached) return;
    mIsReached = true;
    mChanged.notify_all();
    mChanged.wait_for(lock, mHold, [this] { return mIsOpen; });
    mIsLeft = true;
  }
  // Returns false if no callback arrives.
  bool waitUntilReached() {
    std::unique_lock<std::mutex> lock(mMutex);
    const bool came = mChanged.wait_for(lock, std::chrono::seconds(options().patienceSeconds),
                                        [this] { return mIsReached; });
    if (!came) missCallback();
    return came;
  }
  // Returns true if the callback was still blocked.
  bool open() {
    const std::lock_guard<std::mutex> lock(mMutex);
    mIsOpen = true;
    mChanged.notify_all();
    return !mIsLeft;
  }

private:
  const std::chrono::milliseconds mHold;
  std::mutex mMutex;
  std::condition_variable mChanged;
  bool mIsReached = false;
  bool mIsOpen = false;
  bool mIsLeft = false;
};

struct Action {
  const char* what;
  void (*run)(Scene& scene, Scene& other, std::unique_ptr<Block>& parameters);
};

void endRequest(Scene&, Scene&, std::unique_ptr<Block>& parameters) {
  int32_t value = 0;
  parameters->get(kFeedback, "encoded_jpeg_size", &value, sizeof value);
  parameters.reset();
}
void submitNext(Scene& scene, Scene&, std::unique_ptr<Block>&) {
  Request request;
  request.nativeReq = 2;
  request.inputs = {&scene.input};
  request.outputs = {&scene.output};
  submit(scene.client, scene.inbox, scene.parameters, request);
}
void flushOwn(Scene& scene, Scene&, std::unique_ptr<Block>&) {
  scene.client.flush();
}
void abortOwn(Scene& scene, Scene&, std::unique_ptr<Block>&) {
  Block named;
  const int64_t flag = 1;
  named.set(kControl, "abort_key", std::string("orlu.control.frameFlag"));
  named.set(kControl, "abort_val", &flag, sizeof flag);
  scene.client.abort(named);
}
void destroyOther(Scene&, Scene& other, std::unique_ptr<Block>&) {
  other.client.end();
}
void makeClient(Scene&, Scene&, std::unique_ptr<Block>&) {
  Client().end();
}
void destroyOwn(Scene& scene, Scene&, std::unique_ptr<Block>&) {
  scene.client.end();
}

constexpr Action kActions[] = {
    {"finish the request",            endRequest  },
    {"submit the next request",       submitNext  },
    {"flush",                         flushOwn    },
    {"abort",                         abortOwn    },
    {"destroy another client",        destroyOther},
    {"create and destroy a client",   makeClient  },
    {"destroy the callback's client", destroyOwn  },
};

void actInside(const Action& action) {
  step(std::string("inside a callback: ") + action.what);
  Scene scene;
  Scene other;
  auto parameters = std::make_unique<Block>();
  std::promise<void> done;
  std::atomic<bool> isFirst{true};
  scene.inbox.onCallback([&](const Message& message) {
    if (message.nativeReq() != 1 || message.name() != kShotCallback || !isFirst.exchange(false)) return;
    action.run(scene, other, parameters);
    done.set_value();
  });
  Request request;
  request.inputs = {&scene.input};
  request.outputs = {&scene.output};
  // From here on, the callback may destroy the block.
  submit(scene.client, scene.inbox, *parameters, request);
  // The parent process detects an operation that hangs in the callback.
  const auto came = done.get_future().wait_for(std::chrono::seconds(options().patienceSeconds + 5));
  if (came != std::future_status::ready) {
    missCallback();
    ADD_FAILURE() << "Java may " << action.what << " inside a callback, but this did not finish within "
                  << options().patienceSeconds + 5 << " s";
    return;
  }
  // The inbox stores the message only after onCallback's function has returned.
  scene.inbox.waitFor(1);
  const bool isNextDone = action.run != submitNext || scene.inbox.waitFor(2);
  HOLDS(isNextDone) << kNoCallback << "a request submitted inside the previous callback";
  // Ends the client before the scene destroys its other members: the library's thread may still be returning
  // from the callback.
  scene.client.end();
}

// Runs the work while a callback is blocked. Returns false if the work did not return within `hold`. If no
// callback arrives, fails the check and returns true without running the work.
bool returnsWhileHeld(Scene& scene, std::chrono::milliseconds hold, const std::function<void()>& work) {
  const auto gate = std::make_shared<Gate>(hold);
  scene.inbox.onCallback([gate](const Message&) { gate->wait(); });
  Request request;
  request.inputs = {&scene.input};
  request.outputs = {&scene.output};
  submit(scene.client, scene.inbox, scene.parameters, request);
  const bool isReached = gate->waitUntilReached();
  HOLDS(isReached) << kNoCallback << "a request";
  if (!isReached) return true;
  work();
  const bool returned = gate->open();
  scene.inbox.waitFor(request.nativeReq);
  return returned;
}

struct Work {
  const char* what;
  const char* usual;
  void (*run)(Scene& scene);
};

void submitSecond(Scene& scene) {
  static const Image output({}, 9);
  Request request;
  request.nativeReq = 2;
  request.inputs = {&scene.input};
  request.outputs = {&output};
  submit(scene.client, scene.inbox, scene.parameters, request);
}

void useBlock(Scene&) {
  Block block;
  block.set(kControl, "conform_key", "value");
  char seen[5];
  block.get(kControl, "conform_key", seen, sizeof seen);
}

// Leaves the new client alive: it may share a worker with the client whose callback is blocked, and its
// destruction could wait for that worker.
void createClient(Scene&) {
  AlgoCreateClientRecord record;
  record.interfaceVersion = kAlgoTableVersion;
  AlgoInitRecord init;
  init.client = call<void*>(nullptr, Library::open()->table().createClient, record);
  call(-1, Library::open()->table().init, init);
}

constexpr Work kWorks[] = {
    {"process",              "it waits for the previous request, or callbacks hold a lock", submitSecond},
    {"a block operation",    "callbacks hold a lock of the store",                          useBlock    },
    {"createClient or init", "callbacks hold a lock of all clients",                        createClient},
};

}  // namespace

void checkInside() {
  // A callback that destroyed its own client may still be returning when destructors run at exit.
  endAtOnce();
  OPEN_LIBRARY(library);
  for (const Action& action : kActions) {
    actInside(action);
    if (testing::Test::HasFailure()) return;
  }
  note(std::to_string(std::size(kActions)) + " actions of Java inside a callback");
}

void checkOverlap() {
  OPEN_LIBRARY(library);
  for (const Work& work : kWorks) {
    step(std::string(work.what) + " during a callback");
    Scene scene;
    HOLDS(returnsWhileHeld(scene, holdTime(), [&] { work.run(scene); }))
        << work.what << " must return during the callback of another request, but did not return in "
        << holdTime().count() << " ms; usual cause: " << work.usual;
    const bool isSecondDone = work.run != submitSecond || scene.inbox.waitFor(2);
    HOLDS(isSecondDone) << kNoCallback << "a request submitted during a callback";
  }
}

void checkFlush() {
  OPEN_LIBRARY(library);
  if (!library->table().flush) GTEST_SKIP() << "flush is not offered";
  Scene scene;
  step("flush during a callback");
  bool isFlushed = false;
  const bool returned = returnsWhileHeld(scene, kFlushHold, [&] {
    isFlushed = true;
    scene.client.flush();
  });
  if (!isFlushed) return;
  if (returned) {
    warn(
        "flush returned while a request was in flight. The contract allows this, but then Java may "
        "destroy the client before its requests finish; it is better to wait for them in flush");
  } else {
    note("flush waits for requests in flight");
  }
}

}  // namespace orlu::conform
