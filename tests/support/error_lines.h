// What was logged, as tests compare it whole: one text for each line.
#pragma once

#include <regex>
#include <string>
#include <vector>

#include "log_capture.h"

namespace orlu::test {

using Lines = std::vector<std::string>;

// "tag: message". A prefix of file, line and function is written as "*"; a line that is no error begins with
// "?".
inline Lines errorLines(const LogCapture& log) {
  static const std::regex prefix("^[a-z_]+\\.cpp:[0-9]+ ~?[A-Za-z]+\\(\\) ");
  Lines lines;
  for (const LogLine& line : log.lines()) {
    lines.push_back((line.priority == ANDROID_LOG_ERROR ? "" : "?") + line.tag + ": " +
                    std::regex_replace(line.message, prefix, "* "));
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
