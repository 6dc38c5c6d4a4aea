// Parameters for algorithms on processed images, from the user's settings and the camera: filter, portrait,
// distortion, watermark, zoom, focus and exposure regions, upscaling, documents and bright spots.

#include <algorithm>

#include "camera_role.h"
#include "metadata_updater_steps.h"

namespace orlu {
namespace {

constexpr char kOperation[] = "updateYuvFormat";  // helpers log it as their operation

constexpr int kBrightSpots = 20;

void writeFilterDetails(Shot& shot) {
  const auto info = shot.readOr<Floats<5>>("orlu.control.filterinfo");
  // clang-format off
  shot.write<float>(kParameter, "filter_info_angle",  info[0]);
  shot.write<float>(kParameter, "filter_info_left",   info[1]);
  shot.write<float>(kParameter, "filter_info_top",    info[2]);
  shot.write<float>(kParameter, "filter_info_right",  info[3]);
  shot.write<float>(kParameter, "filter_info_bottom", info[4]);
  // clang-format on
  const auto params = shot.copy<Ints<10>>("orlu.control.filterRenderParams", kParameter, "filter_params");
  LOGD_AS(kOperation, "filterParams %d %d", params[0], params[1]);
}

void writePortraitLight(Shot& shot) {
  shot.copy<int32_t>("orlu.control.relighting", kControl, "portrait_light_type");
  shot.copy<int32_t>("orlu.control.portraitStyle", kParameter, "portrait_style");
}

void writeDistortion(Shot& shot) {
  const auto faceCorrect = shot.readOr<int32_t>("orlu.control.face_correct");
  const auto distortion = shot.readOr<int32_t>("orlu.control.distortion_correction");
  if ((faceCorrect != 0 || distortion != 0) && !shot.listHas("distortion")) shot.append("distortion");
  shot.write<int32_t>(kControl, "optical_distort", distortion);
  LOGD_BARE(kShortLogTag, "Optical_distortion: %d  face_correct: %d", distortion, faceCorrect);
}

// A double exposure has its own watermark type, which updateDoubleExpo() writes.
void writeWatermark(Shot& shot) {
  const auto type = shot.readOr<int32_t>("orlu.control.watermark");
  const auto doubleExposure = shot.readOr<int32_t>("orlu.doubleExpo.capture");
  shot.write<int32_t>(kControl, "watermark_type", doubleExposure == 1 ? 0 : type);
  shot.copy<Chars<16>>("orlu.control.watermark_name", kControl, "watermark_dir");
}

void writeUserSettings(Shot& shot) {
  // clang-format off
  shot.copy<int32_t>("orlu.control.portrait.state",      kParameter, "portrait_preview_state");
  shot.copy<int32_t>("orlu.control.style_params",        kParameter, "style_params");
  shot.copy<int32_t>("orlu.control.beauty_param.enable", kParameter, "beauty_state");
  shot.copy<int32_t>("orlu.control.stepBeauty",          kParameter, "step_beauty_type");
  shot.copy<int32_t>("orlu.control.singleBlur_level",    kControl,   "singleblur_capture_level");
  shot.copy<int32_t>("orlu.control.gender_type",         kParameter, "gender_preview_type");
  // clang-format on
  const auto sequence =
      shot.copy<float>("orlu.feedback.yuvhdrFrameSequence", kControl, "yuvhdr_frame_seq_type");
  LOGD_AS(kOperation, "yuvhdrFrameSeqType: %f", static_cast<double>(sequence));
  shot.copy<int32_t>("com.orlu.current_ui_module", kControl, "ui_mode");
  shot.copy<Ints<10>>("orlu.control.3dLightParams", kParameter, "light_3d_params");
}

// `hdrFrames` contains indices into `masters`.
void writeHdrGains(Shot& shot, const FrameList& masters, const HdrFrameIndex& hdrFrames) {
  HdrExposures exposures;
  const int count = std::min(masters.size(), static_cast<int>(kHdrSlots));
  const auto repeated = shot.repeated(kAecTag);
  for (int i = 0; i < count; ++i) {
    const auto slot = static_cast<size_t>(i);
    exposures.set(slot, shot.exposureOf(masters.atOrLast(hdrFrames[slot])));
    LOGD_AS(kOperation, "hdrGains[%d]: %f, hdrShutters[%d]: %f, hdrFrameIndex:%d", i,
            static_cast<double>(exposures.gains[slot]), i, static_cast<double>(exposures.shutters[slot]),
            hdrFrames[slot]);
  }
  writeHdrExposures(shot, exposures);
}

void writeCrop(Shot& shot) {
  const auto crop = shot.copy<__tagOrluRect>("android.scaler.cropRegion", kZoom, "zoom_woi_rect");
  LOGD_AS(kOperation, "zoomWoiRect(%d, %d, %d, %d)", crop.left, crop.top, crop.right, crop.bottom);
  shot.copy<int32_t>("orlu.control.refocus_level", kControl, "refocus_level");
}

// Returns true if the list has an algorithm that uses the shot's exposure, if a front camera is in extreme
// mode, or if the shot has HD faces.
bool needsShotGains(const Shot& shot, int32_t hdFaceNum) {
  const auto extremeFront = shot.readBack<int32_t>(kControl, "is_extreme_front");
  const auto facing = shot.readBack<int32_t>(kSensor, "camera_facing");
  return shot.listHas("nightPortrait") || shot.listHas("eis") ||
         (facing == kFrontFacing && extremeFront > 0) || shot.listHas("hdr") || shot.listHas("zoom") ||
         hdFaceNum > 0;
}

void writeShotGains(Shot& shot) {
  const auto aec = shot.exposureOf(shot.first());
  shot.write<float>(kSystem, "safe_gain", aec[kAecSafeGain]);
  shot.write<float>(kSystem, "adrc_gain", aec[kAecAdrcGain]);
  shot.write<float>(kSystem, "drc_gain_dark", aec[kAecDarkBoostGain]);
  LOGD_AS(kOperation, "%s EIS or YUV HDR upadte safeGain %f adrcGainShot %f drcGainDark %f", kOperation,
          static_cast<double>(aec[kAecSafeGain]), static_cast<double>(aec[kAecAdrcGain]),
          static_cast<double>(aec[kAecDarkBoostGain]));
}

void writeSatCropRegions(Shot& shot) {
  const Ints<4> ltwh = readSatCropRegions(shot, shot.first());
  shot.write<Ints<4>>(kZoom, "sat_crop_regions", ltwh);
  LOGD_AS(kOperation, "algo process: satCropRegions ltwh %d %d %d %d", ltwh[0], ltwh[1], ltwh[2], ltwh[3]);
}

void writeDocument(Shot& shot) {
  const auto pack = shot.readOr<int32_t>("orlu.control.document.pack");
  const auto enableHr = shot.readOr<int32_t>("orlu.control.isEnableDocHR");
  const auto dioptres = shot.readOr<float>("android.lens.focusDistance");
  const auto scene = shot.readOr<int32_t>("orlu.capture.aiscene");
  const auto area = shot.readOr<int32_t>("orlu.control.document.area");
  const bool onlyHr = enableHr != 0 && !shot.listHas("ppt");
  if (onlyHr) shot.append("ppt");
  // In centimetres; infinite for a lens focused at infinity, where the tag is 0.
  const float centimetres = 100.0F / dioptres;
  // clang-format off
  shot.write<int32_t>(kParameter, "is_document_jpeg_pack", pack);
  shot.write<int32_t>(kParameter, "is_enable_doc_hr",      enableHr);
  shot.write<int32_t>(kParameter, "is_only_doc_hr",        onlyHr ? 1 : 0);
  shot.write<float>  (kParameter, "focusDistance",         centimetres);
  shot.write<int32_t>(kParameter, "aiSceneType",           scene);
  shot.write<int32_t>(kParameter, "hasDocArea",            area);
  // clang-format on
  LOGD_AS(kOperation, "orlu.control.document.pack %d", pack);
  // Logged again, whatever the log level, for production logs (Oddity 50).
  LOGD_BARE(kShortLogTag, "orlu.control.document.pack %d", pack);
}

// The keys are spelled "sport". The count is the first element of an array that is as long as the tag; the
// array's other elements are 0 (Oddity 32).
void writeBrightSpots(Shot& shot) {
  const auto spots = shot.readOr<Floats<1 + 2 * kBrightSpots>>("orlu.control.bright_spot");
  // The count is passed on unchanged, even if it exceeds kBrightSpots (Oddity 33).
  const int32_t count = toInt(spots[0]);
  Floats<2 * kBrightSpots> points = {};
  std::copy_n(&spots[1], 2 * std::clamp(count, 0, kBrightSpots), points.begin());
  shot.write<Ints<1 + 2 * kBrightSpots>>(kFeedback, "sport_num", {count});
  shot.write<Floats<2 * kBrightSpots>>(kFeedback, "sport_pointsf", points);
}

}  // namespace

void MetadataUpdater::updateYuvFormat() {
  mShot.keep(mFilterType, "orlu.control.filter", kParameter, "filter_type");
  if (mFilterType > 0) mShot.append("filter");
  mShot.keep(mFilterIntensity, "orlu.control.filterIntensity", kParameter, "filter_intensity");
  mShot.keep(mFilterMask, "orlu.control.filterMask", kParameter, "filter_mask");
  writeFilterDetails(mShot);
  writePortraitLight(mShot);
  writeDistortion(mShot);
  writeWatermark(mShot);
  mShot.keep(mUiZoomRatio, "orlu.control.zoom_ratio", kZoom, "ui_zoom_ratio");
  writeUserSettings(mShot);
  writeHdrGains(mShot, masterFrames(), mHdrFrameIndex);
  writeCrop(mShot);
  updateRegions();
  mShot.read("orlu.control.isUpscale", mIsUpscale);
  if (mShot.isRaw()) {
    mIsUpscale = 0;
    LOGD("raw shot need to close upscale!!!");
  }
  mShot.write<int32_t>(kControl, "is_upscale", mIsUpscale);
  if (mIsUpscale == 1) mShot.append("upscale");
  const auto hdFaceNum = mShot.copy<int32_t>("orlu.control.hdFacesNum", kParameter, "hd_face_num");
  if (needsShotGains(mShot, hdFaceNum)) writeShotGains(mShot);
  const auto scene = mShot.readOr<Ints<2>>("orlu.control.aiSceneType");
  mShot.write<int32_t>(kControl, "ai_scene_type", scene[0]);
  writeSatCropRegions(mShot);
  writeDocument(mShot);
  writeBrightSpots(mShot);
}

// If a region can't be converted, the tag's region is passed on unchanged. The focus region's weight is not
// passed on.
void MetadataUpdater::updateRegions() {
  MeteringRegion af = mShot.focusRegion();
  setVAFAfRegionShot(af.rect);
  mShot.write<__tagOrluRect>(kSystem, "af_regions", af.rect);

  MeteringRegion ae = mShot.exposureRegion();
  setVAFAeRegion(ae.rect);
  mShot.write<__tagOrluRect>(kSystem, "ae_regions", ae.rect);
  mShot.write<int32_t>(kSystem, "ae_weight", ae.weight);
  LOGD_AS(kOperation, "aeWeight = %d!!", ae.weight);
}

}  // namespace orlu
