// A thread that answers after the caller has fallen asleep, as an algorithm library's thread does.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

#include "samples.h"

namespace orlu::bench {

class Worker {
public:
  Worker();
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;
  ~Worker();

  // Returns at once; `answer` is called on the worker's thread.
  void post(std::function<void()> answer);

  // Returns the time at which the last answer started. Call this only after that answer has finished.
  Clock::time_point answered() const { return mAnswered; }

private:
  void work();

  std::mutex mMutex;
  std::condition_variable mCondition;
  std::function<void()> mAnswer;
  bool mEnds = false;
  Clock::time_point mAnswered;
  std::thread mThread;  // last, so that it starts after the other members are initialised
};

}  // namespace orlu::bench
