// A thread that answers, as an algorithm library's does, after whoever asked has gone to sleep.
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

  // Returns at once; the answer is called on the worker's thread.
  void post(std::function<void()> answer);

  // When the last answer began. To be read after it is known to have ended.
  Clock::time_point answered() const { return mAnswered; }

private:
  void work();

  std::mutex mMutex;
  std::condition_variable mCondition;
  std::function<void()> mAnswer;
  bool mEnds = false;
  Clock::time_point mAnswered;
  std::thread mThread;  // last, so that it starts when all else is there
};

}  // namespace orlu::bench
