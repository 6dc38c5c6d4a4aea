// Selects the frames to keep and the base of a merge by the sharpness of a request's frames.
#pragma once

#include <vector>

#include "image.h"

namespace orlu::standin {

struct FrameSelection {
  std::vector<double> sharpness;  // one per frame; 0 for an unreadable frame
  std::vector<bool> kept;
  int base = -1;  // index of a frame; -1 if no frame is readable
};

// Returns the variance of the luma's Laplacian; 0 for an opaque image or a luma smaller than 3 x 3.
double sharpnessOf(const ImageView& image);

// Selects the frames of a merge. The base is `wantedBase` if that is the index of a readable frame, else the
// sharpest frame. Keeps the base, and readable frames of its format and size with at least 60 % of the best
// sharpness. If `sharpestOnly`, keeps only the sharpest frame. A view without planes is unreadable.
FrameSelection selectFrames(const std::vector<ImageView>& frames, int wantedBase, bool sharpestOnly);

}  // namespace orlu::standin
