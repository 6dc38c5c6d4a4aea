// liblog.so: writes lines in logcat's "threadtime" format to standard error. If ORLU_LOG_FILE names a file,
// appends every line to it, even lines that ANDROID_LOG_TAGS filters out. A line in the file has five fields,
// separated by tabs: time (nanoseconds of CLOCK_MONOTONIC), thread, priority letter, tag and text.

#include <android/log.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <map>
#include <sstream>
#include <string>

#include "printable.h"

namespace {

// Longer lines are truncated, as on the device.
constexpr size_t kLineSize = 1024;

constexpr char kPriorityLetters[] = "??VDIWEFS";
constexpr int kPriorities = sizeof kPriorityLetters - 1;

int32_t priorityOfLetter(char letter) {
  const char* found = letter == '\0' || letter == '?' ? nullptr : std::strchr(kPriorityLetters, letter);
  return found == nullptr ? ANDROID_LOG_DEFAULT : static_cast<int32_t>(found - kPriorityLetters);
}

// The contents of ANDROID_LOG_TAGS, such as "TAG:D OTHER *:S": a minimum priority for each named tag, and for
// all other tags ("*"). If the priority is omitted, it is VERBOSE.
struct Filters {
  std::map<std::string, int32_t, std::less<>> tags;
  int32_t others = ANDROID_LOG_DEFAULT;

  Filters() {
    const char* environment = std::getenv("ANDROID_LOG_TAGS");
    std::istringstream words(environment == nullptr ? "" : environment);
    for (std::string word; words >> word;) {
      const size_t colon = word.rfind(':');
      const std::string tag = word.substr(0, colon);
      const int32_t priority =
          colon == std::string::npos ? ANDROID_LOG_VERBOSE : priorityOfLetter(word[colon + 1]);
      (tag == "*" ? others : tags[tag]) = priority;
    }
  }
};

// Never destroyed: threads may log until the process ends.
const Filters& filters() {
  static const auto* const instance = new Filters();
  return *instance;
}

std::atomic<int32_t> gMinimumPriority{filters().others};
std::atomic<__android_logger_function> gLogger{__android_log_stderr_logger};

bool isLogged(int priority, const char* tag) {
  const auto filter = filters().tags.find(tag == nullptr ? "" : tag);
  return priority >= (filter == filters().tags.end() ? gMinimumPriority.load() : filter->second);
}

char letterOf(int priority) {
  return priority >= 0 && priority < kPriorities ? kPriorityLetters[priority] : '?';
}

// Opens the file that ORLU_LOG_FILE names. The file is never closed. Returns its descriptor; -1 if the
// variable names no file or the file can't be opened.
int openLogFile() {
  const char* const path = std::getenv("ORLU_LOG_FILE");
  if (path == nullptr || *path == '\0') return -1;
  return open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
}

int logFile() {
  static const int file = openLogFile();
  return file;
}

// Writes a line to the log file with one call, so that lines of several threads don't mix. Replaces line ends
// in the text with blanks.
void keep(int priority, const char* tag, const char* text) {
  timespec now = {};
  clock_gettime(CLOCK_MONOTONIC, &now);
  std::string line = std::to_string(now.tv_sec * 1'000'000'000LL + now.tv_nsec) + '\t' +
                     std::to_string(syscall(SYS_gettid)) + '\t' + letterOf(priority) + '\t' + tag + '\t';
  const size_t start = line.size();
  line += text;
  for (size_t i = start; i < line.size(); ++i) {
    if (line[i] == '\n' || line[i] == '\r') line[i] = ' ';
  }
  line += '\n';
  [[maybe_unused]] const ssize_t written = write(logFile(), line.data(), line.size());
}

}  // namespace

int __android_log_print(int prio, const char* tag, const char* fmt, ...) {
  const bool isShown = isLogged(prio, tag);
  if (!isShown && logFile() < 0) return -EPERM;
  char line[kLineSize] = "";
  va_list arguments;
  va_start(arguments, fmt);
  std::vsnprintf(line, sizeof line, fmt, arguments);
  va_end(arguments);
  if (logFile() >= 0) keep(prio, tag == nullptr ? "" : tag, line);
  if (!isShown) return -EPERM;
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
  const auto shown = [](const char* text) { return orlu::probe::printable(text == nullptr ? "" : text); };
  std::fprintf(stderr, "%s.%03ld %5d %5ld %c %-8s: %s\n", time, now.tv_nsec / 1'000'000, getpid(),
               static_cast<long>(syscall(SYS_gettid)), letterOf(priority), shown(log_message->tag).c_str(),
               shown(log_message->message).c_str());
}

int32_t __android_log_set_minimum_priority(int32_t priority) {
  return gMinimumPriority.exchange(priority);
}
