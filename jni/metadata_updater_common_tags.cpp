// Facts that any algorithm may need. Later steps rely on them.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "jni_support.h"
#include "metadata_updater_steps.h"

namespace orlu {
namespace {

constexpr char kOperation[] = "updateCommonTags";  // helpers log it as their operation

// Length of the algorithms' frame lists.
constexpr int kListedFrames = 16;

// Value of "android.control.aeMode" that fires the flash for every picture.
constexpr int32_t kAeModeAlwaysFlash = 3;

// The camera's fixed-point units for gains.
constexpr int32_t kAnalogGainUnit = 1024;
constexpr int32_t kDigitalGainUnit = 4096;

// Value of "com.orlu.current_ui_module" for the application page that uses the user's zoom ratio.
constexpr int32_t kModuleWithUserZoom = 7;

void writeSensorTags(Shot& shot, int32_t& isRawnrCapture) {
  const auto stabilization =
      shot.copy<int32_t>("android.lens.opticalStabilizationMode", kSensor, "optical_stabilization_mode");
  LOGD_AS(kOperation, "opticalStabilizationMode =  %d", stabilization);
  // Only the application may set this tag (Oddity 52).
  const Frame composition = shot.first().compositionOnly();
  const auto fromUserApp =
      shot.copy<int32_t>(composition, "orlu.control.callFromUserApp", kControl, "call_from_user_app");
  LOGD_AS(kOperation, "call from user app %d", fromUserApp);
  shot.write<SCR_Type>(kSensor, "sensor_crop_region", shot.sensorCrop());
  shot.write<_tagOrluSize>(kSensor, "sensor_active_size", readActiveSize(shot));
  shot.write<Ints<2>>(kSystem, "image_size_max", shot.imageSizes());
  // clang-format off
  shot.keep(isRawnrCapture, "orlu.control.is_rawnr_mode", kControl, "is_rawnr_capture");
  shot.copy<int32_t>       ("orlu.control.bokeh_facula",  kControl, "bokeh_facula_capture");
  // clang-format on
}

void writePictureTags(Shot& shot) {
  const auto filmSize = shot.copy<int32_t>("orlu.control.filmSize", kControl, "film_size");
  const auto doubleExposure = shot.readOr<int32_t>("orlu.doubleExpo.capture");
  if (filmSize == 1 && doubleExposure == 0) shot.append("blackImg");
  shot.write<bool>(kParameter, "is_mipi_raw_input", shot.inputFormat() == kFormatMipiRaw10);
  shot.copy<int32_t>("orlu.control.camera_id", kSensor, "camera_id");
  const auto mirror = shot.copy<int32_t>("orlu.control.mirror", kSensor, "is_mirror");
  if (mirror == 1) shot.append("flip");
}

void writeZoomRatios(Shot& shot) {
  const float platform = shot.zoomRatio();
  shot.write<float>(kZoom, "platform_zoom_ratio", platform);
  LOGD_AS(kOperation, "updateCommonTags tag:android.control.zoomRatio platformZoomRatio=%f",
          static_cast<double>(platform));
  shot.copy<float>("orlu.control.zoom_ratio", kZoom, "orlu_zoom_ratio");
  const auto bokeh = shot.copy<float>("com.orlu.zoomRatioFocallen50mmBokeh", kZoom, "bokeh50mm_zoom_ratio");
  LOGD_AS(kOperation, "zoomRatioBokeh50mm:%0.2f", static_cast<double>(bokeh));
}

// Writes whole units; the fraction is lost (Oddity 20).
void writeGain(Shot& shot, const char* tag, int32_t unit, const char* key) {
  const int32_t wholeUnits = shot.readOr<int32_t>(tag) / unit;
  shot.write<float>(kParameter, key, static_cast<float>(wholeUnits));
}

void writeShotTags(Shot& shot, Ints<25>& frontEvControl) {
  shot.copy<int32_t>("orlu.control.sensorMode", kSensor, "remosaic_mode");
  writeGain(shot, "orlu.feedback.analog_gain", kAnalogGainUnit, "analog_gain");
  writeGain(shot, "orlu.feedback.digital_gain", kDigitalGainUnit, "digital_gain");
  // clang-format off
  shot.copyBytes<8482>  ("orlu.parameter.remosaicOTPData",   kSensor, "remosaic_eeprom_data");
  shot.copy<int32_t>    ("orlu.feedback.AWBFrameControlCCT", kSystem, "awb_cct");
  // writeExposureControl() later overwrites this value with the exposure record's gain (Oddity 18).
  shot.copy<float>      ("orlu.feedback.RealGain",           kSystem, "flash_real_gain");
  shot.copy<float>      ("orlu.feedback.AdrcGain",           kSystem, "flash_adrc_gain");
  // clang-format on
  const bool isFlashOn = shot.readOr<int32_t>("android.control.aeMode") == kAeModeAlwaysFlash;
  shot.write<int32_t>(kControl, "flash_mode", isFlashOn ? 1 : 0);
  const auto frameFlag = shot.copy<int64_t>("orlu.control.frameFlag", kControl, "frame_flag");
  LOGD_AS(kOperation, "frameFlag: %lld", static_cast<long long>(frameFlag));
  shot.copy<int32_t>("orlu.control.extremeMode", kControl, "is_extreme_front");
  shot.keep(frontEvControl, "orlu.parameter.OrluFrontCaptureFrameEvControl", kFeedback,
            "front_superns_capture_frame_ev_control_info");
  shot.copy<int32_t>("orlu.parameter.portraitNightMode", kParameter, "portrait_night_mode");
}

// A new updater has no master frames yet, so both lists are zero (Oddity 15).
void writeFrameLists(Shot& shot, const FrameList& masters) {
  Ints<kListedFrames> ids = {};
  Longs<kListedFrames> timestamps = {};
  const int count = std::min(masters.size(), kListedFrames);
  for (int i = 0; i < count; ++i) {
    const auto slot = static_cast<size_t>(i);
    shot.read(masters.at(i), "orlu.control.reqID", ids[slot]);
    shot.read(masters.at(i), "android.sensor.timestamp", timestamps[slot]);
    LOGD_AS(kOperation, "start process input timeStamps[%d]=%lld, reqId = %lld .", i,
            static_cast<long long>(timestamps[slot]), static_cast<long long>(ids[slot]));
  }
  shot.write<Ints<kListedFrames>>(kControl, "frame_id", ids);
  shot.write<Longs<kListedFrames>>(kControl, "input_frame_timestamp", timestamps);
}

bool isUsable(int32_t pdafType, int32_t isCompensated) {
  return pdafType == 3 || pdafType == 4 || (pdafType == 2 && isCompensated == 0);
}

// Writes the sensor's phase-detection autofocus data for the algorithms that refocus.
void writePhaseDetection(Shot& shot) {
  LargeBytes<sizeof(SensorPdafInfo)> bytes;
  shot.read("orlu.feedback.sensor_pdaf_info", bytes);
  const auto isCompensated = shot.readOr<int32_t>("orlu.feedback.isPDCompensation");
  auto* const sensor = reinterpret_cast<SensorPdafInfo*>(bytes.data.get());
  const bool usable = sensor != nullptr && isUsable(sensor->type, isCompensated);
  if (usable) {
    // The count is passed on unchanged, even if it exceeds the table's length (Oddity 33).
    const int pairs = std::clamp(sensor->info.count, 0, PdafInfo::kPairs);
    std::fill(sensor->info.pairs + pairs, std::end(sensor->info.pairs), PdafPair());
  } else {
    bytes.data.reset();
  }
  shot.parameters().setBytes(kSensor, "pdaf_info", bytes.orZeros(), sizeof(PdafInfo));
  shot.write<bool>(kSensor, "has_pdaf_info", usable);
}

void writeDigitalZoom(Shot& shot) {
  const auto module = shot.readOr<int32_t>("com.orlu.current_ui_module");
  const bool isUserZoom = shot.listHas("dualBokeh") || module == kModuleWithUserZoom;
  const char* const tag = isUserZoom ? "orlu.control.zoom_ratio" : "orlu.parameter.digitalzoom";
  const auto ratio = shot.readOr<float>(tag);
  LOGD_AS(kOperation, "updateCommonTags tag:%s digitalzoomratio=%f", tag, static_cast<double>(ratio));
  shot.write<float>(kZoom, "digital_zoom_ratio", ratio);
}

void writeBokehStep(Shot& shot, int32_t enableHwMFNR) {
  const bool isBokehStep = shot.listHas("dualbokehMultiFrame") && enableHwMFNR == 0;
  shot.write<int32_t>(kControl, "bokeh_algo_step", isBokehStep ? 1 : 0);
}

void writeRawHdrMode(Shot& shot) {
  shot.copy<int32_t>("orlu.parameter.softbrp_mode", kControl, "softbrp_mode");
  // Reads the camera's own tag, which no application may change (Oddity 52).
  const Frame camera = shot.first().captureResultOnly();
  const auto rawHdr = shot.readOr<Ints<3>>(camera, "orlu.parameter.rawHDRParams");
  shot.write<int32_t>(kParameter, "rawhdr_shot_mode", rawHdr[0]);
}

void writeTemperature(Shot& shot) {
  const auto temperature = shot.copy<int32_t>("orlu.capture.temperature", kParameter, "highTemperature");
  LOGD_BARE(kShortLogTag, "%s: highTemperature: %d", kOperation, temperature);
}

void writeSceneType(Shot& shot) {
  const int32_t scene = readSceneType(shot);
  shot.write<int32_t>(kFeedback, "scene_type", scene);
  LOGD_BARE(kShortLogTag, "%s: sceneType: %d", kOperation, scene);
}

void writeMemoryKind(Shot& shot) {
  const AlgoFrameInfo* const output = shot.firstOutput();
  const bool isHardwareBuffer = output != nullptr && output->nativeHandle != nullptr;
  shot.write<bool>(kControl, "use_graphic_buffer", isHardwareBuffer);
}

int downloadPrivateData(const Shot& shot, const char* section, const char* key, void* data, unsigned size) {
  if (section == nullptr || key == nullptr || data == nullptr) return -1;
  char tag[128] = {};
  std::snprintf(tag, sizeof tag, "%s.%s", section, key);
  LOGD_AS("updatePreviewAlgoPrivateData2Shot", "checkxx download %s.%s : data %p, size %zu", section, key,
          data, static_cast<size_t>(size));
  mendText(tag);
  ByteBuffer buffer = {data, static_cast<int>(size)};
  return shot.read(tag, buffer);
}

}  // namespace

void MetadataUpdater::updateCommonTags() {
  mShot.read("orlu.parameter.enableHwMFNR", mEnableHwMFNR);
  updatePreviewAlgoPrivateData2Shot();
  updateBokehNight();  // before the raw noise reduction mode is read (Oddity 16)
  mShot.write<int32_t>(kControl, "is_call_from_app", 1);
  writeSensorTags(mShot, mIsRawnrCapture);
  writePictureTags(mShot);
  writeZoomRatios(mShot);
  updateFaceInfo();
  updateFrameIdentity();
  writeShotTags(mShot, mFrontEvControl);
  writeFrameLists(mShot, masterFrames());
  writeBokehStep(mShot, mEnableHwMFNR);
  updateCameraType();
  writePhaseDetection(mShot);
  writeDigitalZoom(mShot);
  writeExposureControl(mShot, mShot.exposureOf(mShot.first()));
  writeRawHdrMode(mShot);
  writeTemperature(mShot);
  writeSceneType(mShot);
  writeMemoryKind(mShot);
}

// Lets the algorithms fetch values of the shot's tags.
void MetadataUpdater::updatePreviewAlgoPrivateData2Shot() {
  paramSystemDownloadToAlgo([this](const char* section, const char* key, void* data, unsigned size) {
    return downloadPrivateData(mShot, section, key, data, size);
  });
}

void MetadataUpdater::updateFrameIdentity() {
  mBasicFrameIndex = -1;
  const bool isRaw = mShot.isRaw();
  mShot.keep(mBasicFrameIndex, isRaw ? "algo.param.basic_frame_index" : "orlu.parameter.basic_frame_index",
             kControl, "input_basic_frameidx");
  mIsSatFusion = mShot.readOr<int32_t>("orlu.control.sat_fusionStatus") > 0;
  mShot.write<bool>(kControl, "is_sat_fusion", mIsSatFusion);
  mShot.read("algo.param.fusion_basic_frame_select", mFusionBasicFrameSelect);
  mShot.write<bool>(kControl, "is_fusion_Select", mFusionBasicFrameSelect > 0);
  mShot.keep(mJpegOrientation, "android.jpeg.orientation", kControl, "jpeg_rotation");
  mShot.write<int32_t>(kControl, "device_rotation", mJpegOrientation);
  // Logged before the request id is read, so the line shows 0 (Oddity 51).
  LOGD_BARE(kShortLogTag,
            "start process basic frame idx %d, rotation %d, reqId = %ld input fusionselect %d, satfusion %d.",
            mBasicFrameIndex, mJpegOrientation, static_cast<long>(mRequestId), mFusionBasicFrameSelect,
            mIsSatFusion);
  mShot.read("orlu.control.reqID", mRequestId);
  mShot.write<int64_t>(kControl, "frame_number", mRequestId);
  const auto localTime = mShot.readOr<Text<16>>("orlu.control.localtime");
  mShot.write<uint64_t>(kControl, "dump_timestamp", std::strtoull(localTime.data, nullptr, 0));
}

void MetadataUpdater::updateFaceInfo() {
  const auto isEmpty = [](const __tagOrluRect& rect) {
    return rect.left >= rect.right || rect.top >= rect.bottom;
  };
  _tagOrluFaceInfo faces = readFaces(mShot, mShot.first());
  // The first empty rectangle ends the list, even if valid ones follow. Rectangles beyond the end of the
  // table are treated as empty.
  const __tagOrluRect* const rects = faces.rects;
  const auto* const tableEnd = rects + std::min(faces.count, kMaxFaces);
  const auto available = static_cast<int32_t>(std::find_if(rects, tableEnd, isEmpty) - rects);
  if (available < faces.count) {
    faces.count = available;
    LOGD_AS(kOperation, "faceRect is error, change faceNum to available faceNum: %d", faces.count);
  }
  if (const AlgoFrameInfo* input = mShot.firstInput()) {
    convertFace(faces, input->width, input->height, isRawImageFormat(input->format));
  }
  mShot.write<_tagOrluFaceInfo>(kSystem, "face_info", faces);
  const __tagOrluRect& first = rects[0];
  LOGD_AS(kOperation, "start process input face num %d (%d %d %d %d)", faces.count, first.left, first.top,
          first.right, first.bottom);
}

}  // namespace orlu
