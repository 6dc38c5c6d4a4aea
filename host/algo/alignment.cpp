#include "alignment.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace orlu::standin {
namespace {

constexpr int kSmallestSide = 24;          // least width and height of a halved level
constexpr int kCoarseRange = 4;            // search range at the coarsest level: samples in each direction
constexpr int kFineRange = 2;              // search range at the finer levels
constexpr int64_t kEnoughSamples = 60000;  // limit on the compared samples of a level

uint32_t sampleAt(const Plane& plane, int x, int y) {
  uint16_t value;
  std::memcpy(&value, plane.row(y) + 2 * static_cast<size_t>(x), sizeof value);
  return value;
}

Luma lumaOfBytes(const Plane& plane) {
  Luma luma{plane.columns, plane.rows, {}};
  luma.samples.reserve(static_cast<size_t>(plane.columns) * static_cast<size_t>(plane.rows));
  for (int y = 0; y < plane.rows; ++y) {
    const uint8_t* const row = plane.row(y);
    luma.samples.insert(luma.samples.end(), row, row + plane.columns);
  }
  return luma;
}

Luma lumaOfRaw(const Plane& plane) {
  Luma luma{plane.columns / 2, plane.rows / 2, {}};
  luma.samples.reserve(static_cast<size_t>(luma.width) * static_cast<size_t>(luma.height));
  for (int y = 0; y < luma.height; ++y) {
    for (int x = 0; x < luma.width; ++x) {
      const uint32_t sum = sampleAt(plane, 2 * x, 2 * y) + sampleAt(plane, 2 * x + 1, 2 * y) +
                           sampleAt(plane, 2 * x, 2 * y + 1) + sampleAt(plane, 2 * x + 1, 2 * y + 1);
      luma.samples.push_back(static_cast<uint16_t>(sum / 4));
    }
  }
  return luma;
}

Luma lumaOfRgba(const Plane& plane) {
  Luma luma{plane.columns, plane.rows, {}};
  luma.samples.reserve(static_cast<size_t>(plane.columns) * static_cast<size_t>(plane.rows));
  for (int y = 0; y < plane.rows; ++y) {
    const uint8_t* pixel = plane.row(y);
    for (int x = 0; x < plane.columns; ++x, pixel += 4) {
      luma.samples.push_back(static_cast<uint16_t>((77 * pixel[0] + 150 * pixel[1] + 29 * pixel[2]) / 256));
    }
  }
  return luma;
}

Luma halve(const Luma& luma) {
  Luma half{luma.width / 2, luma.height / 2, {}};
  half.samples.reserve(static_cast<size_t>(half.width) * static_cast<size_t>(half.height));
  for (int y = 0; y < half.height; ++y) {
    const uint16_t* const upper = luma.row(2 * y);
    const uint16_t* const lower = luma.row(2 * y + 1);
    for (int x = 0; x < 2 * half.width; x += 2) {
      half.samples.push_back(
          static_cast<uint16_t>((upper[x] + upper[x + 1] + lower[x] + lower[x + 1] + 2) / 4));
    }
  }
  return half;
}

double meanOf(const Luma& luma) {
  uint64_t sum = 0;
  for (uint16_t sample : luma.samples) sum += sample;
  return static_cast<double>(sum) / static_cast<double>(std::max<size_t>(luma.samples.size(), 1));
}

// Returns the mean absolute difference of the two lumas where they overlap, after `brightness` is added to
// the base. Compares every step-th sample of every step-th row. Returns infinity if they do not overlap.
double meanDifference(const Luma& base, const Luma& other, Shift shift, int brightness, int step) {
  const int left = std::max(0, -shift.dx);
  const int right = std::min(base.width, base.width - shift.dx);
  const int top = std::max(0, -shift.dy);
  const int bottom = std::min(base.height, base.height - shift.dy);
  int64_t sum = 0;
  int64_t count = 0;
  for (int y = top; y < bottom; y += step) {
    const uint16_t* const a = base.row(y);
    const uint16_t* const b = other.row(y + shift.dy);
    for (int x = left; x < right; x += step) sum += std::abs(a[x] - b[x + shift.dx] + brightness);
    if (right > left) count += (right - left + step - 1) / step;
  }
  return count == 0 ? std::numeric_limits<double>::infinity()
                    : static_cast<double>(sum) / static_cast<double>(count);
}

// Returns the shift with the least difference within `range` of `start`; `start` if no other shift is better.
Shift searchAround(const Luma& base, const Luma& other, Shift start, int range) {
  const int brightness = static_cast<int>(std::lround(meanOf(other) - meanOf(base)));
  const int64_t samples = static_cast<int64_t>(base.width) * base.height;
  int step = 1;
  while (samples / (static_cast<int64_t>(step) * step) > kEnoughSamples) ++step;

  Shift best = start;
  double least = meanDifference(base, other, start, brightness, step);
  for (int dy = start.dy - range; dy <= start.dy + range; ++dy) {
    for (int dx = start.dx - range; dx <= start.dx + range; ++dx) {
      const double difference = meanDifference(base, other, {dx, dy}, brightness, step);
      if (difference >= least) continue;
      least = difference;
      best = {dx, dy};
    }
  }
  return best;
}

}  // namespace

Luma lumaOf(const ImageView& image) {
  if (image.isOpaque() || image.planes.empty()) return {};
  const Plane& plane = image.planes[0];
  if (image.format == kFormatRaw16) return lumaOfRaw(plane);
  return image.format == kFormatRgba8888 ? lumaOfRgba(plane) : lumaOfBytes(plane);
}

LumaPyramid::LumaPyramid(Luma finest) {
  mLevels.push_back(std::move(finest));
  while (std::min(mLevels.back().width, mLevels.back().height) / 2 >= kSmallestSide) {
    mLevels.push_back(halve(mLevels.back()));
  }
}

Shift estimateShift(const LumaPyramid& base, const LumaPyramid& other) {
  Shift shift;
  for (size_t level = base.levels().size(); level-- > 0;) {
    const bool coarsest = level + 1 == base.levels().size();
    const Shift start{2 * shift.dx, 2 * shift.dy};
    shift = searchAround(base.levels()[level], other.levels()[level], start,
                         coarsest ? kCoarseRange : kFineRange);
  }
  return shift;
}

}  // namespace orlu::standin
