// Judges a request's frames by sharpness: which frames to keep, and which is the base of a merge.
#pragma once

#include <vector>

#include "image.h"

namespace orlu::standin {

struct FrameSelection {
  std::vector<double> sharpness;  // one per frame; 0 for an unreadable frame
  std::vector<bool> kept;
  int base = -1;  // -1 if no frame is usable
};

// Returns the variance of the luma's Laplacian; 0 for an opaque image or one smaller than 3 x 3.
double sharpnessOf(const ImageView& image);

// Keeps the frames with at least 60 % of the best sharpness, or only the sharpest. Frames whose shape differs
// from the base's can't be merged and are dropped. `wantedBase` is used if it is the index of a readable
// frame. An unreadable frame is a view without planes.
FrameSelection selectFrames(const std::vector<ImageView>& frames, int wantedBase, bool sharpestOnly);

}  // namespace orlu::standin
