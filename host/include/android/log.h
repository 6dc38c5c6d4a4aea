// Host stand-in for the NDK's logging interface (liblog.so).
#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef enum android_LogPriority {
  ANDROID_LOG_UNKNOWN = 0,
  ANDROID_LOG_DEFAULT,
  ANDROID_LOG_VERBOSE,
  ANDROID_LOG_DEBUG,
  ANDROID_LOG_INFO,
  ANDROID_LOG_WARN,
  ANDROID_LOG_ERROR,
  ANDROID_LOG_FATAL,
  ANDROID_LOG_SILENT,
} android_LogPriority;

// Formats a line, truncates it to 1023 bytes and passes it to the logger. Returns 1, or -EPERM if `prio` is
// below the tag's minimum priority.
int __android_log_print(int prio, const char* tag, const char* fmt, ...)
    __attribute__((__format__(printf, 3, 4)));

struct __android_log_message {
  size_t struct_size;
  int32_t buffer_id;
  int32_t priority;
  const char* tag;
  const char* file;
  uint32_t line;
  const char* message;
};
typedef void (*__android_logger_function)(const struct __android_log_message* log_message);

// Replaces the logger for the whole process; null restores the default. The logger is called from any thread.
// A message's strings are valid until the logger returns.
void __android_log_set_logger(__android_logger_function logger);
// The default logger: writes logcat's "threadtime" lines to standard error.
void __android_log_stderr_logger(const struct __android_log_message* log_message);

// Sets the minimum priority and returns the previous one. Lines of lower priority do not reach the logger.
// The initial minimum comes from the environment variable ANDROID_LOG_TAGS ("*:E"). By default, it is
// ANDROID_LOG_DEFAULT, which drops only ANDROID_LOG_UNKNOWN. Tags that the variable names ("TAG:D") keep
// their own minimum priorities.
int32_t __android_log_set_minimum_priority(int32_t priority);

#ifdef __cplusplus
}
#endif
