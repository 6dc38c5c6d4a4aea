// Callbacks that the soak sends by itself, on a thread of its own: later than the algorithm library would,
// and in another order.
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
  std::atomic<int>* pending = nullptr;  // lowered when it was sent; may be null
  bool isWithoutMemory = false;         // meanwhile no object can be made; on an attached thread
};

// Sends "shotCb" on the calling thread.
void sendShotCallback(uint64_t cookie, uint64_t nativeReq);

class CallbackPool {
public:
  // The thread is attached to the Java VM or not.
  CallbackPool(uint64_t seed, bool isAttached);
  CallbackPool(const CallbackPool&) = delete;
  CallbackPool& operator=(const CallbackPool&) = delete;
  ~CallbackPool();  // sends what is left

  // Sends it when its delay is over and some others have come, or when no other comes for a while.
  void hold(const HeldCallback& callback);

private:
  using Clock = std::chrono::steady_clock;
  struct Due {
    HeldCallback callback;
    Clock::time_point time;
  };

  void run();
  // Any of those whose time has come.
  bool take(HeldCallback& callback);

  std::mutex mMutex;  // guards what follows
  std::condition_variable mChanged;
  std::vector<Due> mHeld;
  std::mt19937_64 mRandom;
  bool mIsEnding = false;
  std::thread mThread;
};

}  // namespace orlu::fuzz
