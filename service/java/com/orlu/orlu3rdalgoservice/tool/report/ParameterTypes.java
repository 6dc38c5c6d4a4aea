package com.orlu.orlu3rdalgoservice.tool.report;

import java.util.HashMap;
import java.util.Map;

/**
 * What each known parameter's bytes are, one line a key. Sections in their own methods, keys in alphabetical
 * order.
 */
final class ParameterTypes {
    private static final String PREFIX = "orlu.algo.";
    private static final Map<String, ParameterType> TYPES = new HashMap<>();

    private static String sSection;

    static {
        addControl();
        addParameter();
        addSensor();
        addFeedback();
        addSystem();
        addZoom();
    }

    private ParameterTypes() {
    }

    /** The type of a parameter; BYTES for one that is not known. */
    static ParameterType of(String section, String key) {
        return TYPES.getOrDefault(section + " " + key, ParameterType.BYTES);
    }

    private static void section(String name) {
        sSection = PREFIX + name;
    }

    private static void key(String key, ParameterType type) {
        TYPES.put(sSection + " " + key, type);
    }

    private static void addControl() {
        section("control");
        key("abort_key", ParameterType.TEXT);
        key("abort_val", ParameterType.LONG);
        key("ai_scene_type", ParameterType.INT);
        key("auto_test_open", ParameterType.INT);
        key("bokeh_algo_step", ParameterType.INT);
        key("bokeh_expotime", ParameterType.FLOATS);
        key("bokeh_facula_capture", ParameterType.INT);
        key("bokeh_request_id", ParameterType.LONGS);
        key("bokeh_timestamp", ParameterType.LONGS);
        key("call_from_user_app", ParameterType.INT);
        key("current_base_frame_time", ParameterType.LONG);
        key("device_rotation", ParameterType.INT);
        key("dump_timestamp", ParameterType.UNSIGNED_LONG);
        key("film_size", ParameterType.INT);
        key("flash_mode", ParameterType.INT);
        key("frame_flag", ParameterType.LONG);
        key("frame_id", ParameterType.INTS);
        key("frame_number", ParameterType.LONG);
        key("frameclarity_index", ParameterType.INTS);
        key("input_basic_frameidx", ParameterType.INT);
        key("input_frame_timestamp", ParameterType.LONGS);
        key("is_bokeh_raw_nr", ParameterType.BOOL);
        key("is_call_from_app", ParameterType.INT);
        key("is_extreme_front", ParameterType.INT);
        key("is_fusion_Select", ParameterType.BOOL);
        key("is_gra_capture", ParameterType.INT);
        key("is_open_ainr", ParameterType.INT);
        key("is_rawnr_capture", ParameterType.INT);
        key("is_sat_fusion", ParameterType.BOOL);
        key("is_upscale", ParameterType.INT);
        key("jpeg_rotation", ParameterType.INT);
        key("motion_level", ParameterType.INT);
        key("optical_distort", ParameterType.INT);
        key("portrait_light_type", ParameterType.INT);
        key("refocus_level", ParameterType.INT);
        key("shot_req_frame_num", ParameterType.INTS);
        key("singleblur_capture_level", ParameterType.INT);
        key("softbrp_mode", ParameterType.INT);
        key("ui_mode", ParameterType.INT);
        key("update_watermark_from_appvif", ParameterType.INT);
        key("update_watermark_type", ParameterType.INT);
        key("use_graphic_buffer", ParameterType.BOOL);
        key("watermark_dir", ParameterType.TEXT);
        key("watermark_type", ParameterType.INT);
        key("yuvhdr_frame_seq_type", ParameterType.FLOAT);
    }

