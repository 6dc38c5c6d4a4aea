// What was logged, as tests compare it whole: one text for each line.
#pragma once

#include <string>
#include <vector>

#include "log_capture.h"

namespace orlu::test {

using Lines = std::vector<std::string>;

// "file.cpp:12 function() message" -> "* message"; what has no such prefix stays as it is.
inline std::string withoutPrefix(const std::string& message) {
  const size_t colon = message.find(".cpp:");
  const size_t end = message.find("() ");
  const bool hasPrefix = colon != std::string::npos && end != std::string::npos && colon < end;
  return hasPrefix ? "* " + message.substr(end + 3) : message;
}

// "tag: message". A prefix of file, line and function is written as "*"; a line that is no error begins with
// "?".
inline Lines errorLines(const LogCapture& log) {
  Lines lines;
  for (const LogLine& line : log.lines()) {
    lines.push_back((line.priority == ANDROID_LOG_ERROR ? "" : "?") + line.tag + ": " +
                    withoutPrefix(line.message));
  }
  return lines;
}

// One text, of which a failure prints the lines that differ.
inline std::string joined(const Lines& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

}  // namespace orlu::test
