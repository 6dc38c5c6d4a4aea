// The mean of n frames, shifted to match the base frame; divides the noise by the square root of n.
#pragma once

#include <vector>

#include "alignment.h"
#include "image.h"

namespace orlu::standin {

struct MergedImage {
  Picture picture;
  std::vector<Shift> shifts;  // pixels, one per frame; 0 for an unmerged frame
  int mergedFrames = 0;
};

// Merges the kept frames, which must include the base, have its shape and not be opaque. Missing pixels of a
// shifted frame are taken from the base. Raw frames shift by even numbers to keep the Bayer pattern.
MergedImage mergeFrames(const std::vector<ImageView>& frames, const std::vector<bool>& kept, int base);

}  // namespace orlu::standin
