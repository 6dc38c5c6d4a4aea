// Each text in golden/ is one kind of capture: what its request holds, and all that translating its metadata
// must come to, in order.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "golden_run.h"

namespace orlu {
namespace {

using test::GoldenCase;
using test::GoldenRun;

// Every text there is: one that is added is run.
std::vector<std::string> goldenNames() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(ORLU_TEST_GOLDEN_PATH)) {
    if (entry.path().extension() == ".txt") names.push_back(entry.path().stem());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::vector<std::string> putLines(const std::vector<test::GoldenPut>& puts) {
  std::vector<std::string> lines;
  for (const test::GoldenPut& put : puts) {
    lines.push_back(std::to_string(put.frame) + ' ' + put.key + ' ' +
                    test::describeBytes(put.value.type, put.value.bytes));
  }
  return lines;
}

AlgoFrameInfo changed(AlgoFrameInfo frame, const test::GoldenOutput& output) {
  frame.width = output.width;
  frame.height = output.height;
  frame.stride[0] = output.stride;
  frame.scanline[0] = output.scanline;
  frame.planeSize[0] = output.planeSizes[0];
  frame.planeSize[1] = output.planeSizes[1];
  return frame;
}

void expectOutputs(const GoldenCase& golden, const GoldenRun& run) {
  ASSERT_EQ(golden.outputs.size(), run.outputsAfter.size());
  for (size_t i = 0; i < run.outputsAfter.size(); ++i) {
    const auto change = golden.changedOutputs.find(static_cast<int>(i));
    const AlgoFrameInfo& before = run.outputsBefore[i];
    EXPECT_EQ(
        test::describeFrame(change == golden.changedOutputs.end() ? before : changed(before, change->second)),
        test::describeFrame(run.outputsAfter[i]))
        << "output " << i;
  }
}

class MetadataUpdaterGoldenTest : public testing::TestWithParam<std::string> {};

TEST_P(MetadataUpdaterGoldenTest, TranslatesAsWritten) {
  const GoldenCase golden = test::readGoldenCase(ORLU_TEST_GOLDEN_PATH + GetParam() + ".txt");
  test::Algo algo;
  const GoldenRun run = test::runGolden(golden, algo);
  EXPECT_EQ(writeLines(golden.writes, golden.writes), writeLines(run.writes, golden.writes));
  EXPECT_EQ(golden.algorithmsAfter, run.algorithms);
  EXPECT_EQ(putLines(golden.puts), putLines(run.puts));
  EXPECT_EQ(golden.skip, run.skip);
  expectOutputs(golden, run);
}

INSTANTIATE_TEST_SUITE_P(Captures, MetadataUpdaterGoldenTest, testing::ValuesIn(goldenNames()),
                         [](const auto& tested) { return tested.param; });

// A text that went missing would not be missed otherwise.
TEST(MetadataUpdaterGoldenTexts, EveryKindOfCaptureHasAText) {
  EXPECT_EQ(25U, goldenNames().size());
}

}  // namespace
}  // namespace orlu
