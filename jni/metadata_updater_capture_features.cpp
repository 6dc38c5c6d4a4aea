// Small steps, each of which passes on the settings of one capture feature.

#include "metadata_updater_steps.h"

namespace orlu {
namespace {

// Layout of "beauty_extra_params": the switch for blemish removal, then reserved bytes.
struct BeautyExtraParams {
  int32_t deblacknevus = 0;
  uint8_t reserved[76] = {};
};
static_assert(sizeof(BeautyExtraParams) == 80);

}  // namespace

// For a panorama, appends "panorama" to the algorithm list, even if the list already has it (Oddity 19).
void MetadataUpdater::updatePanorama() {
  const auto panorama = mShot.copy<int32_t>("orlu.control.panoramaCapture", kParameter, "panorama_capture");
  // clang-format off
  mShot.copy<int32_t>("orlu.control.pano.picturesize_width",  kParameter, "pano_picture_size_width");
  mShot.copy<int32_t>("orlu.control.pano.picturesize_height", kParameter, "pano_picture_size_height");
  // clang-format on
  if (panorama != 0) mShot.append("panorama");
}

void MetadataUpdater::clearProcessedAlgoTag() {
  mShot.write<ProcessedAlgo>(kParameter, "processed_algo", {});
}

// ORs the application's algorithm bits into one word of the block's "processed_algo". The results return this
// word to the application, so the bits accumulate from pass to pass (Oddity 39).
void MetadataUpdater::updateProcessedAlgoTag() {
  const auto fromApplication = mShot.readOr<int64_t>("orlu.parameter.processedAlgo");
  auto processed = mShot.readBack<ProcessedAlgo>(kParameter, "processed_algo");
  processed.words[ProcessedAlgo::kApplicationWord] |= static_cast<uint64_t>(fromApplication);
  mShot.write<ProcessedAlgo>(kParameter, "processed_algo", processed);
  const uint64_t* const word = processed.words;
  LOGD("update debug processed algo from AP [0x%llx 0x%llx 0x%llx 0x%llx 0x%llx] ",
       static_cast<unsigned long long>(word[0]), static_cast<unsigned long long>(word[1]),
       static_cast<unsigned long long>(word[2]), static_cast<unsigned long long>(word[3]),
       static_cast<unsigned long long>(word[4]));
}

void MetadataUpdater::updateGra() {
  int32_t isGra = 0;
  if (mIsRawnrCapture != 0) {
    const auto left = mShot.readOr<Ints<2>>("orlu.control.RequestLeftInThisSnapshot");
    LOGD("frameNum  %d %d", left[0], left[1]);
    isGra = left == Ints<2>{6, 4} ? 0 : 1;
  }
  mShot.write<int32_t>(kControl, "is_gra_capture", isGra);
}

// Reads the composition alone: these tags are the application's commands (Oddity 52).
void MetadataUpdater::updateJpegRefocus() {
  const Frame app = mShot.first().compositionOnly();
  // clang-format off
  const auto command = mShot.copy<Text<64>>(app, "orlu.refocus.command",       kParameter, "refocus_command");
  const auto level   = mShot.copy<int32_t> (app, "orlu.control.refocus_level", kControl,   "refocus_level");
  const auto x       = mShot.copy<int32_t> (app, "orlu.refocus.pointRatioX",   kParameter, "refocus_point_x");
  const auto y       = mShot.copy<int32_t> (app, "orlu.refocus.pointRatioY",   kParameter, "refocus_point_y");
  // clang-format on
  LOGD("refocusPointX %d refocusPointY %d refocusLevel %d refocusCommand %s", x, y, level, command.data);
}

void MetadataUpdater::updateUpscale() {
  // clang-format off
  const auto width     = mShot.copy<int32_t>("algo.param.dstwidth",     kSystem, "upscale_width");
  const auto height    = mShot.copy<int32_t>("algo.param.dstheight",    kSystem, "upscale_height");
  const auto strides   = mShot.copy<Ints<4>>("algo.param.dststrides",   kSystem, "upscale_stride");
  const auto scanlines = mShot.copy<Ints<4>>("algo.param.dstscanlines", kSystem, "upscale_scanline");
  // clang-format on
  LOGD("upscaleWidth: %d, upscaleHeight: %d, upscaleStride: %d, upscaleScanline: %d", width, height,
       strides[0], scanlines[0]);
  if (mRequest->outputFrames().empty() || width < 1 || height < 1) return;
  AlgoFrameInfo& output = mRequest->outputFrames().front();
  if (output.format != kFormatNv21 && output.format != kFormatNv12) return;
  const int64_t plane = int64_t{strides[0]} * scanlines[0];
  output.width = width;
  output.height = height;
  output.stride[0] = strides[0];
  output.scanline[0] = scanlines[0];
  output.planeSize[0] = saturated(plane);
  output.planeSize[1] = saturated(plane / 2);
}

void MetadataUpdater::updataRawenhance() {
  constexpr int32_t kMotionVersionBits = 0xF;
  constexpr int32_t kRawEnhanceVersion = 3;
  const auto version = mShot.readOr<int32_t>("orlu.control.motionVersion");
  const bool isEnhanced = (version & kMotionVersionBits) == kRawEnhanceVersion;
  mShot.write<int32_t>(kParameter, "motion_rawenhance", isEnhanced ? 1 : 0);
  mShot.write<int32_t>(kControl, "motion_level", mShot.readOr<int32_t>("orlu.control.motion_level", -1));
  writeRawPacking(mShot);
}

void MetadataUpdater::updateLightstream() {
  constexpr int32_t kLightstreamCallback = 2;
  const auto inputNum = static_cast<int32_t>(mRequest->inputFrames().size());
  const int32_t isLastCall = mRequest->isStopProcess() || inputNum > 1 ? 1 : 0;
  mShot.write<int32_t>(kParameter, "lightstream_last_call_flag", isLastCall);
  mShot.write<int32_t>(kParameter, "lightstream_input_num", inputNum + isLastCall);
  const jobject composition = mShot.first().composition;
  if (composition != nullptr) mParser->putInt(kLightstreamCallback, "CallbackFlag", composition);
  mShot.copy<int32_t>("orlu.control.lightStreamMode", kParameter, "lightstream_mode");
}

void MetadataUpdater::updateZoom() {
  const auto aec = mShot.exposureOf(mShot.first());
  mShot.write<float>(kSystem, "adrc_gain", aec[kAecAdrcGain]);
  LOGD("zoom adrcGain %f", static_cast<double>(aec[kAecAdrcGain]));
}

void MetadataUpdater::updateBeauty() {
  // clang-format off
  mShot.copy<Ints<22>>("orlu.control.beautyNewParams",    kParameter, "beauty_new_params");
  mShot.copy<Ints<10>>("orlu.control.makeupParams",       kParameter, "makeup_params");
  mShot.copy<Ints<8>> ("orlu.control.makeup.type",        kParameter, "heavy_makeup_type");
  mShot.copy<Ints<8>> ("orlu.control.makeup.value",       kParameter, "heavy_makeup_value");
  mShot.copy<int32_t> ("orlu.control.makeup.ismalevalue", kParameter, "is_makeup_use_male_value");
  // clang-format on
  const Frame app = mShot.first().compositionOnly();  // Oddity 52
  mShot.copy<Chars<80>>(app, "orlu.control.eyelightType", kParameter, "eyelight_type");
  // If the tag is missing, blemish removal is on (Oddity 34).
  BeautyExtraParams extra;
  if (mShot.read("orlu.control.beauty_deblacknevus", extra.deblacknevus) != 0) extra.deblacknevus = 1;
  mShot.write<BeautyExtraParams>(kParameter, "beauty_extra_params", extra);
  mShot.copy<int32_t>("orlu.control.isNativeMode", kParameter, "isNativeBeauty");
}

}  // namespace orlu
