// The errors of a captured log as one text, for comparisons of all that was logged.
#pragma once

#include <string>

#include "log_capture.h"

namespace orlu::test {

// "file.cpp:12 function() message" -> "message"; a line without such a prefix as "(bare) line".
inline std::string messageOf(const std::string& line) {
  const size_t colon = line.find(".cpp:");
  const size_t end = line.find("() ");
  const bool hasPrefix = colon != std::string::npos && end != std::string::npos && colon < end;
  return hasPrefix ? line.substr(end + 3) : "(bare) " + line;
}

// One line for each error. Those of another tag than `tag` begin with theirs.
inline std::string errorText(const LogCapture& log, const std::string& tag) {
  std::string text;
  for (const LogLine& line : log.lines()) {
    if (line.priority != ANDROID_LOG_ERROR) continue;
    text += (line.tag == tag ? "" : line.tag + ": ") + messageOf(line.message) + '\n';
  }
  return text;
}

}  // namespace orlu::test
