// Small changes of a golden request, and what they change in its translation. golden/README.md describes the
// notation.
#pragma once

#include <string>
#include <vector>

#include "golden_check.h"

namespace orlu::test {

struct GoldenVariation {
  std::string name;
  std::string base;  // the golden text it is of
  GoldenPlace place;
  std::vector<GoldenLine> changes;       // lines of the request or of tags
  std::vector<GoldenLine> expectations;  // without their ">"
};

// All variations of a file. Throws std::runtime_error for what it does not understand.
std::vector<GoldenVariation> readGoldenVariations(const std::string& path);

// Runs a variation. The expectations that are not met, each with what was found instead.
std::vector<GoldenFailure> checkVariation(const GoldenVariation& variation);

}  // namespace orlu::test
