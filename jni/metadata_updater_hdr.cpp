// Which HDR process a request's bracketing means.

#include "log.h"
#include "metadata_updater_rows.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-MetadataUpdater";
constexpr char kOperation[] = "updateHdrProcessType";  // named by the lines of its parts

// Frame mode bits.
constexpr uint64_t kHdrFrameBit = 2;
constexpr uint64_t kNightFrameBit = 8;

}  // namespace

// HDR process types, by the numbers of the algorithm library.
enum MetadataUpdater::HdrProcessType : int32_t {
  kHdrNone = 0,
  kHdr9Yuv = 1,  // three night frames, six HDR frames
  kHdr7Yuv = 2,  // six HDR frames, one night frame
  kHdr3 = 4,
  kHdr5Yuv = 6,  // four HDR frames, one night frame
};

void MetadataUpdater::updateHdrProcessType() {
  const auto requested = readBack<Ints<8>>(kControl, "shot_req_frame_num");
  LOGD("shotReqFrameNum %d %d %d %d .", requested[0], requested[2], requested[4], requested[6]);

  int32_t nightIndex = 0;
  HdrProcessType type = kHdrNone;
  const CameraMetadataParser::RepeatedTag repeated(*mParser, kFrameModeTag);
  switch (masterFrameNum()) {
    case 3:
      type = hdrOf3Frames();
      break;
    case 5:
      type = hdrOf5Frames(nightIndex);
      break;
    case 7:
      type = hdrOf7Frames(nightIndex);
      break;
    case 9:
      type = hdrOf9Frames();
      break;
    default:
      break;
  }
  LOGD("hdrProcessType %d night frame index %d Frame size %d.", type, nightIndex, masterFrameNum());
  write<int32_t>(kParameter, "hdr_process_type", type);
  write(kParameter, "night_frame_index", nightIndex);
}

MetadataUpdater::HdrProcessType MetadataUpdater::hdrOf3Frames() {
  if (!listHas("hdr")) return kHdrNone;
  LOGD_AS(kOperation, "HDR 3-frames version");
  return kHdr3;
}

// Counts the frames of each mode in [first, last) and keeps the indices of the HDR frames from slot `hdrSlot`
// on. They stay also when the layout then does not match.
MetadataUpdater::FrameModes MetadataUpdater::walkFrameModes(int first, int last, size_t hdrSlot) {
  FrameModes found;
  for (int i = first; i < last; ++i) {
    const Frame frame = masterFrameAt(i);
    const uint64_t mode = getCurrentMode(frame.captureResult, frame.composition);
    if ((mode & kHdrFrameBit) != 0) {
      const size_t slot = hdrSlot + static_cast<size_t>(found.hdrCount++);
      if (slot < mHdrFrameIndex.size()) mHdrFrameIndex[slot] = i;
    } else if ((mode & kNightFrameBit) != 0) {
      ++found.nightCount;
      found.nightIndex = i;
    }
  }
  return found;
}

// The night frame goes into slot 0, the HDR frames behind it.
MetadataUpdater::HdrProcessType MetadataUpdater::hdrOf5Frames(int32_t& nightIndex) {
  const FrameModes found = walkFrameModes(0, 5, 1);
  if (found.nightCount > 0) {
    mHdrFrameIndex[0] = found.nightIndex;
    nightIndex = found.nightIndex;
  }
  if (found.hdrCount == 4 && found.nightCount == 1) {
    LOGD_AS(kOperation, "rawnr hdr: HDR_PROCESS_5_YUV_INPUT");
    mIsRawnrCapture = 0;
    replaceNightByHdr();
    return kHdr5Yuv;
  }
  // This count starts at 1, unlike the others'; kept so.
  LOGD_AS(kOperation, "not hdr off 5: hdr frame cnt: %d, night frame cnt: %d", found.hdrCount + 1,
          found.nightCount);
  return kHdrNone;
}

MetadataUpdater::HdrProcessType MetadataUpdater::hdrOf7Frames(int32_t& nightIndex) {
  const FrameModes found = walkFrameModes(0, 7, 0);
  if (found.nightCount > 0) nightIndex = found.nightIndex;
  if (found.hdrCount == 6 && found.nightCount == 1) {
    LOGD_AS(kOperation, "hdr off: HDR_PROCESS_7_YUV_INPUT");
    mIsRawnrCapture = 0;
    replaceNightByHdr();
    return kHdr7Yuv;
  }
  LOGD_AS(kOperation, "not hdr off 7: hdr frame cnt: %d, night frame cnt: %d", found.hdrCount,
          found.nightCount);
  return kHdrNone;
}

// Three night frames, then six HDR frames. Whether it is a raw noise reduction capture stays as it is.
MetadataUpdater::HdrProcessType MetadataUpdater::hdrOf9Frames() {
  int nightCount = 0;
  for (int i = 0; i < 3; ++i) {
    const Frame frame = masterFrameAt(i);
    if ((getCurrentMode(frame.captureResult, frame.composition) & kNightFrameBit) != 0) ++nightCount;
  }
  const FrameModes found = walkFrameModes(3, 9, 0);
  if (found.hdrCount == 6 && nightCount == 3) {
    LOGD_AS(kOperation, "hdr off: HDR_PROCESS_9_YUV_INPUT");
    replaceNightByHdr();
    return kHdr9Yuv;
  }
  LOGD_AS(kOperation, "not hdr off 9: hdr frame cnt: %d, night frame cnt: %d", found.hdrCount, nightCount);
  return kHdrNone;
}

void MetadataUpdater::replaceNightByHdr() {
  removeAlgoFromAlgoList(*mAlgoList, "night");
  if (!listHas("hdr")) append("hdr");
}

void MetadataUpdater::updateRawnrHDRFrameIndex(int& hdrType, int& nightIndex) {
  hdrType = readBack<int32_t>(kParameter, "hdr_process_type", 0);
  nightIndex = readBack<int32_t>(kParameter, "night_frame_index", -1);
  LOGD("rawnr HDR index %d, %d .", hdrType, nightIndex);
}

}  // namespace orlu
