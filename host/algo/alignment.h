// Finds by how many whole pixels one frame is shifted against another.
#pragma once

#include <cstdint>
#include <vector>

#include "image.h"

namespace orlu::standin {

// The pixel (x, y) of the base frame shows what (x + dx, y + dy) of the other frame shows.
struct Shift {
  int dx = 0;
  int dy = 0;
};

// The brightness of an image, one sample a pixel; of a raw image one sample for each 2 x 2 cell.
struct Luma {
  int width = 0;
  int height = 0;
  std::vector<uint16_t> samples;

  const uint16_t* row(int y) const {
    return samples.data() + static_cast<size_t>(y) * static_cast<size_t>(width);
  }
};

// Empty for an opaque image.
Luma lumaOf(const ImageView& image);

// A luma and its halvings, the finest first.
class LumaPyramid {
public:
  explicit LumaPyramid(Luma finest);
  const std::vector<Luma>& levels() const { return mLevels; }

private:
  std::vector<Luma> mLevels;
};

// The shift in samples of the finest level, found from coarse to fine by the least mean difference. Both
// pyramids must have the same shape. A difference in brightness as a whole does not count.
Shift estimateShift(const LumaPyramid& base, const LumaPyramid& other);

}  // namespace orlu::standin
