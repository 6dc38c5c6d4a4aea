// Everything that is logged during its life, from any thread. The innermost capture takes a line; when the
// last one ends, lines go to standard error, as they do at the start of a program.
#pragma once

#include <android/log.h>

#include <mutex>
#include <string>
#include <vector>

namespace orlu::test {

// One line. Most begin with "file.cpp:12 function() "; file and function are empty for those that do not.
struct LogLine {
  int priority;
  std::string tag;
  std::string file;  // "vrequest.cpp"
  std::string function;
  std::string message;  // behind the prefix

  // "file function() message", or the message alone.
  std::string text() const { return file.empty() ? message : file + ' ' + function + "() " + message; }
};

class LogCapture {
public:
  LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;
  ~LogCapture();

  std::vector<LogLine> lines() const;
  void clear();
  // How many lines have this priority, tag and message; their prefix may be any.
  int count(int priority, const std::string& tag, const std::string& message) const;
  int errors(const std::string& tag, const std::string& message) const {
    return count(ANDROID_LOG_ERROR, tag, message);
  }
  // Whether "tag: file function() message" of any line has this part.
  bool contains(const std::string& part) const;
  // Every line with a prefix that any capture took so far, once for each of its messages.
  static std::vector<LogLine> everything();
  // All lines as "tag: file function() message", each with its end of line.
  std::string text() const;

private:
  static void log(const __android_log_message* message);

  LogCapture* const mOuter;
  mutable std::mutex mMutex;
  std::vector<LogLine> mLines;
};

// Nothing that is logged goes anywhere, until the next capture ends.
inline void silenceLog() {
  __android_log_set_logger([](const __android_log_message*) {});
}

}  // namespace orlu::test
