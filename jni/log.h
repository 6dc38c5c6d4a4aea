// Logging macros. Each .cpp file names its tag as `kLogTag` before it logs.
//
// Every line begins with the source file's base name, the line and the function. Debug lines are
// written only while the maker's log level admits them; errors always.
#pragma once

#include <android/log.h>
#include <orlu/camera3rd_log.h>

namespace orlu {

constexpr int kFirstSilentLogLevel = 4;

inline bool isDebugLogOn() {
  return gVAFCtrlLogLevel < kFirstSilentLogLevel;
}

// The base name of the .cpp file that includes this, found once: most lines are errors about tags that a shot
// does not carry, and few of them are ever read.
[[maybe_unused]] static const char* const kLogFile = get_filename(__BASE_FILE__);

}  // namespace orlu

// The empty string at the end gives the variadic part one argument at least, which C++17 wants.
#define ORLU_LOG_LINE(priority, operation, format, ...)                                                    \
  __android_log_print(priority, kLogTag, "%s:%d %s() " format "%s", ::orlu::kLogFile, __LINE__, operation, \
                      __VA_ARGS__)
#define ORLU_LOG_BARE(priority, tag, format, ...) __android_log_print(priority, tag, format "%s", __VA_ARGS__)

// For a helper, which is never shown: the line names the operation that it works for.
#define LOGE_AS(operation, ...) ORLU_LOG_LINE(ANDROID_LOG_ERROR, operation, __VA_ARGS__, "")
#define LOGD_AS(operation, ...)                                                               \
  do {                                                                                        \
    if (::orlu::isDebugLogOn()) ORLU_LOG_LINE(ANDROID_LOG_DEBUG, operation, __VA_ARGS__, ""); \
  } while (0)

#define LOGE(...) LOGE_AS(__func__, __VA_ARGS__)
#define LOGD(...) LOGD_AS(__func__, __VA_ARGS__)

// The few lines that carry a shorter tag and no prefix; not gated.
#define LOGE_BARE(tag, ...) ORLU_LOG_BARE(ANDROID_LOG_ERROR, tag, __VA_ARGS__, "")
#define LOGD_BARE(tag, ...) ORLU_LOG_BARE(ANDROID_LOG_DEBUG, tag, __VA_ARGS__, "")
