// The one thread that does the work of all clients' requests, in the order in which they came, and calls
// back. It starts with the first request and runs until the process ends.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <thread>

#include "request.h"

namespace orlu::standin {

class Worker {
public:
  // `work` does a request's work, without its callbacks.
  explicit Worker(std::function<void(Request&)> work) : mWork(std::move(work)) {}
  Worker(const Worker&) = delete;

  void submit(std::unique_ptr<Request> request);
  // Does it all on this thread, callbacks included.
  void runHere(std::unique_ptr<Request> request);

  // Waits for what the client has pending. False when the time was over first. A request that is calling back
  // on this very thread is not waited for.
  bool drain(void* client, std::chrono::milliseconds limit);
  // The same for every client.
  bool drainAll(std::chrono::milliseconds limit);
  // From now on nothing that the client has pending calls back; what has not begun is dropped. Waits, for a
  // bounded time, for a callback that is under way, because its target is about to go.
  void abandon(void* client);
  void abandonAll();
  // Calls back at once, from a thread of their own, for the client's requests that have not begun and whose
  // parameter set carries this "frame_flag". They are not worked on.
  void abortQueued(void* client, int64_t frameFlag);

  int pending() const;

private:
  enum class State { kQueued, kWorking, kCallingBack };
  struct Job {
    std::unique_ptr<Request> request;
    State state = State::kQueued;
    bool abandoned = false;
    bool aborted = false;
    std::thread::id caller;  // while calling back
  };
  using JobPointer = std::shared_ptr<Job>;
  using Filter = std::function<bool(const Job&)>;

  void startLocked();
  void loop();
  JobPointer takeNext();
  void work(Job& job);
  void finish(const JobPointer& job, bool ownThread);
  void callBack(Job& job, int index, std::unique_lock<std::mutex>& lock);
  bool drainWhere(const Filter& filter, std::chrono::milliseconds limit);
  void abandonWhere(const Filter& filter);

  const std::function<void(Request&)> mWork;
  mutable std::mutex mMutex;  // guards what follows, and the jobs but for their requests
  std::condition_variable mChanged;
  std::list<JobPointer> mJobs;
  bool mStarted = false;
};

}  // namespace orlu::standin
