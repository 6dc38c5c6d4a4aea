// What people, scripts and CI get to see of the checks.
#pragma once

#include <string>
#include <vector>

#include "check.h"

namespace orlu::conform {

struct CheckResult {
  const Check* check;
  Outcome outcome;
};

// One line for each check: verdict, name, evidence. A warning and further evidence follow in lines of their
// own.
std::string lineOf(const CheckResult& result);
// All of them as one JSON object.
std::string jsonOf(const std::vector<CheckResult>& results);

}  // namespace orlu::conform
