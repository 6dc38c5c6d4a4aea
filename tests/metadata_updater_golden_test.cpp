// Each text in golden/ is one kind of capture: what its request holds, and all that translating its metadata
// must come to, in order. Each variation is a small change of one, with the values, the algorithm list and
// the log lines that must change with it.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <ostream>

#include "case_name.h"
#include "golden_check.h"
#include "golden_variation.h"
#include "log_capture.h"
#include "paths.h"

namespace orlu::test {

void PrintTo(const GoldenVariation& variation, std::ostream* out) {
  *out << variation.name << " of " << variation.base;
}

namespace {

// Every text in a folder of golden texts: one that is added is run.
std::vector<std::filesystem::path> textsIn(const std::string& folder) {
  std::vector<std::filesystem::path> texts;
  for (const auto& entry : std::filesystem::directory_iterator(goldenFolder() + folder)) {
    if (entry.path().extension() == ".txt") texts.push_back(entry.path());
  }
  std::sort(texts.begin(), texts.end());
  return texts;
}

std::vector<std::string> captureNames() {
  std::vector<std::string> names;
  for (const auto& path : textsIn("")) names.push_back(path.stem());
  return names;
}

std::vector<GoldenVariation> allVariations() {
  std::vector<GoldenVariation> all;
  for (const auto& path : textsIn("variations")) {
    const std::vector<GoldenVariation> read = readGoldenVariations(path);
    all.insert(all.end(), read.begin(), read.end());
  }
  return all;
}

void report(const std::vector<GoldenFailure>& failures) {
  for (const GoldenFailure& failure : failures) {
    ADD_FAILURE_AT(failure.place.file.c_str(), failure.place.line) << failure.text;
  }
}

class MetadataUpdaterGoldenTest : public testing::TestWithParam<std::string> {};

TEST_P(MetadataUpdaterGoldenTest, TranslatesAsWritten) {
  const GoldenCase golden = readGoldenCase(GetParam());
  Algo algo;
  const LogCapture log;
  report(checkGolden(golden, runGolden(golden, algo)));
  SCOPED_TRACE("with every tag in a composition, over another value");
  report(checkGolden(golden, runGolden(withOverrides(golden), algo)));
}

INSTANTIATE_TEST_SUITE_P(Captures, MetadataUpdaterGoldenTest, testing::ValuesIn(captureNames()),
                         [](const auto& tested) { return tested.param; });

class MetadataUpdaterVariationTest : public testing::TestWithParam<GoldenVariation> {};

TEST_P(MetadataUpdaterVariationTest, ChangesWhatItMust) {
  report(checkVariation(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Variations, MetadataUpdaterVariationTest, testing::ValuesIn(allVariations()),
                         CaseName());

}  // namespace
}  // namespace orlu::test
