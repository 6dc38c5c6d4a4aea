// The errors of a captured log as one text, of which a failure prints the lines that differ.
#pragma once

#include <string>

#include "error_lines.h"

namespace orlu::test {

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

}  // namespace orlu::test
