// Each text in golden/ is one kind of capture: what its request holds, and all that translating its metadata
// must come to, in order.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "golden_run.h"
#include "paths.h"

namespace orlu {
namespace {

using test::GoldenCase;
using test::GoldenRun;

// Every text there is: one that is added is run.
std::vector<std::string> goldenNames() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(test::goldenFolder())) {
    if (entry.path().extension() == ".txt") names.push_back(entry.path().stem());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::vector<std::string> changedOutputs(const GoldenRun& run) {
  std::vector<std::string> lines;
  for (size_t i = 0; i < run.outputsAfter.size(); ++i) {
    const std::string line = test::describeOutput(run, i);
    if (line.find("unchanged") == std::string::npos) lines.push_back(line);
  }
  return lines;
}

class MetadataUpdaterGoldenTest : public testing::TestWithParam<std::string> {};

TEST_P(MetadataUpdaterGoldenTest, TranslatesAsWritten) {
  const GoldenCase golden = test::readGoldenCase(test::goldenFolder() + GetParam() + ".txt");
  test::Algo algo;
  const GoldenRun run = test::runGolden(golden, algo);
  EXPECT_EQ(writeLines(golden.writes, golden.writes), writeLines(run.writes, golden.writes));
  EXPECT_EQ(golden.algorithmsAfter, run.algorithms);
  EXPECT_EQ(golden.puts, run.puts);
  EXPECT_EQ(golden.skip, run.skip);
  EXPECT_EQ(golden.outputs.size(), run.outputsAfter.size());
  EXPECT_EQ(golden.changedOutputs, changedOutputs(run));
}

INSTANTIATE_TEST_SUITE_P(Captures, MetadataUpdaterGoldenTest, testing::ValuesIn(goldenNames()),
                         [](const auto& tested) { return tested.param; });

// A text that went missing would not be missed otherwise.
TEST(MetadataUpdaterGoldenTexts, EveryKindOfCaptureHasAText) {
  EXPECT_EQ(25U, goldenNames().size());
}

}  // namespace
}  // namespace orlu
