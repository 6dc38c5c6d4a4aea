// Selects the two frames of a shot that a two-camera fusion works on.
#pragma once

#include <algorithm>
#include <array>

namespace orlu {

// Indices of the master's and the slave's frame among all capture results. An index past the end means that
// the frame is missing.
using FusionFrames = std::array<int, 2>;

struct FusionShot {
  bool isSatFusion = false;  // fusion of a switching multi-camera system
  bool isDualBokeh = false;
  bool isHdr = false;
  bool isPixelShift = false;
  int baseFrame = -1;  // chosen by the camera; negative if it chose none
  int frameNum = 0;
};

// SAT fusion takes precedence over bokeh. Its slave is the last frame; its master is the base frame, or frame
// 0 for a pixel shift or without a base frame. Bokeh with HDR uses frames 2 and 3.
inline FusionFrames fusionFramesOf(const FusionShot& shot) {
  if (shot.isSatFusion) return {shot.isPixelShift ? 0 : std::max(shot.baseFrame, 0), shot.frameNum - 1};
  if (shot.isDualBokeh && shot.isHdr) return {2, 3};
  return {0, 1};
}

}  // namespace orlu
