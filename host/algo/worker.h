// Processes the submitted requests of all clients in order of arrival, on one thread. The thread starts with
// the first submit() and never ends. It also calls back, but if `inOrder` of the request's script is false, a
// new thread calls back for that request.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "request.h"

namespace orlu::standin {

class Worker {
public:
  // `work` processes a request. It must not call back: the worker does.
  explicit Worker(std::function<void(Request&)> work) : mWork(std::move(work)) {}
  Worker(const Worker&) = delete;

  void submit(std::unique_ptr<Request> request);
  // Processes the request on this thread, including its callbacks.
  void runHere(std::unique_ptr<Request> request);

  // Waits for the client's requests, but not for a request whose callback runs on the calling thread. Returns
  // false on timeout.
  bool drain(void* client, std::chrono::milliseconds limit);
  bool drainAll(std::chrono::milliseconds limit);
  // Prevents further callbacks for the client's pending requests and drops the unstarted requests. Waits up
  // to two seconds for running callbacks on other threads, because their target is about to be destroyed.
  void abandon(void* client);
  void abandonAll();
  // Calls back immediately, on a new thread, for the client's unstarted requests with this "frame_flag" in
  // their parameters. These requests are not processed.
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
  void finishApart(std::vector<JobPointer> jobs);  // on a new thread
  void finish(const JobPointer& job, bool ownThread);
  void callBack(Job& job, int index, std::unique_lock<std::mutex>& lock);
  bool drainWhere(const Filter& filter, std::chrono::milliseconds limit);
  void abandonWhere(const Filter& filter);

  const std::function<void(Request&)> mWork;
  mutable std::mutex mMutex;  // guards the members below and the fields of jobs, but not requests
  std::condition_variable mChanged;
  std::list<JobPointer> mJobs;
  bool mStarted = false;
};

}  // namespace orlu::standin
