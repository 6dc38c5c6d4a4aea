// Bracketing layouts: derives the HDR process type of a request from the mode bits of its frames.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace orlu {

// Number of slots for HDR frames in the algorithms' tables.
constexpr size_t kHdrSlots = 6;
using HdrFrameIndex = std::array<int32_t, kHdrSlots>;

// HDR process types with the algorithm library's numbers.
enum HdrProcessType : int32_t {
  kHdrNone = 0,
  kHdr9Yuv = 1,  // three night frames, then six HDR frames
  kHdr7Yuv = 2,  // six HDR frames and one night frame, in any order
  kHdr3 = 4,     // three frames, whatever their modes
  kHdr5Yuv = 6,  // four HDR frames and one night frame, in any order
};

// Bits of a frame's mode.
constexpr uint64_t kHdrFrameBit = 2;
constexpr uint64_t kNightFrameBit = 8;

// Mode bits of the first frames; the longest layout has nine.
using FrameModes = std::array<uint64_t, 9>;

struct HdrLayout {
  HdrProcessType type = kHdrNone;
  // Index of the last night frame, even if the layout does not match. 0 if there is no night frame; always 0
  // with nine frames.
  int32_t nightIndex = 0;
  int hdrCount = 0;
  int nightCount = 0;
};

// Returns whether the frames' modes determine the layout: true for 5, 7 and 9 frames.
bool isBracketed(int frameNum);

// Returns the layout of `frameNum` frames with these modes; kHdrNone if isBracketed() is false. Stores the
// indices of the HDR frames in `hdrFrames`, even if the layout does not match (Oddity 24). With five frames,
// they begin at slot 1, because slot 0 belongs to the night frame.
HdrLayout hdrLayoutOf(const FrameModes& modes, int frameNum, HdrFrameIndex& hdrFrames);

}  // namespace orlu
