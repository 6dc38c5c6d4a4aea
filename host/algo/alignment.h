// Finds the shift between two frames, in whole luma samples.
#pragma once

#include <cstdint>
#include <vector>

#include "image.h"

namespace orlu::standin {

// Pixel (x, y) of the base frame matches pixel (x + dx, y + dy) of the other frame.
struct Shift {
  int dx = 0;
  int dy = 0;
};

// The brightness of an image, one sample per pixel; for raw images one sample per 2 x 2 cell.
struct Luma {
  int width = 0;
  int height = 0;
  std::vector<uint16_t> samples;

  const uint16_t* row(int y) const {
    return samples.data() + static_cast<size_t>(y) * static_cast<size_t>(width);
  }
};

// Returns an empty luma for an image that is opaque or has no planes.
Luma lumaOf(const ImageView& image);

// A luma and its successively halved versions, the finest first.
class LumaPyramid {
public:
  explicit LumaPyramid(Luma finest);
  const std::vector<Luma>& levels() const { return mLevels; }

private:
  std::vector<Luma> mLevels;
};

// Returns the shift, in samples of the finest level, that minimises the mean difference between the two
// frames. Searches from the coarsest level to the finest. Ignores an overall difference in brightness. Both
// pyramids must have the same shape.
Shift estimateShift(const LumaPyramid& base, const LumaPyramid& other);

}  // namespace orlu::standin
