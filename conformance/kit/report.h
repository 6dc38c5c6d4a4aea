// Output of the results for people, scripts and CI.
#pragma once

#include <string>
#include <vector>

#include "check.h"

namespace orlu::conform {

struct CheckResult {
  const Check* check;
  Outcome outcome;
};

// Returns a line with the verdict, the name and the promise (if skipped, the reason instead). Evidence of a
// failure and warnings follow on indented lines. The text has no final line end.
std::string lineOf(const CheckResult& result);
std::string jsonOf(const std::vector<CheckResult>& results);

}  // namespace orlu::conform
