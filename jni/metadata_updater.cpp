#include "metadata_updater.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "image_format.h"
#include "log.h"
#include "metadata_updater_rows.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-MetadataUpdater";

// Zoom ratios at which a switching multi-camera system changes its camera.
const std::map<float, SATCameraRoleType> gSatCameraRoles = {
    {0.6F, kSatRoleWide    },
    {1.0F, kSatRoleMain    },
    {2.0F, kSatRoleTele    },
    {2.5F, kSatRoleTele2_5x},
    {5.0F, kSatRoleTele5x  },
};

using CameraType = Chars<16>;

// The whole name with its terminating zero: a longer name does not match.
template <size_t N>
bool isType(const CameraType& type, const char (&name)[N]) {
  static_assert(N <= sizeof type.data);
  return std::memcmp(type.data, name, N) == 0;
}

bool isMainCamera(const CameraType& type, int32_t satRole) {
  return isType(type, "Master") || (isType(type, "SAT") && satRole == kSatRoleMain) ||
         isType(type, "BokehMoon") || isType(type, "Bokeh");
}

// Which bit of "vaf_camera_role" tells a camera that is not the main one.
int roleBit(const CameraType& type, int32_t satRole) {
  const bool isSat = isType(type, "SAT");
  if (isType(type, "Tele") || isType(type, "Tele2.5X") ||
      (isSat && (satRole == kSatRoleTele || satRole == kSatRoleTele2_5x))) {
    return 3;
  }
  return isType(type, "Wide") || (isSat && satRole == kSatRoleWide) ? 2 : 0;
}

}  // namespace

const std::map<float, SATCameraRoleType>& satCameraRoles() {
  return gSatCameraRoles;
}

int32_t toInt(float value) {
  // Exact in a double, and so are the limits of the integer.
  const double wide = value;
  if (std::isnan(wide)) return 0;
  if (wide <= std::numeric_limits<int32_t>::min()) return std::numeric_limits<int32_t>::min();
  if (wide >= std::numeric_limits<int32_t>::max()) return std::numeric_limits<int32_t>::max();
  return static_cast<int32_t>(wide);
}

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
      mTags(*parser, FrameList(*mCaptureResults, *mCaptureResultCompositions)),
      mParameters(client->context(), metadata) {}

MetadataUpdater::~MetadataUpdater() = default;

int MetadataUpdater::setValue(const char* section, const char* key, void* value, unsigned size) {
  return mParameters.setBytes(section, key, value, size);
}

int MetadataUpdater::getValue(const char* section, const char* key, void* value, unsigned size) {
  return mParameters.getBytes(section, key, value, size);
}

int MetadataUpdater::paramAlgoUpdateToSystem(AlgoMetadataVisitor visitor) {
  return mClient->context().paramAlgoUpdateToSystem(mMetadata, std::move(visitor));
}

int MetadataUpdater::paramSystemDownloadToAlgo(AlgoMetadataVisitor visitor) {
  return mClient->context().paramSystemDownloadToAlgo(mMetadata, std::move(visitor));
}

const AlgoFrameInfo* MetadataUpdater::firstInput() const {
  return mRequest->inputFrames().empty() ? nullptr : &mRequest->inputFrames().front();
}

int MetadataUpdater::isRawFormat() {
  return isRawImageFormat(getImageFormat()) ? 1 : 0;
}

int MetadataUpdater::getImageFormat() {
  return firstInput() == nullptr ? kFormatUnknown : firstInput()->format;
}

Frame MetadataUpdater::masterFrameAt(int index) const {
  const int last = masterFrameNum() - 1;
  return FrameList(mMasterCaptureResults, mMasterCompositions).at(index > last ? last : index);
}

void MetadataUpdater::updateMetadata() {
  clearParams();
  write<int32_t>(kControl, "is_call_from_app", 1);
  // An application that only updates its watermark wants nothing else, deliberately.
  if (updateWatermarkData() != 0) return;
  updateCommonTags();  // before the master frames are known, and meant so
  getMasterFrames();
  updateFromCameraCharacteristics();
  updateHdrProcessType();
  updateSat();
  if (isRawFormat() != 0) {
    updateRawFormat();
  } else {
    updateYuvFormat();
  }
  updateAlgoType();
  updateDebug();
  convertMetadata();
}

