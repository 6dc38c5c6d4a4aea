#include "hdr_layout.h"

namespace orlu {
namespace {

bool isHdr(uint64_t mode) {
  return (mode & kHdrFrameBit) != 0;
}

bool isNight(uint64_t mode) {
  return (mode & kNightFrameBit) != 0;
}

// Counts the HDR frames and the night frames in [first, last). A frame with both mode bits counts as HDR.
// Stores the indices of the HDR frames in `hdrFrames`, from slot `hdrSlot` on.
HdrLayout walk(const FrameModes& modes, size_t first, size_t last, size_t hdrSlot, HdrFrameIndex& hdrFrames) {
  HdrLayout found;
  for (size_t i = first; i < last; ++i) {
    const auto index = static_cast<int32_t>(i);
    if (isHdr(modes[i])) {
      const size_t slot = hdrSlot + static_cast<size_t>(found.hdrCount++);
      if (slot < hdrFrames.size()) hdrFrames[slot] = index;
    } else if (isNight(modes[i])) {
      ++found.nightCount;
      found.nightIndex = index;
    }
  }
  return found;
}

HdrLayout layoutOf5(const FrameModes& modes, HdrFrameIndex& hdrFrames) {
  HdrLayout layout = walk(modes, 0, 5, 1, hdrFrames);
  if (layout.nightCount > 0) hdrFrames[0] = layout.nightIndex;
  if (layout.hdrCount == 4 && layout.nightCount == 1) layout.type = kHdr5Yuv;
  return layout;
}

HdrLayout layoutOf7(const FrameModes& modes, HdrFrameIndex& hdrFrames) {
  HdrLayout layout = walk(modes, 0, 7, 0, hdrFrames);
  if (layout.hdrCount == 6 && layout.nightCount == 1) layout.type = kHdr7Yuv;
  return layout;
}

// Counts only night frames among the first three frames, and only HDR frames among the last six.
HdrLayout layoutOf9(const FrameModes& modes, HdrFrameIndex& hdrFrames) {
  constexpr size_t kNightFrames = 3;
  HdrLayout layout;
  layout.hdrCount = walk(modes, kNightFrames, 9, 0, hdrFrames).hdrCount;
  for (size_t i = 0; i < kNightFrames; ++i) layout.nightCount += isNight(modes[i]) ? 1 : 0;
  if (layout.hdrCount == 6 && layout.nightCount == 3) layout.type = kHdr9Yuv;
  return layout;
}

}  // namespace

bool isBracketed(int frameNum) {
  return frameNum == 5 || frameNum == 7 || frameNum == 9;
}

HdrLayout hdrLayoutOf(const FrameModes& modes, int frameNum, HdrFrameIndex& hdrFrames) {
  switch (frameNum) {
    case 5:
      return layoutOf5(modes, hdrFrames);
    case 7:
      return layoutOf7(modes, hdrFrames);
    case 9:
      return layoutOf9(modes, hdrFrames);
    default:
      return {};
  }
}

}  // namespace orlu
