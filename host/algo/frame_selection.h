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

// Returns the variance of the luma's Laplacian; 0 for an opaque image or a luma smaller than 3 x 3.
double sharpnessOf(const ImageView& image);

// Selects frames for a merge: the base, and frames of its shape with at least 60 % of the best sharpness. If
// `sharpestOnly`, keeps only the sharpest frame. The base is `wantedBase` if that is the index of a readable
// frame, else the sharpest frame. An unreadable frame is a view without planes.
FrameSelection selectFrames(const std::vector<ImageView>& frames, int wantedBase, bool sharpestOnly);

}  // namespace orlu::standin
