// The mean of several frames, each shifted to match the base frame. Averaging n frames divides the noise by
// the square root of n.
#pragma once

#include <vector>

#include "alignment.h"
#include "image.h"

namespace orlu::standin {

struct MergedImage {
  Picture picture;
  std::vector<Shift> shifts;  // in pixels, one per frame; 0 for an unmerged frame
  int mergedFrames = 0;
};

// Merges the frames whose element of `kept` is true; frame `base` must be one of them. All of them must have
// the base's shape, and none may be opaque. Where a shifted frame has no pixel, the base's pixel is used. Raw
// frames are shifted by even numbers, which keeps the Bayer pattern.
MergedImage mergeFrames(const std::vector<ImageView>& frames, const std::vector<bool>& kept, int base);

}  // namespace orlu::standin
