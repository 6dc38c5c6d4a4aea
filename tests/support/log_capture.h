// Captures the log of all threads while a LogCapture lives. Only the innermost capture receives lines.
// Without a capture, lines go to standard error.
#pragma once

#include <android/log.h>

#include <mutex>
#include <string>
#include <vector>

namespace orlu::test {

// A logged line. Most lines begin with "file.cpp:12 function() "; for the others, `file` and `function` are
// empty.
struct LogLine {
  int priority;
  std::string tag;
  std::string file;  // "vrequest.cpp"
  std::string function;
  std::string message;  // after the prefix

  // "file function() message", or only the message.
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
  // Returns the number of lines with this priority, tag and message, whatever their prefix.
  int count(int priority, const std::string& tag, const std::string& message) const;
  int errors(const std::string& tag, const std::string& message) const {
    return count(ANDROID_LOG_ERROR, tag, message);
  }
  // Returns true if text() contains this part.
  bool contains(const std::string& part) const;
  // Returns every line with a prefix that any capture has received so far, without duplicates.
  static std::vector<LogLine> everything();
  // Returns all lines as "tag: file function() message", each with a newline.
  std::string text() const;

private:
  static void log(const __android_log_message* message);

  LogCapture* const mOuter;
  mutable std::mutex mMutex;
  std::vector<LogLine> mLines;
};

// Discards the log until the next capture begins.
inline void silenceLog() {
  __android_log_set_logger([](const __android_log_message*) {});
}

}  // namespace orlu::test
