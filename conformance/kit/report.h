// Formats the results of checks: lines for people, and JSON for programs.
#pragma once

#include <string>
#include <vector>

#include "check.h"

namespace orlu::conform {

struct CheckResult {
  const Check* check;
  Outcome outcome;
};

// Returns a line with the check's verdict, name and promise; for a skipped check, the reason replaces the
// promise. The evidence of a failure and the warnings follow on indented lines. The text has no final line
// end.
std::string lineOf(const CheckResult& result);
std::string jsonOf(const std::vector<CheckResult>& results);

}  // namespace orlu::conform
