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

// One line per check: verdict, name, evidence. Warnings and further evidence follow on separate lines.
std::string lineOf(const CheckResult& result);
// All results as one JSON object.
std::string jsonOf(const std::vector<CheckResult>& results);

}  // namespace orlu::conform
