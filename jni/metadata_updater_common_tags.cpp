// Facts that every algorithm may need, first of all steps.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "image_format.h"
#include "jni_support.h"
#include "log.h"
#include "metadata_updater_rows.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-MetadataUpdater";
constexpr char kOperation[] = "updateCommonTags";  // named by the lines of its parts

// Frames in the lists that the algorithms take.
constexpr int kListedFrames = 16;

// "android.control.aeMode": the flash fires for every picture.
constexpr int32_t kAeModeAlwaysFlash = 3;

// Units of the gains as the camera counts them.
constexpr int32_t kAnalogGainUnit = 1024;
constexpr int32_t kDigitalGainUnit = 4096;

// "com.orlu.current_ui_module" of an application page that zooms by the user's ratio.
constexpr int32_t kModuleWithUserZoom = 7;

// The camera that a bokeh session stands for; empty for every other session.
std::string_view bokehCameraType(int32_t session) {
  switch (session) {
    case 5:
      return "BokehMoon";
    case 4:
      return "BokehTele2";
    case 3:
      return "Bokeh";
    default:
      return {};
  }
}

// Whole units; the fraction is lost, deliberately.
float wholeUnits(int32_t value, int32_t unit) {
  return static_cast<float>(value / unit);
}

}  // namespace

void MetadataUpdater::updateCommonTags() {
  read(mEnableHwMFNR, "orlu.parameter.enableHwMFNR");
  updatePreviewAlgoPrivateData2Shot();
  updateBokehNight();  // Before the raw noise reduction mode is read below, and meant so.
  write<int32_t>(kControl, "is_call_from_app", 1);
  updateSensorTags();
  updateZoomRatios();
  updateFaceInfo();
  updateFrameIdentity();
  updateShotTags();
  updateFrameLists();
  write<int32_t>(kControl, "bokeh_algo_step", listHas("dualbokehMultiFrame") && mEnableHwMFNR == 0 ? 1 : 0);
  updateCameraType();
  updatePhaseDetection();
  updateDigitalZoom();
  writeExposureControl(readOr(Aec(), kAecTag, firstFrame()));
  copy<int32_t>("orlu.parameter.softbrp_mode", kControl, "softbrp_mode");
  write(kParameter, "rawhdr_shot_mode",
        readOr(Ints<3>(), "orlu.parameter.rawHDRParams", firstCaptureResultOnly())[0]);
  const auto temperature = copy<int32_t>("orlu.capture.temperature", kParameter, "highTemperature");
  LOGD_BARE(kShortLogTag, "%s: highTemperature: %d", __func__, temperature);
  const int32_t scene = readSceneType();
  write(kFeedback, "scene_type", scene);
  LOGD_BARE(kShortLogTag, "%s: sceneType: %d", __func__, scene);
  const auto& outputs = mRequest->outputFrames();
  write<bool>(kControl, "use_graphic_buffer", !outputs.empty() && outputs.front().nativeHandle != nullptr);
}

// Asks the algorithms which values of the system they want, and fills them from the shot's metadata.
void MetadataUpdater::updatePreviewAlgoPrivateData2Shot() {
  paramSystemDownloadToAlgo([this](const char* section, const char* key, void* data, unsigned size) {
    return downloadPrivateData(section, key, data, size);
  });
}

int MetadataUpdater::downloadPrivateData(const char* section, const char* key, void* data, unsigned size) {
  if (section == nullptr || key == nullptr || data == nullptr) return -1;
  char tag[128] = {};
  std::snprintf(tag, sizeof tag, "%s.%s", section, key);
  LOGD_AS("updatePreviewAlgoPrivateData2Shot", "checkxx download %s.%s : data %p, size %zu", section, key,
          data, static_cast<size_t>(size));
  mendText(tag);
  const Frame first = firstFrame();
  return mParser->getArrayBytes(static_cast<char*>(data), static_cast<int>(size), tag, first.captureResult,
                                first.composition);
}

