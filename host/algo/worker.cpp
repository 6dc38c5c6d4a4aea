#include "worker.h"

#include <algorithm>
#include <utility>

#include "java_thread.h"

namespace orlu::standin {
namespace {

constexpr std::chrono::seconds kPatience{2};  // limit for a callback that does not return

bool carriesFlag(const Request& request, int64_t frameFlag) {
  int64_t flag = 0;
  return request.parameters().get(kControl, "frame_flag", &flag, sizeof flag) == 0 && flag == frameFlag;
}

}  // namespace

void Worker::submit(std::unique_ptr<Request> request) {
  auto job = std::make_shared<Job>();
  job->request = std::move(request);
  std::lock_guard lock(mMutex);
  startLocked();
  mJobs.push_back(std::move(job));
  mChanged.notify_all();
}

void Worker::runHere(std::unique_ptr<Request> request) {
  auto job = std::make_shared<Job>();
  job->request = std::move(request);
  job->state = State::kWorking;
  {
    std::lock_guard lock(mMutex);
    mJobs.push_back(job);
  }
  work(*job);
  finish(job, false);
}

bool Worker::drain(void* client, std::chrono::milliseconds limit) {
  return drainWhere([client](const Job& job) { return job.request->client() == client; }, limit);
}

bool Worker::drainAll(std::chrono::milliseconds limit) {
  return drainWhere([](const Job&) { return true; }, limit);
}

void Worker::abandon(void* client) {
  abandonWhere([client](const Job& job) { return job.request->client() == client; });
}

void Worker::abandonAll() {
  abandonWhere([](const Job&) { return true; });
}

void Worker::abortQueued(void* client, int64_t frameFlag) {
  std::vector<JobPointer> aborted;
  {
    std::lock_guard lock(mMutex);
    for (const JobPointer& job : mJobs) {
      if (job->state != State::kQueued || job->request->client() != client) continue;
      if (!carriesFlag(*job->request, frameFlag)) continue;
      job->state = State::kWorking;
      job->aborted = true;
      aborted.push_back(job);
    }
  }
  if (!aborted.empty()) finishApart(std::move(aborted));
}

int Worker::pending() const {
  std::lock_guard lock(mMutex);
  return static_cast<int>(mJobs.size());
}

void Worker::startLocked() {
  if (mStarted) return;
  std::thread([this] { loop(); }).detach();
  mStarted = true;
}

void Worker::loop() {
  for (;;) {
    const JobPointer job = takeNext();
    work(*job);
    if (job->request->script().inOrder) {
      finish(job, true);
      continue;
    }
    finishApart({job});
  }
}

Worker::JobPointer Worker::takeNext() {
  std::unique_lock lock(mMutex);
  auto next = mJobs.end();
  mChanged.wait(lock, [&] {
    next = std::find_if(mJobs.begin(), mJobs.end(),
                        [](const JobPointer& job) { return job->state == State::kQueued; });
    return next != mJobs.end();
  });
  (*next)->state = State::kWorking;
  return *next;
}

void Worker::work(Job& job) {
  // The callback is sent even if the work fails.
  try {
    mWork(*job.request);
  } catch (...) {
  }
}

void Worker::finishApart(std::vector<JobPointer> jobs) {
  // The new thread needs this lock before it ends, so it is still running when detach() is called. If the
  // thread had ended, glibc's detach() could read memory of the thread that is already unmapped.
  std::lock_guard lock(mMutex);
  std::thread([this, jobs = std::move(jobs)] {
    for (const JobPointer& job : jobs) finish(job, true);
    detachFromJava();
  }).detach();
}

void Worker::finish(const JobPointer& job, bool ownThread) {
  const AlgoScript& script = job->request->script();
  job->request->releaseImages();
  std::unique_lock lock(mMutex);
  mChanged.wait_until(lock, job->request->due(), [&] { return job->abandoned || job->aborted; });
  if (ownThread && !job->abandoned) {
    lock.unlock();
    script.attachThread ? attachToJava() : detachFromJava();
    lock.lock();
  }
  for (int i = 0; i < script.callbacks && !job->abandoned; ++i) callBack(*job, i, lock);
  mJobs.remove(job);
  mChanged.notify_all();
}

void Worker::callBack(Job& job, int index, std::unique_lock<std::mutex>& lock) {
  job.state = State::kCallingBack;
  job.caller = std::this_thread::get_id();
  lock.unlock();
  try {
    if (index == 0 && job.request->script().runAlgorithms) job.request->sendLightStreamEvent();
    job.request->callBack();
  } catch (...) {
  }
  lock.lock();
  job.state = State::kWorking;
  mChanged.notify_all();
}

bool Worker::drainWhere(const Filter& filter, std::chrono::milliseconds limit) {
  const auto self = std::this_thread::get_id();
  std::unique_lock lock(mMutex);
  return mChanged.wait_for(lock, limit, [&] {
    return std::none_of(mJobs.begin(), mJobs.end(), [&](const JobPointer& job) {
      const bool own = job->state == State::kCallingBack && job->caller == self;
      return filter(*job) && !own;
    });
  });
}

void Worker::abandonWhere(const Filter& filter) {
  const auto self = std::this_thread::get_id();
  std::unique_lock lock(mMutex);
  for (const JobPointer& job : mJobs) job->abandoned = job->abandoned || filter(*job);
  mJobs.remove_if([](const JobPointer& job) { return job->abandoned && job->state == State::kQueued; });
  mChanged.notify_all();
  mChanged.wait_for(lock, kPatience, [&] {
    return std::none_of(mJobs.begin(), mJobs.end(), [&](const JobPointer& job) {
      return filter(*job) && job->state == State::kCallingBack && job->caller != self;
    });
  });
}

}  // namespace orlu::standin
