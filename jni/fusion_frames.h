// Which two frames of a shot a two-camera fusion works on.
#pragma once

#include <algorithm>
#include <array>

namespace orlu {

// The master's frame and the slave's, as indices among all capture results. One past the list is a frame that
// is not there.
using FusionFrames = std::array<int, 2>;

struct FusionShot {
  bool isSatFusion = false;  // fusion of a switching multi-camera system
  bool isDualBokeh = false;
  bool isHdr = false;
  bool isPixelShift = false;
  int baseFrame = -1;  // chosen by the camera; below 0 where it chose none
  int frameNum = 0;
};

// Fusion of a switching system wins over bokeh: its slave is the last frame, and its master the base frame,
// which a pixel shift always has at 0. Bokeh with HDR takes the pair behind the first two frames.
inline FusionFrames fusionFramesOf(const FusionShot& shot) {
  if (shot.isSatFusion) return {shot.isPixelShift ? 0 : std::max(shot.baseFrame, 0), shot.frameNum - 1};
  if (shot.isDualBokeh && shot.isHdr) return {2, 3};
  return {0, 1};
}

}  // namespace orlu
