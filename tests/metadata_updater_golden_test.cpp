// Each text file in golden/ contains a request and the complete translation of its metadata, in order.
// Each variation changes such a text slightly and lists the effects on values, algorithms and log lines.

#include <gtest/gtest.h>

#include <ostream>

#include "golden_run.h"
#include "log_texts.h"

namespace orlu::test {

void PrintTo(const GoldenCase& golden, std::ostream* out) {
  *out << golden.name;
}

namespace {

void report(const std::vector<GoldenLine>& failures) {
  for (const GoldenLine& line : failures) ADD_FAILURE_AT(line.file.c_str(), line.number) << line.text;
}

// Runs and checks a request twice: as written, and with its tags in compositions, where they override wrong
// values in the capture results.
template <typename Check>
void checkBoth(const GoldenCase& golden, const Check& check) {
  Algo algo;
  for (const bool isOverridden : {false, true}) {
    SCOPED_TRACE(isOverridden ? "with every tag in a composition, overriding another value" : "as written");
    const LogCapture log;
    const GoldenRun run = runGolden(isOverridden ? withOverrides(golden) : golden, algo);
    report(check(run, log));
  }
}

struct FirstWord {
  std::string operator()(const testing::TestParamInfo<GoldenCase>& tested) const {
    return tested.param.name.substr(0, tested.param.name.find(' '));
  }
};

class MetadataUpdaterGoldenTest : public testing::TestWithParam<GoldenCase> {};

TEST_P(MetadataUpdaterGoldenTest, TranslatesAsWritten) {
  checkBoth(GetParam(), [](const auto& run, const auto&) { return checkGoldenText(GetParam(), run); });
}

INSTANTIATE_TEST_SUITE_P(Captures, MetadataUpdaterGoldenTest, testing::ValuesIn(allGoldenTexts()),
                         FirstWord());

class MetadataUpdaterVariationTest : public testing::TestWithParam<GoldenCase> {};

TEST_P(MetadataUpdaterVariationTest, ChangesWhatItMust) {
  checkBoth(GetParam(),
            [](const auto& run, const auto& log) { return checkGoldenVariation(GetParam(), run, log); });
}

INSTANTIATE_TEST_SUITE_P(Variations, MetadataUpdaterVariationTest, testing::ValuesIn(allGoldenVariations()),
                         FirstWord());

// Engineers search the log for the operation's name, so a helper function's name must not replace it.
TEST(MetadataUpdaterLogTest, EveryLineShowsTheOperationThatItsTextNames) {
  Algo algo;
  algo.script.wanted = {
      {"orlu.parameter", "remosaicOTPData", 8}
  };
  algo.use();
  const LogCapture log;
  for (const auto& captures : {allGoldenTexts(), allGoldenVariations()}) {
    for (const GoldenCase& capture : captures) {
      // The first translation finds the master frames. Only a second translation logs their list.
      runGolden(capture, algo, [](MetadataUpdater& updater) { updater.updateMetadata(); });
    }
  }
  LogTexts texts;
  EXPECT_TRUE(texts.haveAll(log.lines()));
  for (const GoldenLine& line : texts.unseen("MetadataUpdater")) {
    ADD_FAILURE_AT(line.file.c_str(), line.number) << "never logged: " << line.text;
  }
}

}  // namespace
}  // namespace orlu::test