    private static void addParameter() {
        section("parameter");
        key("aiSceneType", ParameterType.INT);
        key("analog_gain", ParameterType.FLOAT);
        key("beauty_extra_params", ParameterType.INTS);
        key("beauty_new_params", ParameterType.INTS);
        key("beauty_state", ParameterType.INT);
        key("ccm_matrix", ParameterType.FLOATS);
        key("digital_gain", ParameterType.FLOAT);
        key("double_expo_shot_alpha_insensity", ParameterType.INT);
        key("double_expo_shot_bright_type", ParameterType.INT);
        key("double_expo_shot_need_input_02r180_mirror", ParameterType.INT);
        key("double_expo_shot_need_input_02r180_rotation", ParameterType.INT);
        key("double_expo_shot_proc_type", ParameterType.INT);
        key("exif_info_for_write", ParameterType.EXIF);
        key("eyelight_type", ParameterType.TEXT);
        key("filter_info_angle", ParameterType.FLOAT);
        key("filter_info_bottom", ParameterType.FLOAT);
        key("filter_info_left", ParameterType.FLOAT);
        key("filter_info_right", ParameterType.FLOAT);
        key("filter_info_top", ParameterType.FLOAT);
        key("filter_intensity", ParameterType.FLOAT);
        key("filter_mask", ParameterType.INT);
        key("filter_params", ParameterType.INTS);
        key("filter_type", ParameterType.INT);
        key("focusDistance", ParameterType.FLOAT);
        key("frame_clarity_score", ParameterType.DOUBLES);
        key("gamma_table", ParameterType.INTS);
        key("gender_preview_type", ParameterType.INT);
        key("gtm_table", ParameterType.LONGS);
        key("hasDocArea", ParameterType.INT);
        key("hd_face_num", ParameterType.INT);
        key("hdr_gains", ParameterType.FLOATS);
        key("hdr_process_type", ParameterType.INT);
        key("hdr_shutters", ParameterType.FLOATS);
        key("heavy_makeup_type", ParameterType.INTS);
        key("heavy_makeup_value", ParameterType.INTS);
        key("highTemperature", ParameterType.INT);
        key("isNativeBeauty", ParameterType.INT);
        key("is_document_jpeg_pack", ParameterType.INT);
        key("is_double_expo_shot", ParameterType.INT);
        key("is_enable_doc_hr", ParameterType.INT);
        key("is_fast_display_request", ParameterType.INT);
        key("is_image_score_calculated", ParameterType.INT);
        key("is_makeup_use_male_value", ParameterType.INT);
        key("is_mipi_raw_input", ParameterType.BOOL);
        key("is_need_image_score_calculate", ParameterType.INT);
        key("is_only_doc_hr", ParameterType.INT);
        key("light_3d_params", ParameterType.INTS);
        key("lightstream_input_num", ParameterType.INT);
        key("lightstream_last_call_flag", ParameterType.INT);
        key("lightstream_mode", ParameterType.INT);
        key("makeup_params", ParameterType.INTS);
        key("motion_rawenhance", ParameterType.INT);
        key("night_frame_index", ParameterType.INT);
        key("pano_picture_size_height", ParameterType.INT);
        key("pano_picture_size_width", ParameterType.INT);
        key("panorama_capture", ParameterType.INT);
        key("portrait_night_mode", ParameterType.INT);
        key("portrait_preview_state", ParameterType.INT);
        key("portrait_style", ParameterType.INT);
        key("processed_algo", ParameterType.BITS);
        key("raw_bayer_filter", ParameterType.INT);
        key("raw_bit_per_pixel", ParameterType.INT);
        key("raw_packed_type", ParameterType.INT);
        key("rawhdr_shot_mode", ParameterType.INT);
        key("refocus_command", ParameterType.TEXT);
        key("refocus_jpegpack_params", ParameterType.REFOCUS_PACK);
        key("refocus_point_x", ParameterType.INT);
        key("refocus_point_y", ParameterType.INT);
        key("step_beauty_type", ParameterType.INT);
        key("style_params", ParameterType.INT);
        key("superns_adrc_gain", ParameterType.FLOATS);
        key("superns_flash_adrc_gain", ParameterType.FLOATS);
        key("superns_flash_real_gain", ParameterType.FLOATS);
        key("superns_long_gain", ParameterType.FLOATS);
        key("superns_merge_num", ParameterType.INT);
        key("superns_real_gain", ParameterType.FLOATS);
        key("vaf_camera_role", ParameterType.INT);
    }

