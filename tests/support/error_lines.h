// What was logged, as tests compare it whole: one text for each line.
#pragma once

#include <regex.h>

#include <string>
#include <vector>

#include "log_capture.h"

namespace orlu::test {

using Lines = std::vector<std::string>;

// A message whose prefix of file, line and function is written as "*". (Under AddressSanitizer, GCC 12 warns
// about the insides of std::regex.)
inline std::string withShortPrefix(const std::string& message) {
  static const regex_t prefix = [] {
    regex_t compiled;
    regcomp(&compiled, "^[a-z_]+\\.cpp:[0-9]+ ~?[A-Za-z]+\\(\\) ", REG_EXTENDED);
    return compiled;
  }();
  regmatch_t match;
  if (regexec(&prefix, message.c_str(), 1, &match, 0) != 0) return message;
  return "* " + message.substr(static_cast<size_t>(match.rm_eo));
}

// "tag: message", with its prefix shortened; a line that is no error begins with "?".
inline Lines errorLines(const LogCapture& log) {
  Lines lines;
  for (const LogLine& line : log.lines()) {
    const char* const mark = line.priority == ANDROID_LOG_ERROR ? "" : "?";
    lines.push_back(mark + line.tag + ": " + withShortPrefix(line.message));
  }
  return lines;
}

// One line for each error. Those under `tag`, with their prefix, show their message alone.
inline std::string errorText(const LogCapture& log, const std::string& tag) {
  const std::string usual = tag + ": * ";
  std::string text;
  for (const std::string& line : errorLines(log)) {
    if (line[0] == '?') continue;
    text += (line.compare(0, usual.size(), usual) == 0 ? line.substr(usual.size()) : line) + '\n';
  }
  return text;
}

// The line of an error that a class logs under its own tag.
inline std::string errorLine(const std::string& clazz, const std::string& message) {
  return "_V_VASJNI-" + clazz + ": * " + message;
}

// One text, of which a failure prints the lines that differ.
inline std::string joined(const Lines& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

}  // namespace orlu::test
