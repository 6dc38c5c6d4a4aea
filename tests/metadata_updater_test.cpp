// Cases that golden files cannot express: the parameter channel, the log level, values that the algorithms
// request, and requests in which objects are missing.

#include "metadata_updater.h"

#include <gtest/gtest.h>
#include <orlu/camera3rd_log.h>

#include "fixtures.h"
#include "golden_run.h"
#include "log_capture.h"

namespace orlu {
namespace {

using test::Algo;
using test::GoldenCase;
using test::LogCapture;
using test::LogLine;

constexpr char kLogTag[] = "_V_VASJNI-MetadataUpdater";
constexpr char kShortLogTag[] = "VASJNI-MetadataUpdater";

GoldenCase golden(const std::string& name, const std::vector<std::string>& changes = {}) {
  GoldenCase read = test::readGoldenCase(name);
  for (const std::string& line : changes) test::changeGolden(read, {line, {}});
  return read;
}

std::vector<std::string> linesOf(const LogCapture& log, const std::string& tag, int priority) {
  std::vector<std::string> messages;
  for (const LogLine& line : log.lines()) {
    if (line.tag == tag && line.priority == priority) messages.push_back(line.message);
  }
  return messages;
}

std::string lastWrite(const std::vector<test::RecordedCall>& calls, const std::string& key,
                      const std::string& type) {
  std::string text = "not written";
  for (const test::RecordedCall& call : calls) {
    if (call.operation == "setValue" && call.key == key) text = test::describeBytes(type, call.bytes);
  }
  return text;
}

TEST(MetadataUpdaterLogTest, Level4LeavesErrorsAndTheShortTag) {
  const std::vector<std::string> shortLines = {
      "start process basic frame idx 1, rotation 450, reqId = 0 input fusionselect 0, satfusion 0.",
      "updateCommonTags: highTemperature: 41", "updateCommonTags: sceneType: 14",
      "Optical_distortion: 0  face_correct: 0", "orlu.control.document.pack 0"};
  Algo algo;
  const int before = gVAFCtrlLogLevel;
  for (const int level : {3, 4}) {
    const LogCapture log;
    gVAFCtrlLogLevel = level;
    test::runGolden(golden("yuv_jpeg", {"input none"}), algo);
    EXPECT_EQ(shortLines, linesOf(log, kShortLogTag, ANDROID_LOG_DEBUG));
    EXPECT_EQ(level == 4, linesOf(log, kLogTag, ANDROID_LOG_DEBUG).empty()) << log.text();
    EXPECT_EQ(2U, linesOf(log, kLogTag, ANDROID_LOG_ERROR).size()) << log.text();
  }
  gVAFCtrlLogLevel = before;
}

// The algorithms request a value by section and key; it is read from the tag "section.key".
TEST(MetadataUpdaterTest, FetchesWhatTheAlgorithmsAskFor) {
  Algo algo;
  algo.script.wanted = {
      {"orlu.parameter",        "remosaicOTPData", 8 },
      {"com.orlu.chi.override", "CameraType",      16},
      {"orlu.parameter",        "notThere",        4 }
  };
  algo.use();
  const LogCapture log;
  test::runGolden(golden("yuv_jpeg", {"c0 com.orlu.chi.override.CameraType bytes[3] 0:text=\"SAT\""}), algo,
                  [](MetadataUpdater& updater) {
                    int32_t otp[2] = {};
                    EXPECT_EQ(0, updater.getValue("orlu.parameter", "remosaicOTPData", otp, sizeof otp));
                    EXPECT_EQ(17, otp[0]);
                    EXPECT_EQ(18, otp[1]);
                    char type[16] = "xxxxxxxxxxxxxxx";
                    EXPECT_EQ(0, updater.getValue("com.orlu.chi.override", "CameraType", type, sizeof type));
                    EXPECT_EQ(std::string("SAT") + std::string(13, '\0'), std::string(type, sizeof type));
                  });
  for (const char* const line :
       {"checkxx download orlu.parameter.remosaicOTPData : data 0x",
        "checkxx download com.orlu.chi.override.CameraType : data 0x",
        "checkxx download orlu.parameter.notThere : data 0x", ", size 8\n", ", size 16\n"}) {
    EXPECT_TRUE(log.contains(line)) << line << '\n' << log.text();
  }
}

// A new updater writes the list of master frames before it has found the master frames, so the list
// contains zeros. When the same updater runs again, the list contains the first sixteen master frames.
TEST(MetadataUpdaterTest, ListsSixteenFramesAtMost) {
  Algo algo;
  const LogCapture log;
  test::runGolden(golden("yuv_jpeg", {"frames 20"}), algo, [&algo](MetadataUpdater& updater) {
    EXPECT_EQ("ints 0*16", lastWrite(algo.calls(), "frame_id", "ints"));
    algo.forget();
    updater.updateMetadata();
    EXPECT_EQ("ints 701 702 703 704 705 706 707 708 709 710 711 712 713 714 715 716",
              lastWrite(algo.calls(), "frame_id", "ints"));
    const std::string timestamps = lastWrite(algo.calls(), "input_frame_timestamp", "longs");
    EXPECT_EQ(0U, timestamps.find("longs 900000000001 900033000001 ")) << timestamps;
    EXPECT_EQ(timestamps.size() - 13, timestamps.find(" 900495000001")) << timestamps;
  });
  EXPECT_EQ(1, log.count(ANDROID_LOG_DEBUG, kLogTag,
                         "start process input timeStamps[15]=900495000001, reqId = 716 ."));
}

TEST(MetadataUpdaterTest, ChannelForwardsToTheBlockOfTheRequest) {
  Algo algo;
  test::runGolden(golden("empty"), algo, [&algo](MetadataUpdater& updater) {
    algo.forget();
    int32_t value = 5;
    EXPECT_EQ(0, updater.setValue("some.section", "a_key", &value, sizeof value));
    int32_t read = 0;
    EXPECT_EQ(0, updater.getValue("some.section", "a_key", &read, sizeof read));
    EXPECT_EQ(5, read);
    EXPECT_EQ(-1, updater.getValue("some.section", "another_key", &read, sizeof read));
    EXPECT_EQ(5, read);
    EXPECT_EQ("setValue getValue getValue", algo.operations());
    const test::RecordedCall call = algo.calls().front();
    EXPECT_EQ("some.section a_key", call.section + ' ' + call.key);
    EXPECT_EQ(std::vector<uint8_t>({5, 0, 0, 0}), call.bytes);

    algo.forget();
    const AlgoMetadataVisitor visitor = [](const char*, const char*, void*, unsigned) { return 0; };
    updater.paramAlgoUpdateToSystem(visitor);
    updater.paramSystemDownloadToAlgo(visitor);
    EXPECT_EQ("paramAlgoUpdateToSystem paramSystemDownloadToAlgo", algo.operations());
  });
}

// Without a parameter block, nothing is stored or read. Null images and compositions do no harm.
TEST(MetadataUpdaterTest, SurvivesWhatIsMissing) {
  const test::LocalFrame frame;
  Algo algo;
  AlgoNativeClient client(nullptr, 1, 0);
  CameraMetadataParser parser(test::env());
  jobject compositions = test::javaList({nullptr, test::newComposition(), nullptr});
  VRequest request(test::env(), nullptr, test::javaList({nullptr}), nullptr, compositions);
  std::vector<std::string> list = {"dualBokeh",  "superns", "lightstream",    "jpegBokehOnly",
                                   "jpegEncode", "upscale", "engineDualbokeh"};
  MetadataUpdater updater(&client, list, request, nullptr, &parser);
  algo.forget();
  updater.updateMetadata();
  EXPECT_EQ("", algo.operations());
  EXPECT_EQ("refocusJpegPack", list.back());
  int value = 5;
  EXPECT_EQ(-1, updater.setValue("orlu.algo.control", "film_size", &value, sizeof value));
  EXPECT_EQ(-1, updater.getValue("orlu.algo.control", "film_size", &value, sizeof value));
  EXPECT_EQ(5, value);
}

}  // namespace
}  // namespace orlu