    private static void addSensor() {
        section("sensor");
        key("bayer_filter", ParameterType.INT);
        key("camera_composition", ParameterType.TEXT);
        key("camera_facing", ParameterType.INT);
        key("camera_id", ParameterType.INT);
        key("camera_sat_role", ParameterType.INT);
        key("camera_type", ParameterType.TEXT);
        key("has_pdaf_info", ParameterType.BOOL);
        key("is_mirror", ParameterType.INT);
        key("optical_stabilization_mode", ParameterType.INT);
        key("pdaf_info", ParameterType.PHASE_DETECTION);
        key("remosaic_eeprom_data", ParameterType.BYTES);
        key("remosaic_mode", ParameterType.INT);
        key("remosaic_type", ParameterType.INT);
        key("sensor_active_size", ParameterType.INTS);
        key("sensor_crop_region", ParameterType.SENSOR_CROP);
    }

    private static void addFeedback() {
        section("feedback");
        key("current_base_frame_idx", ParameterType.INT);
        key("frame_select_result", ParameterType.INTS);
        key("front_superns_capture_frame_ev_control_info", ParameterType.INTS);
        key("scene_type", ParameterType.INT);
        key("sport_num", ParameterType.COUNT);
        key("sport_pointsf", ParameterType.FLOATS);
    }

    private static void addSystem() {
        section("system");
        key("adrc_gain", ParameterType.FLOAT);
        key("adrc_gain_normal", ParameterType.FLOAT);
        key("ae_regions", ParameterType.RECT);
        key("ae_weight", ParameterType.INT);
        key("af_regions", ParameterType.RECT);
        key("awb_bgain", ParameterType.FLOAT);
        key("awb_cct", ParameterType.INT);
        key("awb_ggain", ParameterType.FLOAT);
        key("awb_rgain", ParameterType.FLOAT);
        key("dark_boost_gain", ParameterType.FLOAT);
        key("drc_gain_dark", ParameterType.FLOAT);
        key("exp_gain_ratio", ParameterType.FLOAT);
        key("exp_index", ParameterType.FLOAT);
        key("exp_sensitivity_ratio", ParameterType.FLOAT);
        key("exp_time_normal", ParameterType.MILLISECONDS);
        key("exp_time_ratio", ParameterType.FLOAT);
        key("exp_time_short", ParameterType.FLOAT);
        key("face_info", ParameterType.FACES);
        key("flash_adrc_gain", ParameterType.FLOAT);
        key("flash_real_gain", ParameterType.FLOAT);
        key("image_size_max", ParameterType.INTS);
        key("isp_gain", ParameterType.FLOAT);
        key("isp_gain_normal", ParameterType.FLOAT);
        key("isp_gain_short", ParameterType.FLOAT);
        key("long_gain", ParameterType.FLOAT);
        key("lux_index_shot", ParameterType.FLOAT);
        key("safe_gain", ParameterType.FLOAT);
        key("sensor_gain", ParameterType.FLOAT);
        key("sensor_gain_normal", ParameterType.FLOAT);
        key("sensor_gain_short", ParameterType.FLOAT);
        key("shading_map", ParameterType.FLOATS);
        key("upscale_height", ParameterType.INT);
        key("upscale_scanline", ParameterType.INTS);
        key("upscale_stride", ParameterType.INTS);
        key("upscale_width", ParameterType.INT);
    }

    private static void addZoom() {
        section("zoom");
        key("bokeh50mm_zoom_ratio", ParameterType.FLOAT);
        key("digital_zoom_ratio", ParameterType.FLOAT);
        key("orlu_zoom_ratio", ParameterType.FLOAT);
        key("platform_zoom_ratio", ParameterType.FLOAT);
        key("sat_crop_regions", ParameterType.CROP);
        key("ui_zoom_ratio", ParameterType.FLOAT);
        key("zoom_woi_rect", ParameterType.RECT);
    }
}
