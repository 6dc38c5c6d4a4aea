#include "metadata_updater.h"

#include <utility>

#include "metadata_updater_steps.h"

namespace orlu {

MetadataUpdater::MetadataUpdater(AlgoNativeClient* client, std::vector<std::string>& algoList,
                                 VRequest& request, void* metadata, CameraMetadataParser* parser)
    : mAlgoList(&algoList),
      mClient(client),
      mRequest(&request),
      mMetadata(metadata),
      mParser(parser),
      mCaptureResultNum(static_cast<int>(request.captureResults().size())),
      mCaptureResults(&request.captureResults()),
      mCaptureResultCompositions(&request.captureResultCompositions()),
      mShot(*parser, request, algoList, ParameterChannel(client->context(), metadata)) {}

MetadataUpdater::~MetadataUpdater() = default;

int MetadataUpdater::setValue(const char* section, const char* key, void* value, unsigned size) {
  return mShot.parameters().setBytes(section, key, value, size);
}

int MetadataUpdater::getValue(const char* section, const char* key, void* value, unsigned size) {
  return mShot.parameters().getBytes(section, key, value, size);
}

int MetadataUpdater::paramAlgoUpdateToSystem(AlgoMetadataVisitor visitor) {
  const CameraMetadataParser::BatchPause pause(*mParser);
  return mClient->context().paramAlgoUpdateToSystem(mMetadata, std::move(visitor));
}

int MetadataUpdater::paramSystemDownloadToAlgo(AlgoMetadataVisitor visitor) {
  const CameraMetadataParser::BatchPause pause(*mParser);
  return mClient->context().paramSystemDownloadToAlgo(mMetadata, std::move(visitor));
}

int MetadataUpdater::isRawFormat() {
  return mShot.isRaw() ? 1 : 0;
}

int MetadataUpdater::getImageFormat() {
  return mShot.inputFormat();
}

// Not inlined into processImage(): the steps below would enlarge that function's already large stack frame.
[[gnu::noinline]] void MetadataUpdater::updateMetadata() {
  const CameraMetadataParser::Batch batch(*mParser);
  clearParams();
  mShot.write<int32_t>(kControl, "is_call_from_app", 1);
  // A request that only redraws the watermark on a finished image needs no other parameters (Oddity 14).
  if (updateWatermarkData() != 0) return;
  updateCommonTags();  // before the master frames are known (Oddity 15)
  getMasterFrames();
  updateFromCameraCharacteristics();
  updateHdrProcessType();
  updateSat();
  if (mShot.isRaw()) {
    updateRawFormat();
  } else {
    updateYuvFormat();
  }
  updateAlgoType();
  updateDebug();
  convertMetadata();
}

// Writes the initial values of parameters that later steps or the algorithms may overwrite.
void MetadataUpdater::clearParams() {
  constexpr int64_t kBaseFrameTime = 0;
  constexpr int32_t kBaseFrameIdx = -1;
  constexpr int32_t kNeedScore = 0;
  Ints<20> frameSelect;
  frameSelect.fill(-1);
  // clang-format off
  mShot.write<int64_t> (kControl,   "current_base_frame_time",       kBaseFrameTime);
  mShot.write<int32_t> (kFeedback,  "current_base_frame_idx",        kBaseFrameIdx);
  mShot.write<Ints<20>>(kFeedback,  "frame_select_result",           frameSelect);
  mShot.write<Text<64>>(kParameter, "refocus_command",               {});
  mShot.write<int32_t> (kParameter, "is_need_image_score_calculate", kNeedScore);
  // clang-format on
  LOGD(
      "clearParams frameSelect result %d %d %d %d %d, currentBaseFrameIdx %d, currentBaseFrameTime %lld, "
      "isNeedImageScoreCalculate %d.",
      frameSelect[0], frameSelect[1], frameSelect[2], frameSelect[3], frameSelect[4], kBaseFrameIdx,
      static_cast<long long>(kBaseFrameTime), kNeedScore);
}

int MetadataUpdater::updateWatermarkData() {
  const auto fromApp = mShot.readOr<int32_t>("orlu.control.wm_waterMark_v3");
  LOGD("update watermark from appvif:%d", fromApp);
  mShot.write<int32_t>(kControl, "update_watermark_from_appvif", fromApp);
  if (fromApp == 0) return 0;

  // Of these four values, only the type is passed on (Oddity 14).
  const auto type = mShot.readOr<int32_t>("orlu.control.wm_waterMark_type");
  const auto size = mShot.readOr<Ints<2>>("orlu.control.wm_waterMark_size");
  const auto content = mShot.readOr<Ints<2>>("orlu.control.wm_waterMark_content");
  const auto format = mShot.readOr<Ints<2>>("orlu.control.wm_waterMark_format");
  LOGD(
      "update watermarkdata, watermark_type:%d, waterMark_size[%d,%d], waterMark_content[%d,%d], "
      "waterMark_format[%d,%d]",
      type, size[0], size[1], content[0], content[1], format[0], format[1]);
  mShot.write<int32_t>(kControl, "update_watermark_type", type);
  return 1;
}

// Selects all frames, or every second frame if master and slave frames alternate. They alternate in
// two-camera bokeh requests that are not raw, except if there are two images per frame.
void MetadataUpdater::getMasterFrames() {
  int step = 1;
  if (mShot.listHas("dualBokeh") && !mShot.isRaw()) {
    const auto inputNum = static_cast<int>(mRequest->inputFrames().size());
    step = inputNum == 2 * mCaptureResultNum ? 1 : 2;
    LOGD(
        "multi yuv in bokeh : origin buffer num %d, origin mCaptureResult num %d, masterCaptureResult "
        "TotalNum %d,masterCaptureResult JumpNum %d",
        inputNum, mCaptureResultNum, step == 1 ? mCaptureResultNum : mCaptureResultNum / 2, step);
  }
  mMasterCaptureResults.reserve(mCaptureResults->size());
  mMasterCompositions.reserve(mCaptureResults->size());
  for (int i = 0; i < mCaptureResultNum; i += step) {
    const Frame frame = mShot.frames().at(i);
    mMasterCaptureResults.push_back(frame.captureResult);
    mMasterCompositions.push_back(frame.composition);
  }
}

uint64_t MetadataUpdater::getCurrentMode(jobject captureResult, jobject composition) {
  const auto tag = mShot.readOr<int64_t>({captureResult, composition}, kFrameModeTag);
  const auto mode = static_cast<uint64_t>(tag);
  LOGD("currentModeEx: 0x%llx", static_cast<unsigned long long>(mode));
  return mode;
}

}  // namespace orlu
