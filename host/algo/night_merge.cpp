#include "night_merge.h"

#include <algorithm>
#include <cstring>

namespace orlu::standin {
namespace {

struct MovedPlane {
  Plane plane;
  Shift shift;  // in pixels of this plane
};

template <typename T>
void addSamples(std::vector<uint32_t>& sums, const uint8_t* row, size_t first, size_t last,
                ptrdiff_t offset) {
  for (size_t i = first; i < last; ++i) {
    T sample;
    std::memcpy(&sample, row + (static_cast<ptrdiff_t>(i) + offset) * static_cast<ptrdiff_t>(sizeof(T)),
                sizeof sample);
    sums[i] += sample;
  }
}

// Adds one row of a shifted frame, and the base's pixels where the shifted frame has none.
template <typename T>
void addRow(std::vector<uint32_t>& sums, const MovedPlane& moved, const Plane& base, int y) {
  const Plane& plane = moved.plane;
  const int movedY = y + moved.shift.dy;
  const auto channels = static_cast<size_t>(plane.channels);
  const size_t all = sums.size();
  if (movedY < 0 || movedY >= plane.rows) {
    addSamples<T>(sums, base.row(y), 0, all, 0);
    return;
  }
  const int left = std::clamp(-moved.shift.dx, 0, plane.columns);
  const int right = std::clamp(plane.columns - moved.shift.dx, left, plane.columns);
  const size_t first = static_cast<size_t>(left) * channels;
  const size_t last = static_cast<size_t>(right) * channels;
  addSamples<T>(sums, base.row(y), 0, first, 0);
  addSamples<T>(sums, plane.row(movedY), first, last,
                static_cast<ptrdiff_t>(moved.shift.dx) * plane.channels);
  addSamples<T>(sums, base.row(y), last, all, 0);
}

template <typename T>
void meanOfPlanes(const std::vector<MovedPlane>& planes, const Plane& base, const Plane& out) {
  const auto count = static_cast<uint32_t>(planes.size());
  std::vector<uint32_t> sums(static_cast<size_t>(base.columns) * static_cast<size_t>(base.channels));
  for (int y = 0; y < base.rows; ++y) {
    std::fill(sums.begin(), sums.end(), 0U);
    for (const MovedPlane& moved : planes) addRow<T>(sums, moved, base, y);
    uint8_t* const row = out.row(y);
    for (size_t i = 0; i < sums.size(); ++i) {
      const auto mean = static_cast<T>((sums[i] + count / 2) / count);
      std::memcpy(row + i * sizeof(T), &mean, sizeof mean);
    }
  }
}

// Converts a shift in pixels of the image to pixels of one of its planes.
Shift onPlane(const Shift& shift, const ImageView& image, size_t plane) {
  if (!image.isYuv() || plane == 0) return shift;
  return {shift.dx / 2, shift.dy / 2};
}

std::vector<Shift> shiftsOf(const std::vector<ImageView>& frames, const std::vector<bool>& kept,
                            size_t base) {
  std::vector<Shift> shifts(frames.size());
  const LumaPyramid basePyramid(lumaOf(frames[base]));
  const int scale = frames[base].format == kFormatRaw16 ? 2 : 1;
  for (size_t i = 0; i < frames.size(); ++i) {
    if (!kept[i] || i == base) continue;
    const Shift found = estimateShift(basePyramid, LumaPyramid(lumaOf(frames[i])));
    shifts[i] = {scale * found.dx, scale * found.dy};
  }
  return shifts;
}

}  // namespace

MergedImage mergeFrames(const std::vector<ImageView>& frames, const std::vector<bool>& kept, int base) {
  const ImageView& baseFrame = frames[static_cast<size_t>(base)];
  MergedImage merged;
  merged.picture = Picture(baseFrame.format, baseFrame.width, baseFrame.height);
  merged.shifts = shiftsOf(frames, kept, static_cast<size_t>(base));
  merged.mergedFrames = static_cast<int>(std::count(kept.begin(), kept.end(), true));
  for (size_t p = 0; p < baseFrame.planes.size(); ++p) {
    std::vector<MovedPlane> planes;
    for (size_t i = 0; i < frames.size(); ++i) {
      if (kept[i]) planes.push_back({frames[i].planes[p], onPlane(merged.shifts[i], baseFrame, p)});
    }
    const auto mean = baseFrame.planes[p].sampleBytes == 2 ? meanOfPlanes<uint16_t> : meanOfPlanes<uint8_t>;
    mean(planes, baseFrame.planes[p], merged.picture.view().planes[p]);
  }
  return merged;
}

}  // namespace orlu::standin
