// Everything that is logged during its life, from any thread.
#pragma once

#include <android/log.h>

#include <mutex>
#include <string>
#include <vector>

namespace orlu::test {

struct LogLine {
  int priority;
  std::string tag;
  std::string message;  // with its prefix
};

class LogCapture {
public:
  LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;
  ~LogCapture();

  std::vector<LogLine> lines() const;
  void clear();
  // How many lines of this priority end with `message`, behind their prefix or without one.
  int count(int priority, const std::string& tag, const std::string& message) const;
  int errors(const std::string& tag, const std::string& message) const {
    return count(ANDROID_LOG_ERROR, tag, message);
  }
  bool contains(const std::string& text) const;
  // All lines in one text, for failure messages.
  std::string text() const;

private:
  static void log(const __android_log_message* message);

  mutable std::mutex mMutex;
  std::vector<LogLine> mLines;
};

}  // namespace orlu::test