// Resets what the algorithms may have left from an earlier request.
void MetadataUpdater::clearParams() {
  Ints<20> frameSelect;
  frameSelect.fill(-1);
  const int64_t baseFrameTime = 0;
  const int32_t baseFrameIdx = -1;
  const int32_t needScore = 0;
  write(kControl, "current_base_frame_time", baseFrameTime);
  write(kFeedback, "current_base_frame_idx", baseFrameIdx);
  write(kFeedback, "frame_select_result", frameSelect);
  write(kParameter, "refocus_command", Text<64>());
  write(kParameter, "is_need_image_score_calculate", needScore);
  LOGD(
      "clearParams frameSelect result %d %d %d %d %d, currentBaseFrameIdx %d, currentBaseFrameTime %lld, "
      "isNeedImageScoreCalculate %d.",
      frameSelect[0], frameSelect[1], frameSelect[2], frameSelect[3], frameSelect[4], baseFrameIdx,
      static_cast<long long>(baseFrameTime), needScore);
}

// Answers 1 when the request only updates the watermark.
int MetadataUpdater::updateWatermarkData() {
  int32_t fromApp = 0;
  read(fromApp, "orlu.control.wm_waterMark_v3");
  LOGD("update watermark from appvif:%d", fromApp);
  write(kControl, "update_watermark_from_appvif", fromApp);
  if (fromApp == 0) return 0;

  // Of these only the type is handed over, deliberately.
  int32_t type = 0;
  Ints<2> size = {};
  Ints<2> content = {};
  Ints<2> format = {};
  read(type, "orlu.control.wm_waterMark_type");
  read(size, "orlu.control.wm_waterMark_size");
  read(content, "orlu.control.wm_waterMark_content");
  read(format, "orlu.control.wm_waterMark_format");
  LOGD(
      "update watermarkdata, watermark_type:%d, waterMark_size[%d,%d], waterMark_content[%d,%d], "
      "waterMark_format[%d,%d]",
      type, size[0], size[1], content[0], content[1], format[0], format[1]);
  write(kControl, "update_watermark_type", type);
  return 1;
}

// A two-camera bokeh request interleaves master and slave frames; every second one is then a master.
int MetadataUpdater::masterFrameStep() {
  if (!listHas("dualBokeh") || isRawFormat() != 0) return 1;
  const auto inputNum = static_cast<int>(mRequest->inputFrames().size());
  const int step = inputNum == 2 * mCaptureResultNum ? 1 : 2;
  LOGD_AS(
      "getMasterFrames",
      "multi yuv in bokeh : origin buffer num %d, origin mCaptureResult num %d, masterCaptureResult TotalNum "
      "%d,masterCaptureResult JumpNum %d",
      inputNum, mCaptureResultNum, step == 1 ? mCaptureResultNum : mCaptureResultNum / 2, step);
  return step;
}

void MetadataUpdater::getMasterFrames() {
  const int step = masterFrameStep();
  mMasterCaptureResults.reserve(mCaptureResults->size());
  mMasterCompositions.reserve(mCaptureResults->size());
  for (int i = 0; i < mCaptureResultNum; i += step) {
    const Frame frame = frameAt(i);
    mMasterCaptureResults.push_back(frame.captureResult);
    mMasterCompositions.push_back(frame.composition);
  }
}

uint64_t MetadataUpdater::getCurrentMode(jobject captureResult, jobject composition) {
  const auto mode = static_cast<uint64_t>(readOr<int64_t>(0, kFrameModeTag, {captureResult, composition}));
  LOGD("currentModeEx: 0x%llx", static_cast<unsigned long long>(mode));
  return mode;
}

void MetadataUpdater::updateFromCameraCharacteristics() {
  keep(mCameraFacing, "android.lens.facing", kSensor, "camera_facing");
  keep(mBayerFilter, "android.sensor.info.colorFilterArrangement", kSensor, "bayer_filter");
  copy<int32_t>("com.orlu.RemosaicType", kSensor, "remosaic_type");
}

void MetadataUpdater::updateSat() {
  copy<int32_t>("orlu.parameter.masterSatRole", kSensor, "camera_sat_role");
}

void MetadataUpdater::convertMetadata() {
  const auto satRole = readBack<int32_t>(kSensor, "camera_sat_role");
  const auto type = readBack<CameraType>(kSensor, "camera_type");
  constexpr int32_t kFrontFacing = 0;
  const int32_t front = mCameraFacing == kFrontFacing ? 1 : 0;
  const int32_t role = front + (isMainCamera(type, satRole) ? 0 : 1 << roleBit(type, satRole));
  write(kParameter, "vaf_camera_role", role);
  LOGD("CHECKXX SAT camera_type %.*s, cameraSatRole %d, vaf_camera_role %d",
       static_cast<int>(sizeof type.data), type.data, satRole, role);
}

}  // namespace orlu
