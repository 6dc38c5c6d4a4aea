// The values that the result half of a request reads from its parameter set, with the bytes of each.
#pragma once

#include <vector>

#include "algo_interface.h"

namespace orlu::fuzz {

// Values of one section and size.
struct ResultValues {
  const char* section;
  unsigned size;
  std::vector<const char*> keys;
};

// clang-format off
const ResultValues kResultValues[] = {
    {kFeedback,      4, {"refocus_point_x", "refocus_point_y", "refocus_aperture", "refocus_jpeg_width",
                         "refocus_jpeg_height", "encoded_jpeg_size", "doc_process_type", "doc_class_type",
                         "jpeg_encoded_by_hw", "output_refocus_jpeg_pack_size", "lightstream_zoom_ratio",
                         "hdr_choosed_frame", "segment_detect_result", "bestmoment_index",
                         "current_base_frame_idx", "tunning_mode", "rawhdr_track_mode",
                         "rawhdr_track_scenetype", "supermoon_capture_result"}},
    {kFeedback,      1, {"pure2proc_enabled"}},
    {kFeedback,      8, {"decoded_jpeg_size"}},
    {kFeedback,     12, {"face_skin_value"}},
    {kFeedback,     16, {"lightstream_crop_region"}},
    {kFeedback,     80, {"frame_select_result"}},
    {kFeedback,    256, {"refocus_ret_info"}},
    {kFeedback,  10736, {"face_outline"}},
    {kParameter,     4, {"doc_jpeg_size", "step_beauty_type"}},
    {kParameter,     8, {"rectify_wh", "rawhdr_shot_ae_params"}},
    {kParameter,    40, {"processed_algo"}},
    {kParameter,   400, {"frame_clarity_score"}},
    {kControl,       8, {"current_base_frame_time"}},
    {kSystem,        4, {"real_gain", "dark_boost_gain"}},
};
// clang-format on

}  // namespace orlu::fuzz
