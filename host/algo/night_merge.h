// The mean of several frames, each moved to lie on the base frame. Averaging n frames takes the noise down by
// the square root of n.
#pragma once

#include <vector>

#include "alignment.h"
#include "image.h"

namespace orlu::standin {

struct MergedImage {
  Picture picture;
  std::vector<Shift> shifts;  // pixels, one for each frame; 0 for one that was not merged
  int mergedFrames = 0;
};

// Merges the frames marked as kept, the base among them, all of the base's shape and not opaque. Where a
// moved frame has no pixel the base's stands in. Raw frames move by even numbers, which keeps the Bayer
// pattern.
MergedImage mergeFrames(const std::vector<ImageView>& frames, const std::vector<bool>& kept, int base);

}  // namespace orlu::standin
