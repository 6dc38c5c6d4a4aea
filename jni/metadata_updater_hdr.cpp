// Derives the HDR process type from a request's bracketing.

#include "metadata_updater_steps.h"

namespace orlu {
namespace {

constexpr char kOperation[] = "updateHdrProcessType";  // helpers log it as their operation

void logLayout(const HdrLayout& layout, int frameNum) {
  switch (layout.type) {
    case kHdr5Yuv:
      LOGD_AS(kOperation, "rawnr hdr: HDR_PROCESS_5_YUV_INPUT");
      break;
    case kHdr7Yuv:
      LOGD_AS(kOperation, "hdr off: HDR_PROCESS_7_YUV_INPUT");
      break;
    case kHdr9Yuv:
      LOGD_AS(kOperation, "hdr off: HDR_PROCESS_9_YUV_INPUT");
      break;
    default:
      // The five-frame layout logs its HDR count plus one (Oddity 23).
      LOGD_AS(kOperation, "not hdr off %d: hdr frame cnt: %d, night frame cnt: %d", frameNum,
              layout.hdrCount + (frameNum == 5 ? 1 : 0), layout.nightCount);
  }
}

}  // namespace

void MetadataUpdater::updateHdrProcessType() {
  const auto requested = mShot.readBack<Ints<8>>(kControl, "shot_req_frame_num");
  LOGD("shotReqFrameNum %d %d %d %d .", requested[0], requested[2], requested[4], requested[6]);

  HdrLayout layout;
  const FrameList masters = masterFrames();
  const int frameNum = masters.size();
  if (frameNum == 3 && mShot.listHas("hdr")) {
    LOGD("HDR 3-frames version");
    layout.type = kHdr3;
  } else if (isBracketed(frameNum)) {
    const auto repeated = mShot.repeated(kFrameModeTag);
    FrameModes modes = {};
    for (int i = 0; i < frameNum; ++i) {
      const Frame frame = masters.at(i);
      modes[static_cast<size_t>(i)] = getCurrentMode(frame.captureResult, frame.composition);
    }
    layout = hdrLayoutOf(modes, frameNum, mHdrFrameIndex);
    logLayout(layout, frameNum);
    if (layout.type != kHdrNone) {
      // The nine-frame layout leaves mIsRawnrCapture unchanged (Oddity 25).
      if (layout.type != kHdr9Yuv) mIsRawnrCapture = 0;
      mShot.remove("night");
      if (!mShot.listHas("hdr")) mShot.append("hdr");
    }
  }
  LOGD("hdrProcessType %d night frame index %d Frame size %d.", layout.type, layout.nightIndex, frameNum);
  mShot.write<int32_t>(kParameter, "hdr_process_type", layout.type);
  mShot.write<int32_t>(kParameter, "night_frame_index", layout.nightIndex);
}

void MetadataUpdater::updateRawnrHDRFrameIndex(int& hdrType, int& nightIndex) {
  hdrType = mShot.readBack<int32_t>(kParameter, "hdr_process_type");
  nightIndex = mShot.readBack<int32_t>(kParameter, "night_frame_index", -1);
  LOGD("rawnr HDR index %d, %d .", hdrType, nightIndex);
}

}  // namespace orlu
