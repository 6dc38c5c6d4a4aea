#include "callback_pool.h"

#include <algorithm>

#include "algo_interface.h"
#include "callback_data.h"
#include "jvm.h"
#include "scoped_jni_functions.h"

namespace orlu::fuzz {
namespace {

// Once the pool holds a callback, take() waits at most kPatience for the pool to reach kEnough callbacks.
// This gives it several to reorder.
constexpr size_t kEnough = 3;
constexpr std::chrono::microseconds kPatience{500};

void sendHeld(const HeldCallback& callback) {
  if (!callback.isWithoutMemory) {
    sendShotCallback(callback.cookie, callback.nativeReq);
    return;
  }
  test::ScopedJniFunctions functions(test::env());
  functions.table().NewObjectV = [](JNIEnv*, jclass, jmethodID, va_list) -> jobject { return nullptr; };
  sendShotCallback(callback.cookie, callback.nativeReq);
}

}  // namespace

void sendShotCallback(uint64_t cookie, uint64_t nativeReq) {
  const auto* const callback = reinterpret_cast<const AlgoResultCallback*>(static_cast<uintptr_t>(cookie));
  (*callback)(android::hardware::hidl_vec<uint8_t>(test::shotCallback(nativeReq)), {}, {});
}

CallbackPool::CallbackPool(uint64_t seed, bool isAttached)
    : mRandom(seed), mThread([this, isAttached] {
        if (!isAttached) {
          run();
          return;
        }
        const test::AttachedThread attached;
        run();
      }) {}

CallbackPool::~CallbackPool() {
  {
    const std::lock_guard<std::mutex> lock(mMutex);
    mIsEnding = true;
  }
  mChanged.notify_all();
  mThread.join();
}

void CallbackPool::hold(const HeldCallback& callback) {
  {
    const std::lock_guard<std::mutex> lock(mMutex);
    mHeld.push_back({callback, Clock::now() + callback.delay});
  }
  mChanged.notify_all();
}

void CallbackPool::run() {
  HeldCallback callback = {};
  while (take(callback)) {
    sendHeld(callback);
    if (callback.pending != nullptr) --*callback.pending;
  }
}

bool CallbackPool::take(HeldCallback& callback) {
  std::unique_lock<std::mutex> lock(mMutex);
  mChanged.wait(lock, [this] { return mIsEnding || !mHeld.empty(); });
  mChanged.wait_for(lock, kPatience, [this] { return mIsEnding || mHeld.size() >= kEnough; });
  if (mHeld.empty()) return false;
  std::shuffle(mHeld.begin(), mHeld.end(), mRandom);
  const auto next =
      std::min_element(mHeld.begin(), mHeld.end(), [now = Clock::now()](const Due& a, const Due& b) {
        return std::max(a.time, now) < std::max(b.time, now);
      });
  const Due due = *next;
  mHeld.erase(next);
  lock.unlock();
  std::this_thread::sleep_until(due.time);
  callback = due.callback;
  return true;
}

}  // namespace orlu::fuzz
