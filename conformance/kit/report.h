// What people, scripts and CI get to see of the checks.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "check.h"

namespace orlu::conform {

struct CheckResult {
  const Check* check;
  Outcome outcome;
};

// Returns a library's text safe to show: line ends and tabs stay, other control characters and characters
// that change the direction of what follows become \u001b and the like, invalid UTF-8 \xff.
std::string printable(std::string_view text);
// One line for each check: verdict, name, evidence. A warning and further evidence follow in lines of their
// own.
std::string lineOf(const CheckResult& result);
// All of them as one JSON object.
std::string jsonOf(const std::vector<CheckResult>& results);

}  // namespace orlu::conform
