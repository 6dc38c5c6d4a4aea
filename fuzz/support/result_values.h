// The values that the result half of a request reads from its parameter set, with the bytes of each.
#pragma once

#include "parameter_sections.h"

namespace orlu::fuzz {

struct ResultValue {
  const char* section;
  const char* key;
  unsigned size;
};

// clang-format off
constexpr ResultValue kResultValues[] = {
    {kFeedback,  "refocus_point_x",                   4},
    {kFeedback,  "refocus_point_y",                   4},
    {kFeedback,  "refocus_aperture",                  4},
    {kFeedback,  "refocus_jpeg_width",                4},
    {kFeedback,  "refocus_jpeg_height",               4},
    {kFeedback,  "encoded_jpeg_size",                 4},
    {kFeedback,  "decoded_jpeg_size",                 8},
    {kFeedback,  "refocus_ret_info",                256},
    {kFeedback,  "doc_process_type",                  4},
    {kFeedback,  "doc_class_type",                    4},
    {kFeedback,  "face_outline",                  10736},
    {kFeedback,  "face_skin_value",                  12},
    {kFeedback,  "jpeg_encoded_by_hw",                4},
    {kFeedback,  "output_refocus_jpeg_pack_size",     4},
    {kFeedback,  "lightstream_crop_region",          16},
    {kFeedback,  "lightstream_zoom_ratio",            4},
    {kFeedback,  "hdr_choosed_frame",                 4},
    {kFeedback,  "segment_detect_result",             4},
    {kFeedback,  "bestmoment_index",                  4},
    {kFeedback,  "frame_select_result",              80},
    {kFeedback,  "current_base_frame_idx",            4},
    {kFeedback,  "tunning_mode",                      4},
    {kFeedback,  "rawhdr_track_mode",                 4},
    {kFeedback,  "rawhdr_track_scenetype",            4},
    {kFeedback,  "pure2proc_enabled",                 1},
    {kFeedback,  "supermoon_capture_result",          4},
    {kParameter, "doc_jpeg_size",                     4},
    {kParameter, "rectify_wh",                        8},
    {kParameter, "step_beauty_type",                  4},
    {kParameter, "frame_clarity_score",             400},
    {kParameter, "rawhdr_shot_ae_params",             8},
    {kParameter, "processed_algo",                   40},
    {kControl,   "current_base_frame_time",           8},
    {kSystem,    "real_gain",                         4},
    {kSystem,    "dark_boost_gain",                   4},
};
// clang-format on

}  // namespace orlu::fuzz
