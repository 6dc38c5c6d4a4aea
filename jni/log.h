// Logging macros. A macro without a parameter for the tag or place uses the `kLogTag` in scope at the call: a
// class member or a file constant.
//
// Lines begin with the source file's base name, the line number and an operation. LOGE() and LOGD() show the
// enclosing function; helpers show their caller's operation with LOGE_AS() and LOGD_AS(). Errors are always
// written, debug lines only if the phone maker's log level permits. The BARE macros differ: see below.
#pragma once

#include <android/log.h>
#include <orlu/camera3rd_log.h>

namespace orlu {

constexpr int kFirstSilentLogLevel = 4;

inline bool isDebugLogOn() {
  return gVAFCtrlLogLevel < kFirstSilentLogLevel;
}

// Base name of the including .cpp, computed once per file, because error lines are frequent.
[[maybe_unused]] static const char* const kLogFile = get_filename(__BASE_FILE__);

// Source location of a log line, for helpers in headers.
struct LogPlace {
  const char* tag;
  const char* file;
  int line;
  const char* operation;
};

}  // namespace orlu

// Pass "" as the last argument, for the last "%s": C++17 requires at least one variadic argument.
#define ORLU_LOG_LINE(priority, operation, format, ...)                                                    \
  __android_log_print(priority, kLogTag, "%s:%d %s() " format "%s", ::orlu::kLogFile, __LINE__, operation, \
                      __VA_ARGS__)
#define ORLU_LOG_BARE(priority, tag, format, ...) __android_log_print(priority, tag, format "%s", __VA_ARGS__)

#define LOGE_AS(operation, ...) ORLU_LOG_LINE(ANDROID_LOG_ERROR, operation, __VA_ARGS__, "")
#define LOGD_AS(operation, ...)                                                               \
  do {                                                                                        \
    if (::orlu::isDebugLogOn()) ORLU_LOG_LINE(ANDROID_LOG_DEBUG, operation, __VA_ARGS__, ""); \
  } while (0)

#define LOGE(...) LOGE_AS(__func__, __VA_ARGS__)
#define LOGD(...) LOGD_AS(__func__, __VA_ARGS__)

#define LOG_PLACE (::orlu::LogPlace{kLogTag, ::orlu::kLogFile, __LINE__, __func__})
#define LOGE_AT(place, format, ...)                                                                     \
  __android_log_print(ANDROID_LOG_ERROR, (place).tag, "%s:%d %s() " format, (place).file, (place).line, \
                      (place).operation, __VA_ARGS__)

// Write the few lines that have a shorter tag and no prefix, at every log level.
#define LOGE_BARE(tag, ...) ORLU_LOG_BARE(ANDROID_LOG_ERROR, tag, __VA_ARGS__, "")
#define LOGD_BARE(tag, ...) ORLU_LOG_BARE(ANDROID_LOG_DEBUG, tag, __VA_ARGS__, "")
