// Small changes of a golden request, and what they change in its translation. golden/README.md tells the
// notation.
#pragma once

#include <string>
#include <vector>

namespace orlu::test {

struct GoldenVariation {
  std::string name;
  std::string base;                       // the golden text it is of
  std::vector<std::string> changes;       // lines of the request or of tags
  std::vector<std::string> expectations;  // without their ">"
};

// All variations of a file. Throws std::runtime_error for what it does not understand.
std::vector<GoldenVariation> readGoldenVariations(const std::string& path);

// Runs a variation. The expectations that were not met, each with what was found instead; "" when all were.
std::string unmetExpectations(const GoldenVariation& variation, const std::string& goldenPath);

}  // namespace orlu::test