// clang-format off
void MetadataUpdater::updateSensorTags() {
  const auto stabilization = copy<int32_t>("android.lens.opticalStabilizationMode", kSensor, "optical_stabilization_mode");
  LOGD_AS(kOperation, "opticalStabilizationMode =  %d", stabilization);
  const auto fromUserApp = copy<int32_t>(firstCompositionOnly(), "orlu.control.callFromUserApp", kControl, "call_from_user_app");
  LOGD_AS(kOperation, "call from user app %d", fromUserApp);
  copy<SCR_Type>       ("orlu.feedback.SensorCropRegions", kSensor,  "sensor_crop_region");
  write(kSensor, "sensor_active_size", readActiveSize());
  copy<Ints<2>>        ("com.orlu.image_sizes",            kSystem,  "image_size_max");
  keep(mIsRawnrCapture, "orlu.control.is_rawnr_mode",      kControl, "is_rawnr_capture");
  copy<int32_t>        ("orlu.control.bokeh_facula",       kControl, "bokeh_facula_capture");
  const auto filmSize = copy<int32_t>("orlu.control.filmSize", kControl, "film_size");
  const auto doubleExposure = readOr<int32_t>(0, "orlu.doubleExpo.capture", firstFrame());
  if (filmSize == 1 && doubleExposure == 0) append("blackImg");
  write<bool>(kParameter, "is_mipi_raw_input", getImageFormat() == kFormatMipiRaw10);
  copy<int32_t>        ("orlu.control.camera_id",          kSensor,  "camera_id");
  const auto mirror = copy<int32_t>("orlu.control.mirror", kSensor,  "is_mirror");
  if (mirror == 1) append("flip");
}

void MetadataUpdater::updateZoomRatios() {
  const auto platform = copy<float>("android.control.zoomRatio",          kZoom, "platform_zoom_ratio");
  LOGD_AS(kOperation, "updateCommonTags tag:android.control.zoomRatio platformZoomRatio=%f", static_cast<double>(platform));
  copy<float>                      ("orlu.control.zoom_ratio",            kZoom, "orlu_zoom_ratio");
  const auto bokeh50mm = copy<float>("com.orlu.zoomRatioFocallen50mmBokeh", kZoom, "bokeh50mm_zoom_ratio");
  LOGD_AS(kOperation, "zoomRatioBokeh50mm:%0.2f", static_cast<double>(bokeh50mm));
}

void MetadataUpdater::updateFrameIdentity() {
  mBasicFrameIndex = -1;
  keep(mBasicFrameIndex, isRawFormat() != 0 ? "algo.param.basic_frame_index" : "orlu.parameter.basic_frame_index",
                                                     kControl, "input_basic_frameidx");
  mIsSatFusion = readOr<int32_t>(0, "orlu.control.sat_fusionStatus", firstFrame()) > 0;
  write(kControl, "is_sat_fusion", mIsSatFusion);
  read(mFusionBasicFrameSelect, "algo.param.fusion_basic_frame_select");
  write<bool>(kControl, "is_fusion_Select", mFusionBasicFrameSelect > 0);
  keep(mJpegOrientation, "android.jpeg.orientation", kControl, "jpeg_rotation");
  write(kControl, "device_rotation", mJpegOrientation);
  // The line comes before the request id is read, and tells the one that stood here.
  LOGD_BARE(kShortLogTag, "start process basic frame idx %d, rotation %d, reqId = %ld input fusionselect %d, satfusion %d.",
            mBasicFrameIndex, mJpegOrientation, static_cast<long>(mRequestId), mFusionBasicFrameSelect, mIsSatFusion);
  read(mRequestId, "orlu.control.reqID");
  write<int64_t>(kControl, "frame_number", mRequestId);
  const Text<16> localTime = readOr(Text<16>(), "orlu.control.localtime", firstFrame());
  write<uint64_t>(kControl, "dump_timestamp", std::strtoull(localTime.data, nullptr, 0));
}

