// Judges the frames of a request by their sharpness: which to keep, and which is the base of a merge.
#pragma once

#include <vector>

#include "image.h"

namespace orlu::standin {

struct FrameSelection {
  std::vector<double> sharpness;  // one for each frame; 0 for one that can't be read
  std::vector<bool> kept;
  int base = -1;  // -1 when no frame can be used
};

// The variance of the luma's Laplacian; 0 for an opaque image or one under 3 x 3.
double sharpnessOf(const ImageView& image);

// Keeps the frames whose sharpness is at least 60 % of the best, or the sharpest alone. Frames of another
// shape than the base can't be merged with it and are not kept. `wantedBase` wins when it is a readable
// frame's index. A view without planes stands for a frame that can't be read.
FrameSelection selectFrames(const std::vector<ImageView>& frames, int wantedBase, bool sharpestOnly);

}  // namespace orlu::standin
