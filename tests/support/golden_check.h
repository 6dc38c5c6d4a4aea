// Compares what a translation came to with a golden text.
#pragma once

#include <string>
#include <vector>

#include "golden_run.h"

namespace orlu::test {

// What is wrong, and the line of the text that says otherwise.
struct GoldenFailure {
  GoldenPlace place;
  std::string text;
};

// Everything in which `run` differs from the text: values, then lines that are missing or too many, then
// order.
std::vector<GoldenFailure> checkGolden(const GoldenCase& golden, const GoldenRun& run);

}  // namespace orlu::test
