#include "worker.h"

#include <utility>

namespace orlu::bench {
namespace {

// Long enough for the waiting thread to fall asleep.
constexpr std::chrono::microseconds kPause(100);

}  // namespace

Worker::Worker() : mThread(&Worker::work, this) {}

Worker::~Worker() {
  {
    const std::lock_guard<std::mutex> lock(mMutex);
    mEnds = true;
  }
  mCondition.notify_one();
  mThread.join();
}

void Worker::post(std::function<void()> answer) {
  const std::lock_guard<std::mutex> lock(mMutex);
  mAnswer = std::move(answer);
  mCondition.notify_one();
}

void Worker::work() {
  std::unique_lock<std::mutex> lock(mMutex);
  while (true) {
    mCondition.wait(lock, [this] { return mEnds || mAnswer; });
    if (mEnds) return;
    const std::function<void()> answer = std::exchange(mAnswer, nullptr);
    lock.unlock();
    std::this_thread::sleep_for(kPause);
    mAnswered = Clock::now();
    answer();
    lock.lock();
  }
}

}  // namespace orlu::bench
