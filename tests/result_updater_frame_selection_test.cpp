#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <numeric>
#include <sstream>

#include "case_name.h"
#include "result_scene.h"

namespace orlu {
namespace {

using test::left;
using test::LeftValue;
using test::ResultScene;

std::vector<jobject> framesFrom1000(int count) {
  std::vector<jobject> compositions;
  for (int i = 0; i < count; ++i) compositions.push_back(test::compositionAt(1000 + i));
  return compositions;
}

std::vector<double> counting(int count, double first) {
  std::vector<double> values;
  for (int i = 0; i < count; ++i) values.push_back(first + i);
  return values;
}

// Scores 0.5, 1.5, 2.5, ...
LeftValue scores(int count) {
  return left<double>("parameter", "frame_clarity_score", counting(count, 0.5));
}

std::string numbers(int count, double first) {
  std::ostringstream text;
  for (double value : counting(count, first)) text << ' ' << value;
  return text.str();
}

// Returns the lines that contain any of the parts.
std::string linesWith(const std::string& text, std::initializer_list<const char*> parts) {
  std::istringstream in(text);
  std::string found;
  for (std::string line; std::getline(in, line);) {
    const auto isIn = [&line](const char* part) { return line.find(part) != std::string::npos; };
    if (std::any_of(parts.begin(), parts.end(), isIn)) found += line + '\n';
  }
  return found;
}

void translateClarity(ResultScene& scene, int inputs, int compositions) {
  scene.algorithms = {"jpegBokehOnly", "ppt", "jpegEncode", "frameClarOnly", "hdr", "bestMoment"};
  scene.inputs = inputs;
  scene.values = {scores(60), left("parameter", "step_beauty_type", {1}),
                  left("feedback", "current_base_frame_idx", {0})};
  scene.compositions = framesFrom1000(compositions);
  scene.translate();
  EXPECT_EQ("", scene.changeOfOutput(0) + scene.changeOfOutput(1));
}

TEST(ResultUpdaterClarityTest, PutsOneScoreForEachInputAndNothingElse) {
  // The updater reads only the first fifty of the sixty scores.
  const std::pair<int, std::string> cases[] = {
      {0,                  ""},
      {  3,    " 0.5 1.5 2.5"  },
      { 52, numbers(50,   0.5) + " 0.0 0.0"}
  };
  for (const auto& [inputs, expected] : cases) {
    ResultScene scene;
    translateClarity(scene, inputs, 2);
    EXPECT_EQ("0 orlu.feedback.clarityScore double[]" + expected + '\n', scene.puts());
    std::string log;
    for (int i = 0; i < inputs; ++i) {
      log += "D updateForFrameClarity i = " + std::to_string(i) +
             ",clarityScore = " + std::to_string(i < 50 ? 0.5 + i : 0) + '\n';
    }
    EXPECT_EQ(log, scene.log());
  }
}

TEST(ResultUpdaterClarityTest, NeedsAComposition) {
  ResultScene scene;
  translateClarity(scene, 1, 0);
  EXPECT_EQ("", scene.puts());
  EXPECT_EQ("E updateForFrameClarity failed, captureResultCompositions size < 1\n", scene.log());
}

struct SelectCase : test::NamedCase {
  int frames;
  std::vector<int32_t> selected;
  // Timestamps in "orlu.feedback.frameSelectResult". "none": the translation fails and puts neither key.
  std::string kept;
  std::string discarded;  // scores of discarded frames in "orlu.feedback.clarityScore"
};

class ResultUpdaterSelectTest : public testing::TestWithParam<SelectCase> {};

TEST_P(ResultUpdaterSelectTest, PutsTimesOfKeptAndScoresOfDiscardedFrames) {
  const SelectCase& c = GetParam();
  ResultScene scene;
  scene.values = {scores(50), left("feedback", "frame_select_result", c.selected)};
  scene.compositions = framesFrom1000(c.frames);
  scene.translate();
  const bool failed = c.kept == "none";
  EXPECT_EQ(failed ? ""
                   : "0 orlu.feedback.frameSelectResult long[]" + c.kept +
                         "\n0 orlu.feedback.clarityScore double[]" + c.discarded + "\n",
            linesWith(scene.puts(), {"frameSelectResult", "clarityScore", "basicFrame"}));
  EXPECT_EQ(failed ? "E callbackFrameSelectResult failed, frameIndex out of range\n" : "",
            linesWith(scene.log(), {"E callback"}));
  // The other results are put even after a failure.
  EXPECT_NE(std::string::npos, scene.puts().find("TunningMode Integer 0\n"));
}

std::vector<int32_t> first20() {
  std::vector<int32_t> all(20);
  std::iota(all.begin(), all.end(), 0);
  return all;
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Cases, ResultUpdaterSelectTest, testing::Values(
    SelectCase{"Reordered",        3,  {2, -1, 0},        " 1002 1000",          " 1.5"},
    SelectCase{"OneTwice",         2,  {1, 1},            " 1001 1001",          ""},
    SelectCase{"Unset",            3,  {},                "",                    " 0.5 1.5 2.5"},
    SelectCase{"AnyNegative",      2,  {-7, 0},           " 1000",               " 0.5"},
    SelectCase{"IndexOfTheCount",  3,  {0, 3, -1},        "none",                ""},
    SelectCase{"IndexFarOut",      2,  {0, 0x7FFFFFFF},   "none",                ""},
    SelectCase{"UnusedOutOfRange", 2,  {1, 0, 99},        " 1001 1000",          ""},
    SelectCase{"PastScores",       52, first20(),         numbers(20, 1000),     numbers(30, 20.5) + " 0.0 0.0"},
    SelectCase{"LateFrameKept",    25, {24},              " 1024",               numbers(24, 1.5)}),
    test::CaseName());
// clang-format on

struct BaseCase : test::NamedCase {
  int frames;
  int32_t index;
  int64_t time;
  std::string put;
  std::string log;
};

class ResultUpdaterBaseFrameTest : public testing::TestWithParam<BaseCase> {};

TEST_P(ResultUpdaterBaseFrameTest, PutsItsTime) {
  const BaseCase& c = GetParam();
  ResultScene scene;
  scene.values = {left("feedback", "current_base_frame_idx", {c.index}),
                  left<int64_t>("control", "current_base_frame_time", {c.time})};
  scene.compositions = framesFrom1000(c.frames);
  scene.translate();
  const std::string put = c.put.empty() ? "" : "0 orlu.feedback.basicFrameTimestamp Long " + c.put + '\n';
  EXPECT_EQ(put, linesWith(scene.puts(), {"basicFrameTimestamp"}));
  EXPECT_EQ(c.log, linesWith(scene.log(), {"BasicFrame", "urrentBaseFrame"}));
}

const std::string kChosen = "D callbackSelectBasicFrameIndex currentBaseFrameIdx ";
const std::string kTold = "D callbackSelectBasicFrameIndex currentBaseFrameTime ";
// The updater logs the time as a long, which has 32 bits on some machines.
const std::string kLargeTimeAsLong = std::to_string(static_cast<long>(0x123456789ABCDEF));
const std::string kTooFar = "E currentBaseFrameIdx > size\n";

// clang-format off
INSTANTIATE_TEST_SUITE_P(Cases, ResultUpdaterBaseFrameTest, testing::Values(
    BaseCase{"First",            3, 0,  0,    "1000", kChosen + "0, resultTimeStamps 1000\n"},
    BaseCase{"Last",             3, 2,  0,    "1002", kChosen + "2, resultTimeStamps 1002\n"},
    BaseCase{"IndexOfTheCount",  3, 3,  0,    "1000", kTooFar + kChosen + "0, resultTimeStamps 1000\n"},
    BaseCase{"TimeOverBadIndex", 2, 9,  -5,   "-5",   kTold + "-5, timeStamps 1000\n" + kChosen + "9, resultTimeStamps -5\n"},
    BaseCase{"LargeTime",        1, 0,  0x123456789ABCDEF, "81985529216486895",
             kTold + "81985529216486895, timeStamps 1000\n" + kChosen + "0, resultTimeStamps " + kLargeTimeAsLong + '\n'},
    BaseCase{"NotChosen",        3, -1, 1234, "",     ""},
    BaseCase{"AnyNegative",      3, -9, 0,    "",     ""},
    BaseCase{"NoFrames",         0, 0,  0,    "",     kTooFar + "E currentBaseFrameIdx still > timeStamps size\n"}),
    test::CaseName());
// clang-format on

TEST(ResultUpdaterTimestampTest, IsZeroForAFrameWithoutOne) {
  ResultScene scene;
  scene.values = {left("feedback", "current_base_frame_idx", {1}),
                  left("feedback", "frame_select_result", {1, 0})};
  scene.compositions = {test::compositionAt(77), test::newComposition()};
  scene.translate();
  EXPECT_EQ("0 orlu.feedback.frameSelectResult long[] 0 77\n0 orlu.feedback.basicFrameTimestamp Long 0\n",
            linesWith(scene.puts(), {"frameSelectResult", "basicFrame"}));
}

// The error about a frame's missing timestamp precedes the line about that frame.
TEST(ResultUpdaterTimestampTest, IsReadAndLoggedFrameByFrame) {
  ResultScene scene;
  scene.compositions = {test::newComposition(), test::newComposition()};
  scene.translate();
  size_t at = 0;
  for (const char* line : {"get android.sensor.timestamp is null\n", "frameSelect update 0 ",
                           "get android.sensor.timestamp is null\n", "frameSelect update 1 "}) {
    at = scene.wholeLog().find(line, at);
    EXPECT_NE(std::string::npos, at) << line << scene.wholeLog();
  }
}

}  // namespace
}  // namespace orlu
