// A pool that sends callbacks late and in random order, on its own thread.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <random>
#include <thread>
#include <vector>

namespace orlu::fuzz {

struct HeldCallback {
  uint64_t cookie;
  uint64_t nativeReq;
  std::chrono::microseconds delay{0};
  std::atomic<int>* pending = nullptr;  // decremented after sending; may be null
  bool isWithoutMemory = false;         // object creation fails during the callback; attached threads only
};

// Sends "shotCb" on the calling thread.
void sendShotCallback(uint64_t cookie, uint64_t nativeReq);

class CallbackPool {
public:
  // `isAttached`: whether the pool's thread is attached to the Java VM.
  CallbackPool(uint64_t seed, bool isAttached);
  CallbackPool(const CallbackPool&) = delete;
  CallbackPool& operator=(const CallbackPool&) = delete;
  ~CallbackPool();  // sends the remaining callbacks

  // Queues the callback. The pool's thread sends it after the callback's delay. If several callbacks are due
  // at the same time, their order is random.
  void hold(const HeldCallback& callback);

private:
  using Clock = std::chrono::steady_clock;
  struct Due {
    HeldCallback callback;
    Clock::time_point time;
  };

  void run();
  // Waits for callbacks and takes one. If several are due, takes a random one of them. If none is due, takes
  // the callback that is due first, after waiting for its time. Returns false if the pool is being destroyed
  // and contains no more callbacks.
  bool take(HeldCallback& callback);

  std::mutex mMutex;  // guards mHeld, mRandom and mIsEnding
  std::condition_variable mChanged;
  std::vector<Due> mHeld;
  std::mt19937_64 mRandom;
  bool mIsEnding = false;
  std::thread mThread;
};

}  // namespace orlu::fuzz
