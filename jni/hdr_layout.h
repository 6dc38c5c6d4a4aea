// The bracketing layouts: which HDR process a series of frames is for, by the mode bits of its frames.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace orlu {

// Slots of the algorithms' tables of HDR frames.
constexpr size_t kHdrSlots = 6;
using HdrFrameIndex = std::array<int32_t, kHdrSlots>;

// HDR process types, by the numbers of the algorithm library.
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
  int32_t nightIndex = 0;  // of the last night frame, also where the layout does not match
  int hdrCount = 0;
  int nightCount = 0;
};

// Whether the modes of so many frames decide: of 5, 7 and 9.
bool isBracketed(int frameNum);

// The layout of `frameNum` frames with these modes; kHdrNone for a number that is not bracketed. The indices
// of the HDR frames found go into `hdrFrames`, also where the layout does not match (Oddity 24); with five
// frames they begin at slot 1, and slot 0 is the night frame's.
HdrLayout hdrLayoutOf(const FrameModes& modes, int frameNum, HdrFrameIndex& hdrFrames);

}  // namespace orlu
