// Which operation each line of the updater's log shows: an engineer who reads a log looks for the name that
// the line says, so that no helper's name may stand there.

#include <gtest/gtest.h>

#include <filesystem>

#include "golden_run.h"
#include "golden_variation.h"
#include "log_capture.h"
#include "log_texts.h"
#include "paths.h"

namespace orlu::test {
namespace {

// Every kind of capture, and every variation of one.
std::vector<GoldenCase> allCaptures() {
  std::vector<GoldenCase> captures;
  for (const auto& entry : std::filesystem::directory_iterator(goldenFolder())) {
    if (entry.path().extension() == ".txt") captures.push_back(readGoldenCase(entry.path().stem()));
  }
  for (const auto& entry : std::filesystem::directory_iterator(goldenFolder() + "variations")) {
    for (const GoldenVariation& variation : readGoldenVariations(entry.path())) {
      GoldenCase& capture = captures.emplace_back(readGoldenCase(variation.base));
      for (const GoldenLine& line : variation.changes) changeGolden(capture, line);
    }
  }
  return captures;
}

TEST(MetadataUpdaterLogTest, EveryLineShowsTheOperationThatItsTextNames) {
  Algo algo;
  algo.script.wanted = {
      {"orlu.parameter", "remosaicOTPData", 8}
  };
  algo.use();
  const LogCapture log;
  for (const GoldenCase& capture : allCaptures()) {
    runGolden(capture, algo, [](MetadataUpdater& updater) {
      int type = 0;
      int index = 0;
      updater.updateRawnrHDRFrameIndex(type, index);
      updater.updateMetadata();  // which knows the master frames now from the beginning, and lists them
    });
  }
  LogTexts texts;
  EXPECT_TRUE(texts.haveAll(log.lines()));
  for (const GoldenLine& line : texts.unseen("MetadataUpdater")) {
    ADD_FAILURE_AT(line.place.file.c_str(), line.place.line) << "never logged: " << line.text;
  }
}

}  // namespace
}  // namespace orlu::test
