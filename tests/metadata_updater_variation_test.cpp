// Small changes of the golden requests, each with the values, the algorithm list and the log lines that must
// change with it.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <ostream>

#include "case_name.h"
#include "golden_variation.h"
#include "paths.h"

namespace orlu::test {

// A failure tells the variation by its name.
void PrintTo(const GoldenVariation& variation, std::ostream* out) {
  *out << variation.name << " of " << variation.base;
}

namespace {

std::vector<GoldenVariation> allVariations() {
  std::vector<std::string> paths;
  for (const auto& entry : std::filesystem::directory_iterator(goldenFolder() + "variations")) {
    paths.push_back(entry.path());
  }
  std::sort(paths.begin(), paths.end());
  std::vector<GoldenVariation> all;
  for (const std::string& path : paths) {
    const std::vector<GoldenVariation> read = readGoldenVariations(path);
    all.insert(all.end(), read.begin(), read.end());
  }
  return all;
}

class MetadataUpdaterVariationTest : public testing::TestWithParam<GoldenVariation> {};

TEST_P(MetadataUpdaterVariationTest, ChangesWhatItMust) {
  const std::string unmet = unmetExpectations(GetParam(), goldenFolder());
  EXPECT_TRUE(unmet.empty()) << unmet;
}

INSTANTIATE_TEST_SUITE_P(Variations, MetadataUpdaterVariationTest, testing::ValuesIn(allVariations()),
                         CaseName());

}  // namespace
}  // namespace orlu::test
