// Sends held callbacks on its own thread: late and in random order.
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
  // `isAttached`: whether the thread is attached to the Java VM.
  CallbackPool(uint64_t seed, bool isAttached);
  CallbackPool(const CallbackPool&) = delete;
  CallbackPool& operator=(const CallbackPool&) = delete;
  ~CallbackPool();  // sends the remaining callbacks

  // Queues the callback. The thread sends it after its delay. The order of callbacks that are due at the same
  // time is random.
  void hold(const HeldCallback& callback);

private:
  using Clock = std::chrono::steady_clock;
  struct Due {
    HeldCallback callback;
    Clock::time_point time;
  };

  void run();
  // Waits for callbacks and takes one: a random one of those that are due, else the next one, once it is due.
  // Returns false once the ending pool is empty.
  bool take(HeldCallback& callback);

  std::mutex mMutex;  // guards the members below
  std::condition_variable mChanged;
  std::vector<Due> mHeld;
  std::mt19937_64 mRandom;
  bool mIsEnding = false;
  std::thread mThread;
};

}  // namespace orlu::fuzz
