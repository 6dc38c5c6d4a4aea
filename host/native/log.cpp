// liblog.so: lines in logcat's "threadtime" format on standard error.

#include <android/log.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace {

// As on the device: what is longer is cut.
constexpr size_t kLineSize = 1024;

// By priority.
constexpr char kPriorityLetters[] = "??VDIWEFS";
constexpr int kPriorities = sizeof kPriorityLetters - 1;

int32_t priorityOfLetter(char letter) {
  const char* found = letter == '\0' || letter == '?' ? nullptr : std::strchr(kPriorityLetters, letter);
  return found == nullptr ? ANDROID_LOG_DEFAULT : static_cast<int32_t>(found - kPriorityLetters);
}

// Of the filters that the device knows, the one for every tag: "*:E".
int32_t priorityFromEnvironment() {
  const char* tags = std::getenv("ANDROID_LOG_TAGS");
  const char* all = tags == nullptr ? nullptr : std::strstr(tags, "*:");
  return all == nullptr ? ANDROID_LOG_DEFAULT : priorityOfLetter(all[2]);
}

std::atomic<int32_t> gMinimumPriority{priorityFromEnvironment()};
std::atomic<__android_logger_function> gLogger{__android_log_stderr_logger};

}  // namespace

int __android_log_print(int prio, const char* tag, const char* fmt, ...) {
  if (prio < gMinimumPriority.load(std::memory_order_relaxed)) return -EPERM;
  char line[kLineSize] = "";
  va_list arguments;
  va_start(arguments, fmt);
  std::vsnprintf(line, sizeof line, fmt, arguments);
  va_end(arguments);
  const __android_log_message message = {sizeof message, 0, prio, tag == nullptr ? "" : tag,
                                         nullptr,        0, line};
  gLogger.load()(&message);
  return 1;
}

void __android_log_set_logger(__android_logger_function logger) {
  gLogger = logger == nullptr ? __android_log_stderr_logger : logger;
}

void __android_log_stderr_logger(const struct __android_log_message* log_message) {
  timespec now = {};
  clock_gettime(CLOCK_REALTIME, &now);
  tm local = {};
  localtime_r(&now.tv_sec, &local);
  char time[32];
  std::strftime(time, sizeof time, "%m-%d %H:%M:%S", &local);
  const int priority = log_message->priority;
  std::fprintf(stderr, "%s.%03ld %5d %5ld %c %-8s: %s\n", time, now.tv_nsec / 1'000'000, getpid(),
               static_cast<long>(syscall(SYS_gettid)),
               priority >= 0 && priority < kPriorities ? kPriorityLetters[priority] : '?', log_message->tag,
               log_message->message);
}

int32_t __android_log_set_minimum_priority(int32_t priority) {
  return gMinimumPriority.exchange(priority);
}

int32_t __android_log_get_minimum_priority(void) {
  return gMinimumPriority;
}
