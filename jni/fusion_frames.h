// Selects the two frames that a two-camera fusion combines.
#pragma once

#include <algorithm>
#include <array>

namespace orlu {

// Indices of the master's and the slave's frame among all capture results. An index past the end means that
// the frame is missing.
using FusionFrames = std::array<int, 2>;

struct FusionShot {
  bool isSatFusion = false;  // fusion in a multi-camera system that switches cameras (SAT)
  bool isDualBokeh = false;
  bool isHdr = false;
  bool isPixelShift = false;
  int baseFrame = -1;  // chosen by the camera; negative if it chose none
  int frameNum = 0;
};

// SAT fusion takes precedence over bokeh. For SAT fusion, the master is the base frame, or frame 0 for a
// pixel shift or without a base frame; the slave is the last frame. Bokeh uses frames 2 and 3 with HDR, and
// frames 0 and 1 without HDR.
inline FusionFrames fusionFramesOf(const FusionShot& shot) {
  if (shot.isSatFusion) return {shot.isPixelShift ? 0 : std::max(shot.baseFrame, 0), shot.frameNum - 1};
  if (shot.isDualBokeh && shot.isHdr) return {2, 3};
  return {0, 1};
}

}  // namespace orlu
