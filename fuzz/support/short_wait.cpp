#include "short_wait.h"

#include <pthread.h>

#include <cerrno>
#include <chrono>
#include <ctime>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int64_t kShorter = 1'000;
constexpr int64_t kNanosecondsPerSecond = 1'000'000'000;

thread_local bool tIsShort = false;
thread_local std::chrono::nanoseconds tAhead{0};  // lead of the thread's clock over the real clock

timespec timespecOf(std::chrono::nanoseconds time) {
  return {time.count() / kNanosecondsPerSecond, time.count() % kNanosecondsPerSecond};
}

std::chrono::nanoseconds nanosecondsOf(const timespec& time) {
  return std::chrono::nanoseconds(time.tv_sec * kNanosecondsPerSecond + time.tv_nsec);
}

}  // namespace

// The linker option --wrap sends each call of a function to __wrap_NAME. __real_NAME is the original.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {

Clock::time_point __real__ZNSt6chrono3_V212steady_clock3nowEv();
int __real_pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock,
                                  const timespec* until);

Clock::time_point __wrap__ZNSt6chrono3_V212steady_clock3nowEv() {
  return __real__ZNSt6chrono3_V212steady_clock3nowEv() + tAhead;
}

int __wrap_pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock,
                                  const timespec* until) {
  if (!tIsShort || clock != CLOCK_MONOTONIC) {
    return __real_pthread_cond_clockwait(condition, mutex, clock, until);
  }
  const auto now = __real__ZNSt6chrono3_V212steady_clock3nowEv().time_since_epoch();
  const auto left = nanosecondsOf(*until) - tAhead - now;
  const timespec sooner = timespecOf(now + left / kShorter);
  const int status = __real_pthread_cond_clockwait(condition, mutex, clock, &sooner);
  if (status == ETIMEDOUT) tAhead += left;
  return status;
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)

namespace orlu::fuzz {

ShortWait::ShortWait() {
  tIsShort = true;
}

ShortWait::~ShortWait() {
  tIsShort = false;
  tAhead = {};
}

}  // namespace orlu::fuzz
