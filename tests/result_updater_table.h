// Results of the algorithms, and the values that the result updater puts into the compositions.
#pragma once

#include <cstring>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

#include "result_scene.h"

namespace orlu::test {

// Returns a list of numbers in the format of puts(), each preceded by a space.
inline std::string numbers(int count, int first, int step) {
  std::string text;
  for (int i = 0; i < count; ++i) text += ' ' + std::to_string(first + i * step);
  return text;
}

inline std::vector<int32_t> counting(size_t count, int32_t first) {
  std::vector<int32_t> values(count);
  std::iota(values.begin(), values.end(), first);
  return values;
}

inline const std::vector<std::string> kEverything = {"jpegBokehOnly", "ppt", "jpegEncode", "dualBokeh",
                                                     "lightstream",   "hdr", "bestMoment"};

inline std::vector<LeftValue> documentValues(int32_t width, int32_t height) {
  return {left("parameter", "doc_jpeg_size", {9000}), left("parameter", "rectify_wh", {width, height}),
          left("feedback", "doc_process_type", {3}), left("feedback", "doc_class_type", {5})};
}

inline const std::vector<LeftValue> kJpegValues = {left("feedback", "jpeg_encoded_by_hw", {1}),
                                                   left("feedback", "encoded_jpeg_size", {7777}),
                                                   left("feedback", "output_refocus_jpeg_pack_size", {8888}),
                                                   left("feedback", "segment_detect_result", {2})};

// Returns the outline of two faces. Only the first face has values: 120 points, a pose and a rectangle.
inline LeftValue outlineValue() {
  std::vector<uint8_t> outline(10736, 0x55);
  const auto set = [&outline](size_t offset, auto value) {
    std::memcpy(outline.data() + offset, &value, sizeof value);
  };
  set(0, int32_t{2});
  for (int i = 0; i < 120; ++i) {
    set(4 + 8 * static_cast<size_t>(i), 1000 + i);
    set(8 + 8 * static_cast<size_t>(i), 5000 - i);
  }
  for (size_t i = 0; i < 3; ++i) set(9608 + 4 * i, 0.25F + static_cast<float>(i));
  for (size_t i = 0; i < 4; ++i) set(10536 + 4 * i, 21 + static_cast<int32_t>(i));
  return {"feedback", "face_outline", outline};
}

// A result in the parameter set, and the value that the result updater puts into a composition for it. A
// result that is put under several keys has one row for each key.
struct Result {
  std::string algorithms;  // read if the algorithm list contains any of these; empty: always
  LeftValue left;
  std::string put;    // index of the composition, key and type; empty: nothing is put
  std::string set;    // value that is put if all results are set
  std::string unset;  // value that is put if no result is set; "none": nothing is put
};

inline std::vector<int32_t> selectSecond() {
  std::vector<int32_t> selected(20, -1);
  selected[0] = 1;
  return selected;
}

inline std::vector<double> scores() {
  std::vector<double> values(50, 0.5);
  values[1] = 1.5;
  return values;
}

// clang-format off
// Results in the order of the puts. "decoded_jpeg_size" overwrites the earlier values of imgW and imgH.
inline const std::vector<Result> kResults = {
    {"jpegBokehOnly",         left("feedback", "refocus_point_x", {11}),               "0 orlu.refocus.pointRatioX Integer",             " 11", " 0"},
    {"jpegBokehOnly",         left("feedback", "refocus_point_y", {12}),               "0 orlu.refocus.pointRatioY Integer",             " 12", " 0"},
    {"jpegBokehOnly",         left("feedback", "refocus_aperture", {13}),              "0 orlu.control.refocus_level Integer",           " 13", " 0"},
    {"jpegBokehOnly",         left("feedback", "refocus_jpeg_width", {14}),            "0 orlu.refocus.imgW Integer",                    " 14", " 0"},
    {"jpegBokehOnly",         left("feedback", "refocus_jpeg_height", {15}),           "0 orlu.refocus.imgH Integer",                    " 15", " 0"},
    {"jpegBokehOnly",         left("feedback", "encoded_jpeg_size", {7777}),           "0 orlu.refocus.initJpegSize Integer",            " 7777", " 0"},
    {"jpegBokehOnly",         left("feedback", "encoded_jpeg_size", {7777}),           "0 orlu.refocus.saveJpegSize Integer",            " 7777", " 0"},
    {"jpegBokehOnly",         left("feedback", "decoded_jpeg_size", {17, 18}),         "0 orlu.refocus.imgW Integer",                    " 17", " 0"},
    {"jpegBokehOnly",         left("feedback", "decoded_jpeg_size", {17, 18}),         "0 orlu.refocus.imgH Integer",                    " 18", " 0"},
    {"jpegBokehOnly",         left("feedback", "refocus_ret_info", counting(64, 1000)), "0 orlu.refocus.retInfo int[]",                  numbers(64, 1000, 1), numbers(64, 0, 0)},
    {"ppt",                   left("parameter", "doc_jpeg_size", {9000}),              "0 orlu.feedback.doc_size Integer",               " 9000", " 0"},
    {"ppt",                   left("parameter", "rectify_wh", {320, 240}),             "",                                               "", ""},
    {"ppt",                   left("feedback", "doc_process_type", {3}),               "0 orlu.feedback.doc_algoType Integer",           " 3", " 0"},
    {"ppt",                   left("feedback", "doc_class_type", {5}),                 "0 orlu.feedback.doc_category Integer",           " 5", " 0"},
    {"",                      left("parameter", "step_beauty_type", {1}),              "",                                               "", ""},
    {"",                      outlineValue(),                                          "0 orlu.feedback.pOutlinesX int[]",               numbers(120, 1000, 1), "none"},
    {"",                      outlineValue(),                                          "0 orlu.feedback.pOutlinesY int[]",               numbers(120, 5000, -1), "none"},
    {"",                      outlineValue(),                                          "0 orlu.feedback.beautyPose float[]",             " 0.25 1.25 2.25", "none"},
    {"",                      left<float>("feedback", "face_skin_value", {4.5F, 5.5F, 6.5F}), "0 orlu.feedback.faceSkinValue float[]",   " 4.5 5.5 6.5", "none"},
    {"",                      outlineValue(),                                          "0 orlu.feedback.beautyFaceRect int[]",           " 22 21 23 24", "none"},
    {"",                      outlineValue(),                                          "0 orlu.feedback.beautyFaceNum Integer",          " 2", "none"},
    {"jpegEncode",            left("feedback", "jpeg_encoded_by_hw", {1}),             "0 orlu.feedback.jpegEncodedType Integer",        " 1", " 0"},
    {"jpegEncode",            left("feedback", "output_refocus_jpeg_pack_size", {8888}), "",                                             "", ""},
    {"lightstream",           left("feedback", "lightstream_crop_region", {11, 12, 13, 14}), "0 orlu.feedback.lightstreamCropRegion int[]", " 11 12 13 14", " 0 0 0 0"},
    {"lightstream",           left<float>("feedback", "lightstream_zoom_ratio", {2.5F}), "0 orlu.feedback.lightstreamZoomRatio Float",   " 2.5", " 0.0"},
    {"hdr",                   left("feedback", "hdr_choosed_frame", {4}),              "0 orlu.feedback.hdrChoosedFrame Integer",        " 4", " -1"},
    {"dualBokeh singleBokeh", left("feedback", "segment_detect_result", {2}),          "0 orlu.feedback.segmentResult Integer",          " 2", " -1"},
    {"bestMoment",            left("feedback", "bestmoment_index", {6}),               "0 orlu.feedback.bestmoment_index Integer",       " 6", " 0"}};

// Results that are put at the end of every request. Both gains are put as one value, into the last
// composition. Of "processed_algo", only the fourth word is put.
inline const std::vector<Result> kEnd = {
    {"", left("feedback", "frame_select_result", selectSecond()), "0 orlu.feedback.frameSelectResult long[]",       " 2", ""},
    {"", left<double>("parameter", "frame_clarity_score", scores()), "0 orlu.feedback.clarityScore double[]",       " 1.5", " 0.0 0.0"},
    {"", left("feedback", "current_base_frame_idx", {1}),         "",                                               "", ""},
    {"", left<int64_t>("control", "current_base_frame_time", {1234}), "0 orlu.feedback.basicFrameTimestamp Long",   " 1234", "none"},
    {"", left("parameter", "rawhdr_shot_ae_params", {5, -1001}),  "",                                               "", ""},
    {"", left("feedback", "tunning_mode", {8}),                   "0 orlu.feedback.TunningMode Integer",            " 12", " 0"},
    {"", left("feedback", "rawhdr_track_mode", {21}),             "0 orlu.feedback.AlgoRAWHDRMode Integer",         " 21", " 0"},
    {"", left("feedback", "rawhdr_track_scenetype", {22}),        "0 orlu.feedback.AlgoRAWHDRSceneType Integer",    " 22", " 0"},
    {"", left<float>("system", "real_gain", {1.5F}),              "",                                               "", ""},
    {"", left<float>("system", "dark_boost_gain", {2.5F}),        "1 orlu.feedback.rawhdrISPAEParams float[]",      " 1.5 2.5", " 0.0 0.0"},
    {"", left<uint64_t>("parameter", "processed_algo", {0x11, 0x22, 0x33, 0xFFFFFFFFFFFFFF00, 0x55}), "0 orlu.parameter.processedAlgo Long", " -256", " 0"},
    {"", left<uint8_t>("feedback", "pure2proc_enabled", {200}),   "0 orlu.feedback.pure2proc.enabled Integer",      " 200", " 0"},
    {"", left("feedback", "supermoon_capture_result", {31}),      "0 orlu.feedback.superMoonCaptureResult Integer", " 31", " -1"}};
// clang-format on

inline std::string putsOf(const std::vector<Result>& results, std::string Result::*value) {
  std::string text;
  for (const Result& result : results) {
    if (!result.put.empty() && result.*value != "none") text += result.put + result.*value + '\n';
  }
  return text;
}

// Returns the rows of `results` that are read if the algorithm list contains only `algorithm`.
inline std::vector<Result> resultsOf(const std::string& algorithm, const std::vector<Result>& results) {
  std::vector<Result> asked;
  for (const Result& result : results) {
    std::istringstream names(result.algorithms);
    std::string name;
    while (names >> name && name != algorithm) {
    }
    if (result.algorithms.empty() || name == algorithm) asked.push_back(result);
  }
  return asked;
}

inline const std::string kUnsetEnd = putsOf(kEnd, &Result::unset);

inline std::vector<LeftValue> everythingValues() {
  std::vector<LeftValue> values;
  for (const auto& results : {kResults, kEnd}) {
    for (const Result& result : results) values.push_back(result.left);
  }
  return values;
}

}  // namespace orlu::test
