// Formats the log as lines that tests compare in full.
#pragma once

#include <string>
#include <vector>

#include "log_capture.h"

namespace orlu::test {

using Lines = std::vector<std::string>;

// Returns each line of the log as "tag: message", or as "tag: * message" if it has a file:line prefix. "?"
// precedes lines that are not errors.
inline Lines errorLines(const LogCapture& log) {
  Lines lines;
  for (const LogLine& line : log.lines()) {
    const char* const mark = line.priority == ANDROID_LOG_ERROR ? "" : "?";
    lines.push_back(mark + line.tag + (line.file.empty() ? ": " : ": * ") + line.message);
  }
  return lines;
}

// Returns one line per error, as errorLines() does. Lines of `tag` with a file:line prefix are reduced to the
// message.
inline std::string errorText(const LogCapture& log, const std::string& tag) {
  const std::string usual = tag + ": * ";
  std::string text;
  for (const std::string& line : errorLines(log)) {
    if (line[0] == '?') continue;
    text += (line.compare(0, usual.size(), usual) == 0 ? line.substr(usual.size()) : line) + '\n';
  }
  return text;
}

// Joins the lines to one text. If two texts are unequal, the failure prints the lines that differ.
inline std::string joined(const Lines& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

}  // namespace orlu::test
