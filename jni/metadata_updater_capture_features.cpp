// Small steps that pass one capture feature's settings on.

#include "image_format.h"
#include "log.h"
#include "metadata_updater_rows.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-MetadataUpdater";

int32_t narrowed(int64_t value) {
  return static_cast<int32_t>(value);
}

}  // namespace

// Appends its name also when the list holds it.
void MetadataUpdater::updatePanorama() {
  // clang-format off
  const auto panorama = copy<int32_t>("orlu.control.panoramaCapture", kParameter, "panorama_capture");
  copy<int32_t>("orlu.control.pano.picturesize_width",                kParameter, "pano_picture_size_width");
  copy<int32_t>("orlu.control.pano.picturesize_height",               kParameter, "pano_picture_size_height");
  // clang-format on
  if (panorama != 0) append("panorama");
}

void MetadataUpdater::clearProcessedAlgoTag() {
  write(kParameter, "processed_algo", ProcessedAlgo());
}

// The application's tag joins what is there: it is handed back after each pass, and so gathers.
void MetadataUpdater::updateProcessedAlgoTag() {
  const auto fromApplication = readOr<int64_t>(0, "orlu.parameter.processedAlgo", firstFrame());
  auto processed = readBack<ProcessedAlgo>(kParameter, "processed_algo");
  processed.words[ProcessedAlgo::kApplicationWord] |= static_cast<uint64_t>(fromApplication);
  write(kParameter, "processed_algo", processed);
  const uint64_t* const word = processed.words;
  LOGD("update debug processed algo from AP [0x%llx 0x%llx 0x%llx 0x%llx 0x%llx] ",
       static_cast<unsigned long long>(word[0]), static_cast<unsigned long long>(word[1]),
       static_cast<unsigned long long>(word[2]), static_cast<unsigned long long>(word[3]),
       static_cast<unsigned long long>(word[4]));
}

void MetadataUpdater::updateGra() {
  int32_t isGra = 0;
  if (mIsRawnrCapture != 0) {
    const auto left = readOr(Ints<2>(), "orlu.control.RequestLeftInThisSnapshot", firstFrame());
    LOGD("frameNum  %d %d", left[0], left[1]);
    isGra = left == Ints<2>{6, 4} ? 0 : 1;
  }
  write(kControl, "is_gra_capture", isGra);
}

void MetadataUpdater::updateJpegRefocus() {
  const Frame composition = firstCompositionOnly();
  // clang-format off
  const auto command = copy<Text<64>>(composition, "orlu.refocus.command",       kParameter, "refocus_command");
  const auto level   = copy<int32_t> (composition, "orlu.control.refocus_level", kControl,   "refocus_level");
  const auto x       = copy<int32_t> (composition, "orlu.refocus.pointRatioX",   kParameter, "refocus_point_x");
  const auto y       = copy<int32_t> (composition, "orlu.refocus.pointRatioY",   kParameter, "refocus_point_y");
  // clang-format on
  LOGD("refocusPointX %d refocusPointY %d refocusLevel %d refocusCommand %s", x, y, level, command.data);
}

void MetadataUpdater::updateUpscale() {
  // clang-format off
  const auto width     = copy<int32_t>("algo.param.dstwidth",     kSystem, "upscale_width");
  const auto height    = copy<int32_t>("algo.param.dstheight",    kSystem, "upscale_height");
  const auto strides   = copy<Ints<4>>("algo.param.dststrides",   kSystem, "upscale_stride");
  const auto scanlines = copy<Ints<4>>("algo.param.dstscanlines", kSystem, "upscale_scanline");
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
  output.planeSize[0] = narrowed(plane);
  output.planeSize[1] = narrowed(plane / 2);
}

void MetadataUpdater::updataRawenhance() {
  constexpr int32_t kMotionVersionBits = 0xF;
  constexpr int32_t kRawEnhanceVersion = 3;
  const auto version = readOr<int32_t>(0, "orlu.control.motionVersion", firstFrame());
  write<int32_t>(kParameter, "motion_rawenhance",
                 (version & kMotionVersionBits) == kRawEnhanceVersion ? 1 : 0);
  write(kControl, "motion_level", readOr<int32_t>(-1, "orlu.control.motion_level", firstFrame()));
  writeRawPacking();
}

void MetadataUpdater::writeRawPacking() {
  write<int32_t>(kParameter, "raw_packed_type", 2);
  if (getImageFormat() == kFormatMipiRaw10) write<int32_t>(kParameter, "raw_bit_per_pixel", 10);
}

void MetadataUpdater::updateLightstream() {
  constexpr int32_t kLightstreamCallback = 2;
  const auto inputNum = static_cast<int32_t>(mRequest->inputFrames().size());
  const int32_t isLastCall = mRequest->isStopProcess() || inputNum > 1 ? 1 : 0;
  write(kParameter, "lightstream_last_call_flag", isLastCall);
  write(kParameter, "lightstream_input_num", inputNum + isLastCall);
  const jobject composition = firstFrame().composition;
  if (composition != nullptr) mParser->putInt(kLightstreamCallback, "CallbackFlag", composition);
  copy<int32_t>("orlu.control.lightStreamMode", kParameter, "lightstream_mode");
}

}  // namespace orlu
