#include "result_updater.h"

#include <gtest/gtest.h>
#include <orlu/camera3rd_log.h>

#include <cstring>
#include <numeric>
#include <set>

#include "algo.h"
#include "case_name.h"
#include "result_scene.h"

namespace orlu {
namespace {

using test::left;
using test::LeftValue;
using test::ResultScene;

// What every request ends with when the algorithms left nothing, and its log.
const std::string kUnsetEnd =
    "0 orlu.feedback.frameSelectResult long[]\n"
    "0 orlu.feedback.clarityScore double[] 0 0\n"
    "0 orlu.feedback.TunningMode Integer 0\n"
    "0 orlu.feedback.AlgoRAWHDRMode Integer 0\n"
    "0 orlu.feedback.AlgoRAWHDRSceneType Integer 0\n"
    "1 orlu.feedback.rawhdrISPAEParams float[] 0 0\n"
    "0 orlu.parameter.processedAlgo Long 0\n"
    "0 orlu.feedback.pure2proc.enabled Integer 0\n"
    "0 orlu.feedback.superMoonCaptureResult Integer -1\n";
const std::string kUnsetEndLog =
    "D frameSelect update 0 Score 0.0000, timeStamps 100, need throw: -1\n"
    "D frameSelect update 1 Score 0.0000, timeStamps 200, need throw: -1\n"
    "D updateMarkMode 0\n"
    "D AlgoRAWHDRMode 0, AlgoRAWHDRSceneType 0, mMetadatas size =2 .\n"
    "D update debug processed algo to AP [0x0 0x0 0x0 0x0 0x0] \n"
    "D* update supermoon capture result -1\n";

// A list of numbers as a put line shows it, each with a blank before it.
std::string numbers(int count, int first, int step) {
  std::string text;
  for (int i = 0; i < count; ++i) text += ' ' + std::to_string(first + i * step);
  return text;
}

std::vector<int32_t> counting(size_t count, int32_t first) {
  std::vector<int32_t> values(count);
  std::iota(values.begin(), values.end(), first);
  return values;
}

// ---- What the list of algorithms asks for

struct ResultCase {
  const char* name;
  std::vector<std::string> algorithms;
  const char* requestType;
  std::vector<LeftValue> values;
  std::string puts;  // before the usual end
  std::string log;
  std::string output0 = "";  // "": unchanged
  std::string output1 = "";
};

class ResultUpdaterTest : public testing::TestWithParam<ResultCase> {};

TEST_P(ResultUpdaterTest, PutsWhatTheAlgorithmsLeft) {
  const ResultCase& c = GetParam();
  ResultScene scene;
  scene.algorithms = c.algorithms;
  scene.requestType = c.requestType;
  scene.values = c.values;
  scene.compositions = {test::compositionAt(100), test::compositionAt(200)};
  scene.translate();
  EXPECT_EQ(c.puts + kUnsetEnd, scene.puts());
  EXPECT_EQ(c.log + kUnsetEndLog, scene.log());
  EXPECT_EQ(c.output0, scene.changeOfOutput(0));
  EXPECT_EQ(c.output1, scene.changeOfOutput(1));
}

std::vector<LeftValue> documentValues(int32_t width, int32_t height) {
  return {left("parameter", "doc_jpeg_size", {9000}), left("parameter", "rectify_wh", {width, height}),
          left("feedback", "doc_process_type", {3}), left("feedback", "doc_class_type", {5})};
}

std::string documentPuts(int size) {
  return "0 orlu.feedback.doc_size Integer " + std::to_string(size) +
         "\n0 orlu.feedback.doc_algoType Integer 3\n0 orlu.feedback.doc_category Integer 5\n";
}

std::string documentLog(const std::string& size) {
  return "D document: updateResult, algoProcessType value is 3  \n"
         "D document updateResult: algoClassType result is 5\n"
         "D docJpegSize:9000 " +
         size + '\n';
}

const std::vector<LeftValue> kJpegValues = {left("feedback", "jpeg_encoded_by_hw", {1}),
                                            left("feedback", "encoded_jpeg_size", {7777}),
                                            left("feedback", "output_refocus_jpeg_pack_size", {8888}),
                                            left("feedback", "segment_detect_result", {2})};
const std::string kEncodedType = "0 orlu.feedback.jpegEncodedType Integer 1\n";
const std::string kSegment = "0 orlu.feedback.segmentResult Integer 2\n";
const std::string kSegmentLog = "D algo process segmentDetectResult = 2\n";
// The size of the picture is told to Java again, or left as Java has it.
const std::string kEncodedOutput = "JPEG 64x48 7777 1536 | 24 64x48 7777 7777 1536";
const std::string kPackedOutput = "JPEG 1x48 8888 1536 | 24 64x48 8888 8888 1536";

const std::vector<LeftValue> kLightStreamValues = {
    left("feedback", "lightstream_crop_region", {11, 12, 13, 14}),
    left<float>("feedback", "lightstream_zoom_ratio", {2.5F})};
const std::string kLightStreamPuts =
    "0 orlu.feedback.lightstreamCropRegion int[] 11 12 13 14\n"
    "0 orlu.feedback.lightstreamZoomRatio Float 2.5\n";
const std::string kLightStreamLog = "D lightstream stop, zoom 2.500000 crop (l 11 t 12 w 13 h 14)\n";

// The size that the picture was decoded to replaces what stood under the same keys before.
std::string refocusPuts(const std::vector<int32_t>& v, const std::string& info) {
  const char* const keys[] = {"refocus.pointRatioX",  "refocus.pointRatioY", "control.refocus_level",
                              "refocus.imgW",         "refocus.imgH",        "refocus.initJpegSize",
                              "refocus.saveJpegSize", "refocus.imgW",        "refocus.imgH"};
  std::string text;
  for (size_t i = 0; i < v.size(); ++i) {
    text += std::string("0 orlu.") + keys[i] + " Integer " + std::to_string(v[i]) + '\n';
  }
  return text + "0 orlu.refocus.retInfo int[]" + info + '\n';
}

std::vector<LeftValue> refocusValues() {
  return {left("feedback", "refocus_point_x", {11}),
          left("feedback", "refocus_point_y", {12}),
          left("feedback", "refocus_aperture", {13}),
          left("feedback", "refocus_jpeg_width", {14}),
          left("feedback", "refocus_jpeg_height", {15}),
          left("feedback", "encoded_jpeg_size", {16}),
          left("feedback", "decoded_jpeg_size", {17, 18}),
          left("feedback", "refocus_ret_info", counting(64, 1000))};
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Cases, ResultUpdaterTest, testing::Values(
    ResultCase{"Nothing", {}, "capture", {}, "", ""},
    ResultCase{"Refocus", {"jpegBokehOnly"}, "capture", refocusValues(),
               refocusPuts({11, 12, 13, 14, 15, 16, 16, 17, 18}, numbers(64, 1000, 1)), ""},
    ResultCase{"Document", {"ppt"}, "capture", documentValues(320, 240), documentPuts(9000), documentLog("w 320 h 240"),
               "", "JPEG 320x240 9000 1536 | 24 320x240 9000 9000 1536"},
    ResultCase{"DocumentWithoutSize", {"ppt"}, "capture", documentValues(0, 0), documentPuts(0), documentLog("w 0 h 0"),
               "", "JPEG 0x0 0 1536 | 24 0x0 0 0 1536"},
    ResultCase{"DocumentWithoutWidth", {"ppt"}, "capture", documentValues(0, 1), documentPuts(0), documentLog("w 0 h 1"),
               "", "JPEG 0x1 0 1536 | 24 0x1 0 0 1536"},
    ResultCase{"DocumentOfOnePixel", {"ppt"}, "capture", documentValues(1, 1), documentPuts(9000), documentLog("w 1 h 1"),
               "", "JPEG 1x1 9000 1536 | 24 1x1 9000 9000 1536"},
    ResultCase{"DocumentWithoutHeight", {"ppt"}, "capture", documentValues(320, -1), documentPuts(0), documentLog("w 320 h -1"),
               "", "JPEG 320x-1 0 1536 | 24 320x-1 0 0 1536"},
    ResultCase{"Jpeg", {"jpegEncode"}, "capture", kJpegValues, kEncodedType,
               "D jpeg encode hw/sw:1\nD encoded jpeg size 7777\n", kEncodedOutput},
    ResultCase{"JpegUnset", {"jpegEncode"}, "capture", {}, "0 orlu.feedback.jpegEncodedType Integer 0\n",
               "D jpeg encode hw/sw:0\nD encoded jpeg size 0\n", "JPEG 64x48 0 1536 | 24 64x48 0 0 1536"},
    ResultCase{"JpegOfDualBokeh", {"dualBokeh", "jpegEncode"}, "capture", kJpegValues, kEncodedType + kSegment,
               "D jpeg encode hw/sw:1\nD refocus pack size 8888\n" + kSegmentLog, kPackedOutput},
    ResultCase{"JpegOfSingleBokeh", {"singleBokeh", "jpegEncode"}, "capture", kJpegValues, kEncodedType + kSegment,
               "D jpeg encode hw/sw:1\nD encoded jpeg size 7777\n" + kSegmentLog, kEncodedOutput},
    ResultCase{"DualBokehAlone", {"dualBokeh"}, "capture", kJpegValues, kSegment, kSegmentLog},
    ResultCase{"RefocusPack", {"refocusJpegPack"}, "capture", kJpegValues, "", "D refocus pack size 8888\n", kPackedOutput},
    ResultCase{"SegmentUnset", {"singleBokeh"}, "capture", {}, "0 orlu.feedback.segmentResult Integer -1\n",
               "D algo process segmentDetectResult = -1\n"},
    ResultCase{"LightStreamStop", {"lightstream"}, "stopProcess", kLightStreamValues, kLightStreamPuts, kLightStreamLog},
    ResultCase{"LightStreamLongerType", {"lightstream"}, "stopProcessAll", kLightStreamValues, kLightStreamPuts, kLightStreamLog},
    ResultCase{"LightStreamShorterType", {"lightstream"}, "stopProces", kLightStreamValues, "", ""},
    ResultCase{"LightStreamOtherType", {"lightstream"}, "xstopProcess", kLightStreamValues, "", ""},
    ResultCase{"StopOfOthers", {"night"}, "stopProcess", kLightStreamValues, "", ""},
    ResultCase{"LightStreamUnset", {"lightstream"}, "stopProcess", {},
               "0 orlu.feedback.lightstreamCropRegion int[] 0 0 0 0\n0 orlu.feedback.lightstreamZoomRatio Float 0.0\n",
               "D lightstream stop, zoom 0.000000 crop (l 0 t 0 w 0 h 0)\n"},
    ResultCase{"Hdr", {"hdr"}, "capture", {left("feedback", "hdr_choosed_frame", {4})},
               "0 orlu.feedback.hdrChoosedFrame Integer 4\n", "D algo process hdrChoosedFrame = 4\n"},
    ResultCase{"HdrUnset", {"hdr"}, "capture", {}, "0 orlu.feedback.hdrChoosedFrame Integer -1\n",
               "D algo process hdrChoosedFrame = -1\n"},
    ResultCase{"BestMoment", {"bestMoment"}, "capture", {left("feedback", "bestmoment_index", {6})},
               "0 orlu.feedback.bestmoment_index Integer 6\n", "D* bestmoment upload index=6\n"},
    ResultCase{"BestMomentUnset", {"bestMoment"}, "capture", {}, "0 orlu.feedback.bestmoment_index Integer 0\n",
               "D* bestmoment upload index=0\n"},
    ResultCase{"StepBeautyOff", {}, "capture", {left("parameter", "step_beauty_type", {0})}, "", ""},
    ResultCase{"StepBeautyNegative", {}, "capture", {left("parameter", "step_beauty_type", {-1})}, "", ""}),
    test::CaseName());
// clang-format on

// ---- The outline of a face

void setWord(std::vector<uint8_t>& record, size_t offset, int32_t value) {
  std::memcpy(record.data() + offset, &value, sizeof value);
}

void setFloat(std::vector<uint8_t>& record, size_t offset, float value) {
  std::memcpy(record.data() + offset, &value, sizeof value);
}

TEST(ResultUpdaterBeautyTest, SplitsTheOutlineAndTurnsTheRectangle) {
  std::vector<uint8_t> outline(10736, 0x55);
  setWord(outline, 0, 2);
  for (int i = 0; i < 120; ++i) {
    setWord(outline, 4 + 8 * static_cast<size_t>(i), 1000 + i);
    setWord(outline, 8 + 8 * static_cast<size_t>(i), 5000 - i);
  }
  for (size_t i = 0; i < 3; ++i) setFloat(outline, 9608 + 4 * i, 0.25F + static_cast<float>(i));
  for (size_t i = 0; i < 4; ++i) setWord(outline, 10536 + 4 * i, 21 + static_cast<int32_t>(i));

  ResultScene scene;
  scene.values = {
      left("parameter", "step_beauty_type", {1       }
        ),
      { "feedback", "face_outline", outline},
      left<float>("feedback", "face_skin_value", { 4.5F,       5.5F, 6.5F}
        )
  };
  scene.compositions = {test::compositionAt(100), test::compositionAt(200)};
  scene.translate();
  EXPECT_EQ("0 orlu.feedback.pOutlinesX int[]" + numbers(120, 1000, 1) + "\n" +
                "0 orlu.feedback.pOutlinesY int[]" + numbers(120, 5000, -1) + "\n" +
                "0 orlu.feedback.beautyPose float[] 0.25 1.25 2.25\n"
                "0 orlu.feedback.faceSkinValue float[] 4.5 5.5 6.5\n"
                "0 orlu.feedback.beautyFaceRect int[] 22 21 23 24\n"
                "0 orlu.feedback.beautyFaceNum Integer 2\n" +
                kUnsetEnd,
            scene.puts());
  EXPECT_EQ(
      "D algo process beautyfile beautyFaceNum = 2\n"
      "D algo process beautyfile beautyFaceRect[22 21 23 24]\n" +
          kUnsetEndLog,
      scene.log());
}

// ---- The raw algorithms

TEST(ResultUpdaterRawTest, PutsGainsIntoTheLastComposition) {
  ResultScene scene;
  scene.values = {left("feedback", "tunning_mode", {8}),
                  left("parameter", "rawhdr_shot_ae_params", {5, -1001}),
                  left("feedback", "rawhdr_track_mode", {21}),
                  left("feedback", "rawhdr_track_scenetype", {22}),
                  left<float>("system", "real_gain", {1.5F}),
                  left<float>("system", "dark_boost_gain", {2.5F}),
                  left<uint64_t>("parameter", "processed_algo", {0x11, 0x22, 0x33, 0xFFFFFFFFFFFFFF00, 0x55}),
                  left<uint8_t>("feedback", "pure2proc_enabled", {200}),
                  left("feedback", "supermoon_capture_result", {31})};
  scene.compositions = {test::compositionAt(1), test::compositionAt(2), test::compositionAt(3)};
  scene.translate();
  EXPECT_EQ(
      "0 orlu.feedback.frameSelectResult long[]\n"
      "0 orlu.feedback.clarityScore double[] 0 0 0\n"
      "0 orlu.feedback.TunningMode Integer 12\n"
      "0 orlu.feedback.AlgoRAWHDRMode Integer 21\n"
      "0 orlu.feedback.AlgoRAWHDRSceneType Integer 22\n"
      "2 orlu.feedback.rawhdrISPAEParams float[] 1.5 2.5\n"
      "0 orlu.parameter.processedAlgo Long -256\n"
      "0 orlu.feedback.pure2proc.enabled Integer 200\n"
      "0 orlu.feedback.superMoonCaptureResult Integer 31\n",
      scene.puts());
  EXPECT_EQ(
      "D frameSelect update 0 Score 0.0000, timeStamps 1, need throw: -1\n"
      "D frameSelect update 1 Score 0.0000, timeStamps 2, need throw: -1\n"
      "D frameSelect update 2 Score 0.0000, timeStamps 3, need throw: -1\n"
      "D updateMarkMode 12\n"
      "D AlgoRAWHDRMode 21, AlgoRAWHDRSceneType 22, mMetadatas size =3 .\n"
      "D update debug processed algo to AP [0x11 0x22 0x33 0xffffffffffffff00 0x55] \n"
      "D* update supermoon capture result 31\n",
      scene.log());
}

struct ModeCase {
  const char* name;
  int32_t mode;
  int32_t first;
  int32_t second;
  const char* put;
};

class ResultUpdaterModeTest : public testing::TestWithParam<ModeCase> {};

TEST_P(ResultUpdaterModeTest, MarksShortExposures) {
  const ModeCase& c = GetParam();
  ResultScene scene;
  scene.values = {left("feedback", "tunning_mode", {c.mode}),
                  left("parameter", "rawhdr_shot_ae_params", {c.first, c.second})};
  scene.compositions = {test::compositionAt(1)};
  scene.translate();
  EXPECT_NE(std::string::npos, scene.puts().find(c.put)) << scene.puts();
}

INSTANTIATE_TEST_SUITE_P(Cases, ResultUpdaterModeTest,
                         testing::Values(ModeCase{"AtTheLimit", 8, 0, -1000, "TunningMode Integer 8\n"},
                                         ModeCase{"Below", 8, 0, -1001, "TunningMode Integer 12\n"},
                                         ModeCase{"AlreadyMarked", 5, 0, -2000, "TunningMode Integer 5\n"},
                                         ModeCase{"OtherWord", 8, -2000, 0, "TunningMode Integer 8\n"},
                                         ModeCase{"Positive", 8, 0, 4000000, "TunningMode Integer 8\n"}),
                         test::CaseName());

// ---- Every step in one request

const std::vector<std::string> kEverything = {"jpegBokehOnly", "ppt", "jpegEncode", "dualBokeh",
                                              "lightstream",   "hdr", "bestMoment"};

std::vector<LeftValue> everythingValues() {
  std::vector<LeftValue> values = refocusValues();
  for (const auto& more : {documentValues(320, 240), kJpegValues, kLightStreamValues}) {
    values.insert(values.end(), more.begin(), more.end());
  }
  values.push_back(left("parameter", "step_beauty_type", {1}));
  return values;
}

TEST(ResultUpdaterStepsTest, ReadsEveryValueWholeAndInItsSection) {
  test::Algo algo;
  ResultScene scene;
  scene.algorithms = kEverything;
  scene.requestType = "stopProcess";
  scene.values = {left("parameter", "step_beauty_type", {1})};
  scene.compositions = {test::compositionAt(1)};
  scene.translate();
  std::multiset<std::string> reads;
  for (const test::RecordedCall& call : algo.calls()) {
    if (call.operation != "getValue") continue;
    reads.insert(call.section.substr(10) + ' ' + call.key + ' ' + std::to_string(call.bytes.size()));
  }
  // clang-format off
  EXPECT_EQ((std::multiset<std::string>{
      "feedback refocus_point_x 4", "feedback refocus_point_y 4", "feedback refocus_aperture 4",
      "feedback refocus_jpeg_width 4", "feedback refocus_jpeg_height 4", "feedback encoded_jpeg_size 4",
      "feedback encoded_jpeg_size 4", "feedback decoded_jpeg_size 8", "feedback refocus_ret_info 256",
      "parameter doc_jpeg_size 4", "parameter rectify_wh 8", "feedback doc_process_type 4",
      "feedback doc_class_type 4", "parameter step_beauty_type 4", "feedback face_outline 10736",
      "feedback face_skin_value 12", "feedback jpeg_encoded_by_hw 4",
      "feedback output_refocus_jpeg_pack_size 4", "feedback lightstream_crop_region 16",
      "feedback lightstream_zoom_ratio 4", "feedback hdr_choosed_frame 4",
      "feedback segment_detect_result 4", "feedback bestmoment_index 4", "feedback frame_select_result 80",
      "parameter frame_clarity_score 400", "feedback current_base_frame_idx 4",
      "control current_base_frame_time 8", "feedback tunning_mode 4", "parameter rawhdr_shot_ae_params 8",
      "feedback rawhdr_track_mode 4", "feedback rawhdr_track_scenetype 4", "system real_gain 4",
      "system dark_boost_gain 4", "parameter processed_algo 40", "feedback pure2proc_enabled 1",
      "feedback supermoon_capture_result 4"}), reads);
  // clang-format on
}

TEST(ResultUpdaterStepsTest, PutsNothingWithoutACompositionButSetsTheOutputs) {
  ResultScene scene;
  scene.algorithms = kEverything;
  scene.requestType = "stopProcess";
  scene.values = everythingValues();
  scene.translate();
  EXPECT_EQ("", scene.puts());
  EXPECT_EQ(kPackedOutput, scene.changeOfOutput(0));
  EXPECT_EQ("JPEG 320x240 9000 1536 | 24 320x240 9000 9000 1536", scene.changeOfOutput(1));
  EXPECT_EQ(documentLog("w 320 h 240") +
                "D algo process beautyfile beautyFaceNum = 0\n"
                "D algo process beautyfile beautyFaceRect[0 0 0 0]\n"
                "D jpeg encode hw/sw:1\n"
                "D refocus pack size 8888\n" +
                kLightStreamLog + "D algo process hdrChoosedFrame = -1\n" + kSegmentLog +
                "D* bestmoment upload index=0\n"
                "E callbackFrameSelectResult failed, captureResultCompositions size < 1\n"
                "E updateTunningMode failed, captureResultCompositions size < 1\n"
                "E RAWHDRTrackingInfor failed, captureResultCompositions size < 1\n"
                "D rawhdrISPAEParams failed,captureResultCompositions size < 1\n"
                "E updateProcessedAlgoTag failed, captureResultCompositions size < 1\n"
                "D updateProrawPure2ProcState failed,captureResultCompositions size < 1\n"
                "E* updateTunningMode failed, captureResultCompositions size < 1\n",
            scene.log());
}

TEST(ResultUpdaterStepsTest, CopesWithoutOutputs) {
  ResultScene scene;
  scene.algorithms = {"jpegEncode", "ppt"};
  scene.values = documentValues(320, 240);
  scene.hasOutputs = false;
  scene.compositions = {test::compositionAt(100), test::compositionAt(200)};
  scene.translate();
  EXPECT_EQ(documentPuts(9000) + "0 orlu.feedback.jpegEncodedType Integer 0\n" + kUnsetEnd, scene.puts());
}

// A composition that keeps nothing: its map is one that throws.
jobject throwingComposition() {
  jobject composition = test::compositionAt(100);
  jclass collections = test::findClass("java/util/Collections");
  jobject map = test::env()->CallStaticObjectMethod(
      collections, test::env()->GetStaticMethodID(collections, "emptyMap", "()Ljava/util/Map;"));
  test::expectNoException("emptyMap");
  test::setObjectField(composition, "mMetadata", "Ljava/util/Map;", map);
  return composition;
}

// The failures of the raw algorithms, two of which speak of another operation or under another tag.
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

TEST(ResultUpdaterStepsTest, GoesOnWhenPutsThrow) {
  ResultScene scene;
  scene.algorithms = kEverything;
  scene.compositions = {throwingComposition()};
  scene.translate();
  EXPECT_FALSE(test::env()->ExceptionCheck());
  const std::string& log = scene.log();
  ASSERT_LT(kPutFailures.size(), log.size());
  EXPECT_EQ(kPutFailures, log.substr(log.size() - kPutFailures.size()));
}

TEST(ResultUpdaterStepsTest, TakesANullCompositionForOneThatCanNotBeWritten) {
  ResultScene scene;
  scene.compositions = {nullptr};
  scene.translate();
  EXPECT_EQ("D frameSelect update 0 Score 0.0000, timeStamps 0, need throw: -1\n" + kPutFailures,
            scene.log());
}

TEST(ResultUpdaterStepsTest, LogsOnlyErrorsAndTheBareLinesAtASilentLevel) {
  const int level = gVAFCtrlLogLevel;
  gVAFCtrlLogLevel = 4;
  ResultScene scene;
  scene.algorithms = kEverything;
  scene.requestType = "stopProcess";
  scene.values = everythingValues();
  scene.compositions = {test::compositionAt(100)};
  scene.translate();
  gVAFCtrlLogLevel = level;
  EXPECT_EQ("D* bestmoment upload index=0\nD* update supermoon capture result -1\n", scene.log());
}

TEST(ResultUpdaterStepsTest, PutsInitialValuesWithoutAParameterSet) {
  const test::LocalFrame frame;
  AlgoNativeClient client(nullptr, 1, 0);
  std::vector<std::string> algorithms = {"hdr"};
  jobject composition = test::compositionAt(100);
  VRequest request(test::env(), test::newRequest(1, "capture"), test::javaList({}), test::javaList({}),
                   test::javaList({composition}));
  CameraMetadataParser parser(test::env());
  ResultUpdater updater(&client, algorithms, request, nullptr, &parser);
  updater.updateResult();
  EXPECT_EQ(-1, test::intOf(test::getKey(composition, "orlu.feedback.hdrChoosedFrame")));
  int32_t value = 5;
  EXPECT_EQ(-1, updater.getValue("orlu.algo.feedback", "hdr_choosed_frame", &value, sizeof value));
  EXPECT_EQ(-1, updater.setValue("orlu.algo.feedback", "hdr_choosed_frame", &value, sizeof value));
  EXPECT_EQ(5, value);
}

}  // namespace
}  // namespace orlu
