#include "result_updater.h"

#include <gtest/gtest.h>
#include <orlu/camera3rd_log.h>

#include <array>
#include <map>
#include <set>
#include <sstream>

#include "algo.h"
#include "case_name.h"
#include "result_scene.h"
#include "result_updater_table.h"

namespace orlu {
namespace {

using test::documentValues;
using test::everythingValues;
using test::kEnd;
using test::kEverything;
using test::kJpegValues;
using test::kResults;
using test::kUnsetEnd;
using test::left;
using test::LeftValue;
using test::putsOf;
using test::Result;
using test::ResultScene;
using test::resultsOf;

// ---- Every step in one request

// A request that ends a light stream and lists every algorithm that has results.
class ResultUpdaterStepsTest : public testing::Test {
protected:
  ResultUpdaterStepsTest() {
    mScene.algorithms = kEverything;
    mScene.requestType = "stopProcess";
  }

  test::Algo mAlgo;
  ResultScene mScene;
};

// Log of the steps before the frame selection.
const std::string kStepsLog =
    "D document: updateResult, algoProcessType value is 3  \n"
    "D document updateResult: algoClassType result is 5\n"
    "D docJpegSize:9000 w 320 h 240\n"
    "D algo process beautyfile beautyFaceNum = 2\n"
    "D algo process beautyfile beautyFaceRect[22 21 23 24]\n"
    "D jpeg encode hw/sw:1\n"
    "D refocus pack size 8888\n"
    "D lightstream stop, zoom 2.500000 crop (l 11 t 12 w 13 h 14)\n"
    "D algo process hdrChoosedFrame = 4\n"
    "D algo process segmentDetectResult = 2\n"
    "D* bestmoment upload index=6\n";
// Before the translation, ResultScene sets the Java image's width to 1. "64x48" then means that the updater
// set the size again, and "1x48" means that the updater did not set it.
const std::string kEncodedOutput = "JPEG 64x48 7777 1536 | 24 64x48 7777 7777 1536";
const std::string kPackedOutput = "JPEG 1x48 8888 1536 | 24 64x48 8888 8888 1536";
const std::string kDocumentOutput = "JPEG 320x240 9000 1536 | 24 320x240 9000 9000 1536";

TEST_F(ResultUpdaterStepsTest, PutWhatTheAlgorithmsLeft) {
  mScene.values = everythingValues();
  mScene.compositions = {test::compositionAt(1), test::compositionAt(2)};
  mScene.translate();
  EXPECT_EQ(putsOf(kResults, &Result::set) + putsOf(kEnd, &Result::set), mScene.puts());
  EXPECT_EQ(kStepsLog +
                "D frameSelect update 0 Score 0.5000, timeStamps 1, need throw: 1\n"
                "D frameSelect update 1 Score 1.5000, timeStamps 2, need throw: -1\n"
                "D callbackSelectBasicFrameIndex currentBaseFrameTime 1234, timeStamps 1\n"
                "D callbackSelectBasicFrameIndex currentBaseFrameIdx 1, resultTimeStamps 1234\n"
                "D updateMarkMode 12\n"
                "D AlgoRAWHDRMode 21, AlgoRAWHDRSceneType 22, mMetadatas size =2 .\n"
                "D update debug processed algo to AP [0x11 0x22 0x33 0xffffffffffffff00 0x55] \n"
                "D* update supermoon capture result 31\n",
            mScene.log());
  EXPECT_EQ(kPackedOutput, mScene.changeOfOutput(0));
  EXPECT_EQ(kDocumentOutput, mScene.changeOfOutput(1));
  // Every value is read completely.
  std::set<std::string> values;
  for (const LeftValue& value : mScene.values) {
    values.insert("orlu.algo." + value.section + ' ' + value.key + ' ' + std::to_string(value.bytes.size()));
  }
  std::set<std::string> reads;
  for (const test::RecordedCall& call : mAlgo.calls()) {
    if (call.operation != "getValue") continue;
    reads.insert(call.section + ' ' + call.key + ' ' + std::to_string(call.bytes.size()));
  }
  EXPECT_EQ(values, reads);
}

// Each request lists one algorithm, so that the test detects mixed-up algorithm names.
TEST_F(ResultUpdaterStepsTest, PutWhatTheAlgorithmOfTheListLeft) {
  for (const std::string algorithm : {"jpegBokehOnly", "ppt", "jpegEncode", "dualBokeh", "singleBokeh",
                                      "lightstream", "hdr", "bestMoment", "refocusJpegPack", "night", ""}) {
    SCOPED_TRACE(algorithm);
    ResultScene scene;
    scene.algorithms = {algorithm};
    scene.requestType = "stopProcess";
    scene.values = everythingValues();
    scene.compositions = {test::compositionAt(1), test::compositionAt(2)};
    scene.translate();
    EXPECT_EQ(putsOf(resultsOf(algorithm, kResults), &Result::set) + putsOf(kEnd, &Result::set),
              scene.puts());
  }
}

// Camera metadata can store a result only if the host's table contains the result's tag with the same type.
TEST(ResultUpdaterTest, EveryResultIsATagOfItsType) {
  const test::LocalFrame frame;
  const std::map<std::string, std::string> types = {
      {"Integer",  "INT"         },
      {"Long",     "LONG"        },
      {"Float",    "FLOAT"       },
      {"int[]",    "INT_ARRAY"   },
      {"long[]",   "LONG_ARRAY"  },
      {"float[]",  "FLOAT_ARRAY" },
      {"double[]", "DOUBLE_ARRAY"}
  };
  for (const auto& results : {kResults, kEnd}) {
    for (const Result& result : results) {
      std::istringstream put(result.put);
      std::string composition;
      std::string tag;
      std::string type;
      if (!(put >> composition >> tag >> type)) continue;
      EXPECT_EQ(types.at(type), test::typeOfTag(tag)) << test::tagTableHint(tag, types.at(type));
    }
  }
}

TEST_F(ResultUpdaterStepsTest, PutInitialValuesAndCopeWithoutOutputs) {
  mScene.hasOutputs = false;
  mScene.compositions = {test::compositionAt(100), test::compositionAt(200)};
  mScene.translate();
  EXPECT_EQ(putsOf(kResults, &Result::unset) + kUnsetEnd, mScene.puts());
}

TEST_F(ResultUpdaterStepsTest, PutNothingWithoutACompositionButSetTheOutputs) {
  mScene.values = everythingValues();
  mScene.translate();
  EXPECT_EQ("", mScene.puts());
  EXPECT_EQ(kPackedOutput, mScene.changeOfOutput(0));
  EXPECT_EQ(kDocumentOutput, mScene.changeOfOutput(1));
  EXPECT_EQ(kStepsLog +
                "E callbackFrameSelectResult failed, captureResultCompositions size < 1\n"
                "D callbackSelectBasicFrameIndex currentBaseFrameTime 1234, timeStamps 0\n"
                "E callbackSelectBasicFrameIndex failed, captureResultCompositions size < 1\n"
                "E updateTunningMode failed, captureResultCompositions size < 1\n"
                "E RAWHDRTrackingInfor failed, captureResultCompositions size < 1\n"
                "D rawhdrISPAEParams failed,captureResultCompositions size < 1\n"
                "E updateProcessedAlgoTag failed, captureResultCompositions size < 1\n"
                "D updateProrawPure2ProcState failed,captureResultCompositions size < 1\n"
                "E* updateTunningMode failed, captureResultCompositions size < 1\n",
            mScene.log());
}

// End of the log if every put fails. A failed put of a long is also logged as putInt(). The lines with * have
// the short log tag.
const std::string kPutFailures =
    "D updateMarkMode 0\n"
    "E pCameraMetadataParser->putInt fail\n"
    "D AlgoRAWHDRMode 0, AlgoRAWHDRSceneType 0, mMetadatas size =1 .\n"
    "E pCameraMetadataParser->putInt AlgoRAWHDRMode fail\n"
    "E pCameraMetadataParser->putInt AlgoRAWHDRSceneType fail\n"
    "E put rawhdrISPAEParams fail\n"
    "D update debug processed algo to AP [0x0 0x0 0x0 0x0 0x0] \n"
    "E pCameraMetadataParser->putInt fail\n"
    "E pCameraMetadataParser->putInt pure2procEnabled fail\n"
    "D* update supermoon capture result -1\n"
    "E* pCameraMetadataParser->putInt fail\n";

TEST(ResultUpdaterTest, GoesOnWhenPutsFail) {
  for (const bool isNull : {true, false}) {
    ResultScene scene;
    scene.algorithms = kEverything;
    scene.compositions = {isNull ? nullptr : test::newThrowingComposition()};
    scene.translate();
    EXPECT_FALSE(test::env()->ExceptionCheck());
    const std::string& log = scene.log();
    ASSERT_LT(kPutFailures.size(), log.size());
    EXPECT_EQ(kPutFailures, log.substr(log.size() - kPutFailures.size()));
  }
}

TEST_F(ResultUpdaterStepsTest, LogOnlyErrorsAndTheBareLinesAtASilentLevel) {
  const int level = gVAFCtrlLogLevel;
  gVAFCtrlLogLevel = 4;
  mScene.values = everythingValues();
  mScene.compositions = {test::compositionAt(100), test::compositionAt(200)};
  mScene.translate();
  gVAFCtrlLogLevel = level;
  EXPECT_EQ("D* bestmoment upload index=6\nD* update supermoon capture result 31\n", mScene.log());
}

struct ResultCase : test::NamedCase {
  std::vector<std::string> algorithms;
  const char* requestType;
  std::vector<LeftValue> values;
  std::string puts;          // followed by kUnsetEnd
  std::string output0 = "";  // "": unchanged
  std::string output1 = "";
  std::string log = "";  // part of the log
};

class ResultUpdaterConditionTest : public testing::TestWithParam<ResultCase> {};

TEST_P(ResultUpdaterConditionTest, PutsWhatIsAskedFor) {
  const ResultCase& c = GetParam();
  ResultScene scene;
  scene.algorithms = c.algorithms;
  scene.requestType = c.requestType;
  scene.values = c.values;
  scene.compositions = {test::compositionAt(100), test::compositionAt(200)};
  scene.translate();
  EXPECT_EQ(c.puts + kUnsetEnd, scene.puts());
  EXPECT_EQ(c.output0, scene.changeOfOutput(0));
  EXPECT_EQ(c.output1, scene.changeOfOutput(1));
  EXPECT_NE(std::string::npos, scene.log().find(c.log)) << scene.log();
}

ResultCase documentCase(const char* name, int width, int height, const std::string& size) {
  const std::string resolution = std::to_string(width) + 'x' + std::to_string(height) + ' ' + size;
  return {name,
          {"ppt"},
          "capture",
          documentValues(width, height),
          "0 orlu.feedback.doc_size Integer " + size +
              "\n0 orlu.feedback.doc_algoType Integer 3\n0 orlu.feedback.doc_category Integer 5\n",
          "",
          "JPEG " + resolution + " 1536 | 24 " + resolution + ' ' + size + " 1536",
          "D docJpegSize:9000 w "};
}

const std::string kEncodedType = "0 orlu.feedback.jpegEncodedType Integer 1\n";
const std::string kSegment = "0 orlu.feedback.segmentResult Integer 2\n";
const std::string kNoLightStream =
    "0 orlu.feedback.lightstreamCropRegion int[] 0 0 0 0\n0 orlu.feedback.lightstreamZoomRatio Float 0.0\n";

// clang-format off
INSTANTIATE_TEST_SUITE_P(Cases, ResultUpdaterConditionTest, testing::Values(
    documentCase("DocumentOfOnePixel", 1, 1, "9000"),
    documentCase("DocumentWithoutWidth", 0, 1, "0"),
    documentCase("DocumentWithoutHeight", 320, 0, "0"),
    ResultCase{"JpegOfSingleBokeh", {"singleBokeh", "jpegEncode"}, "capture", kJpegValues, kEncodedType + kSegment, kEncodedOutput,
               "", "D encoded jpeg size 7777\n"},
    ResultCase{"RefocusPack", {"refocusJpegPack"}, "capture", kJpegValues, "", kPackedOutput},
    ResultCase{"LightStreamLongerType", {"lightstream"}, "stopProcessAll", {}, kNoLightStream},
    ResultCase{"LightStreamShorterType", {"lightstream"}, "stopProces", {}, ""},
    ResultCase{"StepBeautyOff", {}, "capture", {left("parameter", "step_beauty_type", {0})}, ""},
    ResultCase{"StepBeautyNegative", {}, "capture", {left("parameter", "step_beauty_type", {-1})}, ""}),
    test::CaseName());
// clang-format on

TEST(ResultUpdaterTest, LeavesTheModeOfOtherExposuresAlone) {
  // clang-format off
  const std::array<int32_t, 3> cases[] = {{8, 0, -1000}, {5, 0, -2000}, {8, -2000, 0}};
  // clang-format on
  for (const auto& [mode, first, second] : cases) {
    ResultScene scene;
    scene.values = {left("feedback", "tunning_mode", {mode}),
                    left("parameter", "rawhdr_shot_ae_params", {first, second})};
    scene.compositions = {test::compositionAt(1)};
    scene.translate();
    const std::string put = "TunningMode Integer " + std::to_string(mode) + '\n';
    EXPECT_NE(std::string::npos, scene.puts().find(put)) << scene.puts();
  }
}

}  // namespace
}  // namespace orlu
