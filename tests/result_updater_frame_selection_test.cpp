#include <gtest/gtest.h>

#include "case_name.h"
#include "result_scene.h"

namespace orlu {
namespace {

using test::left;
using test::LeftValue;
using test::ResultScene;

// Frames exposed at 1000, 1001, 1002, ...
std::vector<jobject> framesFrom1000(int count) {
  std::vector<jobject> compositions;
  for (int i = 0; i < count; ++i) compositions.push_back(test::compositionAt(1000 + i));
  return compositions;
}

// Scores 0.5, 1.5, 2.5, ...
LeftValue scores(int count) {
  std::vector<double> values;
  for (int i = 0; i < count; ++i) values.push_back(0.5 + i);
  return left<double>("parameter", "frame_clarity_score", values);
}

std::string numbers(int count, double first) {
  std::ostringstream text;
  for (int i = 0; i < count; ++i) text << ' ' << first + i;
  return text.str();
}

// The lines of a text that hold one of the words.
std::string linesWith(const std::string& text, const std::vector<std::string>& words) {
  std::istringstream in(text);
  std::string found;
  for (std::string line; std::getline(in, line);) {
    for (const std::string& word : words) {
      if (line.find(word) == std::string::npos) continue;
      found += line + '\n';
      break;
    }
  }
  return found;
}

// The puts and lines of the frame selection alone.
std::string selectionPuts(const ResultScene& scene) {
  return linesWith(scene.puts(), {"frameSelectResult", "clarityScore", "basicFrameTimestamp"});
}

std::string selectionLog(const ResultScene& scene) {
  return linesWith(scene.log(), {"rameSelect", "BasicFrame", "urrentBaseFrame", "larity"});
}

// ---- Clarity alone

struct ClarityCase {
  const char* name;
  int inputs;
  int scores;
  std::string put;
};

class ResultUpdaterClarityTest : public testing::TestWithParam<ClarityCase> {};

TEST_P(ResultUpdaterClarityTest, PutsOneScoreForEachInputAndNothingElse) {
  const ClarityCase& c = GetParam();
  ResultScene scene;
  scene.algorithms = {"jpegBokehOnly", "ppt", "jpegEncode", "frameClarOnly", "hdr", "bestMoment"};
  scene.inputs = c.inputs;
  scene.values = {scores(c.scores), left("parameter", "step_beauty_type", {1}),
                  left("feedback", "current_base_frame_idx", {0})};
  scene.compositions = framesFrom1000(2);
  scene.translate();
  EXPECT_EQ("0 orlu.feedback.clarityScore double[]" + c.put + "\n", scene.puts());
  EXPECT_EQ("", scene.changeOfOutput(0) + scene.changeOfOutput(1));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ResultUpdaterClarityTest,
    testing::Values(ClarityCase{"NoInput", 0, 3, ""}, ClarityCase{"Three", 3, 5, " 0.5 1.5 2.5"},
                    ClarityCase{"Unset", 2, 0, " 0 0"}, ClarityCase{"FullTable", 50, 50, numbers(50, 0.5)},
                    ClarityCase{"PastTheTable", 60, 60, numbers(50, 0.5) + " 0 0 0 0 0 0 0 0 0 0"}),
    test::CaseName());

TEST(ResultUpdaterClarityLogTest, TellsEveryScore) {
  ResultScene scene;
  scene.algorithms = {"frameClarOnly"};
  scene.inputs = 2;
  scene.values = {scores(2)};
  scene.compositions = framesFrom1000(1);
  scene.translate();
  EXPECT_EQ(
      "D updateForFrameClarity i = 0,clarityScore = 0.500000\n"
      "D updateForFrameClarity i = 1,clarityScore = 1.500000\n",
      scene.log());
}

TEST(ResultUpdaterClarityLogTest, TellsThatThereIsNoComposition) {
  ResultScene scene;
  scene.algorithms = {"frameClarOnly"};
  scene.values = {scores(2)};
  scene.translate();
  EXPECT_EQ("E updateForFrameClarity failed, captureResultCompositions size < 1\n", scene.log());
}

// ---- Frames kept and thrown away

struct SelectCase {
  const char* name;
  int frames;
  std::vector<int32_t> selected;
  std::string kept;    // of "orlu.feedback.frameSelectResult"; "none": neither key
  std::string thrown;  // of "orlu.feedback.clarityScore"
};

class ResultUpdaterSelectTest : public testing::TestWithParam<SelectCase> {};

TEST_P(ResultUpdaterSelectTest, PutsKeptFramesByTimeAndThrownOnesByScore) {
  const SelectCase& c = GetParam();
  ResultScene scene;
  scene.values = {scores(50)};
  if (!c.selected.empty()) scene.values.push_back(left("feedback", "frame_select_result", c.selected));
  scene.compositions = framesFrom1000(c.frames);
  scene.translate();
  EXPECT_EQ(c.kept == "none" ? ""
                             : "0 orlu.feedback.frameSelectResult long[]" + c.kept +
                                   "\n0 orlu.feedback.clarityScore double[]" + c.thrown + "\n",
            selectionPuts(scene));
  const std::string error = "E callbackFrameSelectResult failed, frameIndex out of range\n";
  EXPECT_EQ(c.kept == "none" ? error : "", linesWith(scene.log(), {"E callback"}));
  // The rest of the results are put all the same.
  EXPECT_NE(std::string::npos, scene.puts().find("TunningMode Integer 0\n"));
}

std::vector<int32_t> first20() {
  std::vector<int32_t> all(20);
  for (int32_t i = 0; i < 20; ++i) all[static_cast<size_t>(i)] = i;
  return all;
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Cases, ResultUpdaterSelectTest, testing::Values(
    SelectCase{"Reordered",        3,  {2, -1, 0},        " 1002 1000",          " 1.5"},
    SelectCase{"AllKept",          3,  {0, 1, 2},         " 1000 1001 1002",     ""},
    SelectCase{"OneTwice",         2,  {1, 1},            " 1001 1001",          ""},
    SelectCase{"Unset",            3,  {},                "",                    " 0.5 1.5 2.5"},
    SelectCase{"AnyNegative",      2,  {-7, 0},           " 1000",               " 0.5"},
    SelectCase{"IndexOfTheCount",  3,  {0, 3, -1},        "none",                ""},
    SelectCase{"IndexFarOut",      2,  {0, 0x7FFFFFFF},   "none",                ""},
    SelectCase{"OutOfUnusedEntry", 2,  {1, 0, 99},        " 1001 1000",          ""},
    SelectCase{"PastSelections",   25, first20(),         numbers(20, 1000),     numbers(5, 20.5)},
    SelectCase{"PastScores",       52, first20(),         numbers(20, 1000),     numbers(30, 20.5) + " 0 0"},
    SelectCase{"LateFrameKept",    25, {24},              " 1024",               numbers(24, 1.5)}),
    test::CaseName());
// clang-format on

TEST(ResultUpdaterSelectLogTest, TellsEveryFrame) {
  ResultScene scene;
  scene.values = {scores(3), left("feedback", "frame_select_result", {1, -1})};
  scene.compositions = framesFrom1000(2);
  scene.translate();
  EXPECT_EQ(
      "D frameSelect update 0 Score 0.5000, timeStamps 1000, need throw: 1\n"
      "D frameSelect update 1 Score 1.5000, timeStamps 1001, need throw: -1\n",
      selectionLog(scene));
}

// ---- The base frame

struct BaseCase {
  const char* name;
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
// The line's format has a long, which is shorter on some machines.
const std::string kLargeTimeAsLong = std::to_string(static_cast<long>(0x123456789ABCDEF));
const std::string kTooFar = "E currentBaseFrameIdx > size\n";
const std::string kNoFrame = kTooFar + "E currentBaseFrameIdx still > timeStamps size\n";
const std::string kNoComposition =
    "E callbackSelectBasicFrameIndex failed, captureResultCompositions size < 1\n";

// clang-format off
INSTANTIATE_TEST_SUITE_P(Cases, ResultUpdaterBaseFrameTest, testing::Values(
    BaseCase{"ByIndex",          3, 1,  0,    "1001", kChosen + "1, resultTimeStamps 1001\n"},
    BaseCase{"First",            3, 0,  0,    "1000", kChosen + "0, resultTimeStamps 1000\n"},
    BaseCase{"IndexOfTheCount",  3, 3,  0,    "1000", kTooFar + kChosen + "0, resultTimeStamps 1000\n"},
    BaseCase{"IndexFarOut",      3, 5,  0,    "1000", kTooFar + kChosen + "0, resultTimeStamps 1000\n"},
    BaseCase{"TimeWins",         3, 1,  1234, "1234", kTold + "1234, timeStamps 1000\n" + kChosen + "1, resultTimeStamps 1234\n"},
    BaseCase{"TimeWinsFarOut",   2, 9,  1234, "1234", kTold + "1234, timeStamps 1000\n" + kChosen + "9, resultTimeStamps 1234\n"},
    BaseCase{"NegativeTime",     2, 0,  -5,   "-5",   kTold + "-5, timeStamps 1000\n" + kChosen + "0, resultTimeStamps -5\n"},
    BaseCase{"LargeTime",        1, 0,  0x123456789ABCDEF, "81985529216486895",
             kTold + "81985529216486895, timeStamps 1000\n" + kChosen + "0, resultTimeStamps " + kLargeTimeAsLong + '\n'},
    BaseCase{"NotChosen",        3, -1, 1234, "",     ""},
    BaseCase{"AnyNegative",      3, -9, 0,    "",     ""},
    BaseCase{"NoFrames",         0, 0,  0,    "",     kNoFrame},
    BaseCase{"NoFramesFarOut",   0, 4,  0,    "",     kNoFrame},
    BaseCase{"TimeWithoutFrame", 0, 0,  1234, "",     kTold + "1234, timeStamps 0\n" + kNoComposition}),
    test::CaseName());
// clang-format on

TEST(ResultUpdaterTimestampTest, IsZeroForAFrameWithoutOne) {
  ResultScene scene;
  scene.values = {left("feedback", "current_base_frame_idx", {1}),
                  left("feedback", "frame_select_result", {1, 0})};
  scene.compositions = {test::compositionAt(77), test::newComposition()};
  scene.translate();
  EXPECT_EQ(
      "0 orlu.feedback.frameSelectResult long[] 0 77\n"
      "0 orlu.feedback.clarityScore double[]\n"
      "0 orlu.feedback.basicFrameTimestamp Long 0\n",
      selectionPuts(scene));
}

}  // namespace
}  // namespace orlu
