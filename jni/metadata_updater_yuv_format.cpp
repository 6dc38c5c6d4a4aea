// What the algorithms on processed images take from the user's settings and the camera: filter, portrait,
// distortion, watermark, zoom, focus and exposure regions, upscaling, documents and bright spots.

#include <algorithm>

#include "log.h"
#include "metadata_updater_rows.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-MetadataUpdater";
constexpr char kOperation[] = "updateYuvFormat";  // named by the lines of its parts

constexpr size_t kHdrSlots = 6;
constexpr size_t kBrightSpots = 20;

// "camera_facing" of a camera beside the screen.
constexpr int32_t kFrontFacing = 0;

// Last pixel less first one plus one; wraps where the difference has no room.
int32_t extent(int32_t first, int32_t last) {
  return static_cast<int32_t>(static_cast<uint32_t>(last) - static_cast<uint32_t>(first) + 1U);
}

}  // namespace

void MetadataUpdater::updateYuvFormat() {
  updateFilter();
  updatePortraitLight();
  updateDistortion();
  updateWatermark();
  updateUserSettings();
  updateHdrGains();
  updateCropAndRegions();
  updateUpscaleSwitch();
  const auto hdFaceNum = copy<int32_t>("orlu.control.hdFacesNum", kParameter, "hd_face_num");
  if (needsShotGains(hdFaceNum)) writeShotGains(__func__);
  write(kControl, "ai_scene_type", readOr(Ints<2>(), "orlu.control.aiSceneType", firstFrame())[0]);
  updateSatCropRegions();
  updateDocument();
  updateBrightSpots();
}

// clang-format off
void MetadataUpdater::updateFilter() {
  keep(mFilterType,      "orlu.control.filter",          kParameter, "filter_type");
  if (mFilterType > 0) append("filter");
  keep(mFilterIntensity, "orlu.control.filterIntensity", kParameter, "filter_intensity");
  keep(mFilterMask,      "orlu.control.filterMask",      kParameter, "filter_mask");
  const auto info = readOr(Floats<5>(), "orlu.control.filterinfo", firstFrame());
  write(kParameter, "filter_info_angle",  info[0]);
  write(kParameter, "filter_info_left",   info[1]);
  write(kParameter, "filter_info_top",    info[2]);
  write(kParameter, "filter_info_right",  info[3]);
  write(kParameter, "filter_info_bottom", info[4]);
  const auto params = copy<Ints<10>>("orlu.control.filterRenderParams", kParameter, "filter_params");
  LOGD_AS(kOperation, "filterParams %d %d", params[0], params[1]);
}

void MetadataUpdater::updatePortraitLight() {
  copy<int32_t>("orlu.control.relighting",    kControl,   "portrait_light_type");
  copy<int32_t>("orlu.control.portraitStyle", kParameter, "portrait_style");
}

void MetadataUpdater::updateDistortion() {
  const auto faceCorrect = readOr<int32_t>(0, "orlu.control.face_correct", firstFrame());
  const auto distortion  = readOr<int32_t>(0, "orlu.control.distortion_correction", firstFrame());
  if ((faceCorrect != 0 || distortion != 0) && !listHas("distortion")) append("distortion");
  write(kControl, "optical_distort", distortion);
  LOGD_BARE(kShortLogTag, "Optical_distortion: %d  face_correct: %d", distortion, faceCorrect);
}

void MetadataUpdater::updateWatermark() {
  const auto type           = readOr<int32_t>(0, "orlu.control.watermark", firstFrame());
  const auto doubleExposure = readOr<int32_t>(0, "orlu.doubleExpo.capture", firstFrame());
  write<int32_t>(kControl, "watermark_type", doubleExposure == 1 ? 0 : type);
  copy<Chars<16>>("orlu.control.watermark_name", kControl, "watermark_dir");
}

void MetadataUpdater::updateUserSettings() {
  keep(mUiZoomRatio, "orlu.control.zoom_ratio",          kZoom,      "ui_zoom_ratio");
  copy<int32_t>     ("orlu.control.portrait.state",      kParameter, "portrait_preview_state");
  copy<int32_t>     ("orlu.control.style_params",        kParameter, "style_params");
  copy<int32_t>     ("orlu.control.beauty_param.enable", kParameter, "beauty_state");
  copy<int32_t>     ("orlu.control.stepBeauty",          kParameter, "step_beauty_type");
  copy<int32_t>     ("orlu.control.singleBlur_level",    kControl,   "singleblur_capture_level");
  copy<int32_t>     ("orlu.control.gender_type",         kParameter, "gender_preview_type");
  const auto sequence = copy<float>("orlu.feedback.yuvhdrFrameSequence", kControl, "yuvhdr_frame_seq_type");
  LOGD_AS(kOperation, "yuvhdrFrameSeqType: %f", static_cast<double>(sequence));
  copy<int32_t>     ("com.orlu.current_ui_module",       kControl,   "ui_mode");
  copy<Ints<10>>    ("orlu.control.3dLightParams",       kParameter, "light_3d_params");
}
// clang-format on

void MetadataUpdater::updateHdrGains() {
  Floats<kHdrSlots> gains = {};
  Floats<kHdrSlots> shutters = {};  // milliseconds
  const int count = std::min(masterFrameNum(), static_cast<int>(kHdrSlots));
  const CameraMetadataParser::RepeatedTag repeated(*mParser, kAecTag);
  for (int i = 0; i < count; ++i) {
    const auto slot = static_cast<size_t>(i);
    const Aec aec = readOr(Aec(), kAecTag, masterFrameAt(mHdrFrameIndex[slot]));
    gains[slot] = aec[kAecRealGain];
    shutters[slot] = aec[kAecExposureTime] / kNanosecondsPerMillisecond;
    LOGD_AS(kOperation, "hdrGains[%d]: %f, hdrShutters[%d]: %f, hdrFrameIndex:%d", i,
            static_cast<double>(gains[slot]), i, static_cast<double>(shutters[slot]), mHdrFrameIndex[slot]);
  }
  write(kParameter, "hdr_gains", gains);
  write(kParameter, "hdr_shutters", shutters);
}