void MetadataUpdater::updateShotTags() {
  copy<int32_t>    ("orlu.control.sensorMode",          kSensor,    "remosaic_mode");
  write(kParameter, "analog_gain",  wholeUnits(readOr<int32_t>(0, "orlu.feedback.analog_gain",  firstFrame()), kAnalogGainUnit));
  write(kParameter, "digital_gain", wholeUnits(readOr<int32_t>(0, "orlu.feedback.digital_gain", firstFrame()), kDigitalGainUnit));
  copy<Bytes<8482>>("orlu.parameter.remosaicOTPData",   kSensor,    "remosaic_eeprom_data");
  copy<int32_t>    ("orlu.feedback.AWBFrameControlCCT", kSystem,    "awb_cct");
  copy<float>      ("orlu.feedback.RealGain",           kSystem,    "flash_real_gain");  // replaced below, meant
  copy<float>      ("orlu.feedback.AdrcGain",           kSystem,    "flash_adrc_gain");
  const auto aeMode = readOr<int32_t>(0, "android.control.aeMode", firstFrame());
  write<int32_t>(kControl, "flash_mode", aeMode == kAeModeAlwaysFlash ? 1 : 0);
  const auto frameFlag = copy<int64_t>("orlu.control.frameFlag", kControl, "frame_flag");
  LOGD_AS(kOperation, "frameFlag: %lld", static_cast<long long>(frameFlag));
  copy<int32_t>    ("orlu.control.extremeMode",         kControl,   "is_extreme_front");
  keep(mFrontEvControl, "orlu.parameter.OrluFrontCaptureFrameEvControl",
                                                        kFeedback,  "front_superns_capture_frame_ev_control_info");
  copy<int32_t>    ("orlu.parameter.portraitNightMode", kParameter, "portrait_night_mode");
}
// clang-format on

// The master frames are found after this step, so that both lists are zero for a fresh updater. That order is
// meant.
void MetadataUpdater::updateFrameLists() {
  Ints<kListedFrames> ids = {};
  Longs<kListedFrames> timestamps = {};
  const int count = std::min(masterFrameNum(), kListedFrames);
  for (int i = 0; i < count; ++i) {
    const auto slot = static_cast<size_t>(i);
    read(ids[slot], "orlu.control.reqID", masterFrameAt(i));
    read(timestamps[slot], "android.sensor.timestamp", masterFrameAt(i));
    LOGD_AS(kOperation, "start process input timeStamps[%d]=%lld, reqId = %lld .", i,
            static_cast<long long>(timestamps[slot]), static_cast<long long>(ids[slot]));
  }
  write(kControl, "frame_id", ids);
  write(kControl, "input_frame_timestamp", timestamps);
}

// 16 bytes, without a terminating zero when the camera's name fills them.
void MetadataUpdater::updateCameraType() {
  int32_t session = 0;
  const int status = read(session, "com.orlu.MultiCameraBokehSelectSessionId");
  LOGD_AS(kOperation, "multiCameraBokehSelectSessionId %d ret %d", session, status);
  Bytes<16> type;
  const std::string_view name = bokehCameraType(session);
  if (name.empty()) {
    read(type, "com.orlu.chi.override.CameraType");
  } else {
    std::copy_n(name.begin(), std::min(name.size(), sizeof type.data), type.data);
  }
  write(kSensor, "camera_type", type);
}

void MetadataUpdater::updateDigitalZoom() {
  const auto module = readOr<int32_t>(0, "com.orlu.current_ui_module", firstFrame());
  float ratio = 0;
  if (!listHas("dualBokeh") && module != kModuleWithUserZoom) {
    read(ratio, "orlu.parameter.digitalzoom");
    LOGD_AS(kOperation, "updateCommonTags tag:orlu.parameter.digitalzoom digitalzoomratio=%f",
            static_cast<double>(ratio));
  } else {
    read(ratio, "orlu.control.zoom_ratio");
    LOGD_AS(kOperation, "updateCommonTags tag:orlu.control.zoom_ratio digitalzoomratio=%f",
            static_cast<double>(ratio));
  }
  write(kZoom, "digital_zoom_ratio", ratio);
}

// Ten keys, of which "flash_real_gain" replaces what another step wrote, deliberately. A ratio of two zeros
// is written as it is, not a number.
void MetadataUpdater::writeExposureControl(const Aec& aec) {
  write(kSystem, "lux_index_shot", aec[kAecLuxIndex]);
  write(kSystem, "exp_index", aec[kAecExposureIndex]);
  write(kSystem, "flash_real_gain", aec[kAecRealGain]);
  write(kSystem, "safe_gain", aec[kAecSafeGain]);
  write(kSystem, "long_gain", aec[kAecLongGain]);
  write(kSystem, "sensor_gain", aec[kAecSensorGain]);
  write(kSystem, "adrc_gain", aec[kAecAdrcGain]);
  write(kSystem, "dark_boost_gain", aec[kAecDarkBoostGain]);
  write(kSystem, "isp_gain", aec[kAecIspGain]);
  write(kSystem, "exp_sensitivity_ratio", aec[kAecLongSensitivity] / aec[kAecShortSensitivity]);
}

}  // namespace orlu