// The regions are handed over as they were read where there is nothing to convert them with.
void MetadataUpdater::updateCropAndRegions() {
  const auto crop = copy<__tagOrluRect>("android.scaler.cropRegion", kZoom, "zoom_woi_rect");
  LOGD_AS(kOperation, "zoomWoiRect(%d, %d, %d, %d)", crop.left, crop.top, crop.right, crop.bottom);
  copy<int32_t>("orlu.control.refocus_level", kControl, "refocus_level");

  int32_t afWeight = 0;  // only the exposure region's weight is handed over
  __tagOrluRect af = readMetering(afWeight, "android.control.afRegions");
  setVAFAfRegionShot(af);
  write(kSystem, "af_regions", af);

  int32_t aeWeight = 0;
  __tagOrluRect ae = readMetering(aeWeight, "android.control.aeRegions");
  setVAFAeRegion(ae);
  write(kSystem, "ae_regions", ae);
  write(kSystem, "ae_weight", aeWeight);
  LOGD_AS(kOperation, "aeWeight = %d!!", aeWeight);
}

void MetadataUpdater::updateUpscaleSwitch() {
  read(mIsUpscale, "orlu.control.isUpscale");
  if (isRawFormat() != 0) {
    mIsUpscale = 0;
    LOGD_AS(kOperation, "raw shot need to close upscale!!!");
  }
  write(kControl, "is_upscale", mIsUpscale);
  if (mIsUpscale == 1) append("upscale");
}

bool MetadataUpdater::needsShotGains(int32_t hdFaceNum) {
  const auto extremeFront = readBack<int32_t>(kControl, "is_extreme_front");
  const auto facing = readBack<int32_t>(kSensor, "camera_facing");
  return listHas("nightPortrait") || listHas("eis") || (facing == kFrontFacing && extremeFront > 0) ||
         listHas("hdr") || listHas("zoom") || hdFaceNum > 0;
}

// `step` names the caller in the log.
void MetadataUpdater::writeShotGains(const char* step) {
  const Aec aec = readOr(Aec(), kAecTag, firstFrame());
  write(kSystem, "safe_gain", aec[kAecSafeGain]);
  write(kSystem, "adrc_gain", aec[kAecAdrcGain]);
  write(kSystem, "drc_gain_dark", aec[kAecDarkBoostGain]);
  LOGD_AS(kOperation, "%s EIS or YUV HDR upadte safeGain %f adrcGainShot %f drcGainDark %f", step,
          static_cast<double>(aec[kAecSafeGain]), static_cast<double>(aec[kAecAdrcGain]),
          static_cast<double>(aec[kAecDarkBoostGain]));
}

// Left, top, width and height of what a switching multi-camera system crops.
std::array<int32_t, 4> MetadataUpdater::readSatCropRegions(const Frame& frame) {
  const auto rect = readOr(__tagOrluRect(), "orlu.parameter.crop_region_sat", frame);
  return {rect.left, rect.top, extent(rect.left, rect.right), extent(rect.top, rect.bottom)};
}

void MetadataUpdater::updateSatCropRegions() {
  const Ints<4> ltwh = readSatCropRegions(firstFrame());
  write(kZoom, "sat_crop_regions", ltwh);
  LOGD_AS(kOperation, "algo process: satCropRegions ltwh %d %d %d %d", ltwh[0], ltwh[1], ltwh[2], ltwh[3]);
}

void MetadataUpdater::updateDocument() {
  const auto pack = readOr<int32_t>(0, "orlu.control.document.pack", firstFrame());
  const auto enableHr = readOr<int32_t>(0, "orlu.control.isEnableDocHR", firstFrame());
  const auto dioptres = readOr<float>(0, "android.lens.focusDistance", firstFrame());
  const auto scene = readOr<int32_t>(0, "orlu.capture.aiscene", firstFrame());
  const auto area = readOr<int32_t>(0, "orlu.control.document.area", firstFrame());
  const bool onlyHr = enableHr != 0 && !listHas("ppt");
  if (onlyHr) append("ppt");
  write(kParameter, "is_document_jpeg_pack", pack);
  write(kParameter, "is_enable_doc_hr", enableHr);
  write<int32_t>(kParameter, "is_only_doc_hr", onlyHr ? 1 : 0);
  // Centimetres; infinite for a lens focused at infinity, which tells 0.
  write(kParameter, "focusDistance", 100.0F / dioptres);
  write(kParameter, "aiSceneType", scene);
  write(kParameter, "hasDocArea", area);
  LOGD_AS(kOperation, "orlu.control.document.pack %d", pack);
  LOGD_BARE(kShortLogTag, "orlu.control.document.pack %d", pack);
}

// The keys say "sport", deliberately.
void MetadataUpdater::updateBrightSpots() {
  const auto spots = readOr(Floats<1 + 2 * kBrightSpots>(), "orlu.control.bright_spot", firstFrame());
  // The count is handed on as it stands, also past the table.
  const Ints<1 + 2 * kBrightSpots> count = {toInt(spots[0])};
  Floats<2 * kBrightSpots> points = {};
  std::copy_n(&spots[1], 2 * std::clamp(count[0], 0, static_cast<int>(kBrightSpots)), points.begin());
  write(kFeedback, "sport_num", count);
  write(kFeedback, "sport_pointsf", points);
}

}  // namespace orlu
