#include "picture_transform.h"

#include <algorithm>

namespace orlu::standin {
namespace {

constexpr int kFraction = 256;  // steps between two source pixels

// The position of a target pixel in the source: `weight` / 256 of the way from `first` to `second`.
struct SourcePosition {
  int first;
  int second;
  int weight;
};

SourcePosition sourceOf(int target, int targets, int sources) {
  // Aligns the pixel centres of both grids.
  const int64_t position =
      (2 * int64_t{target} + 1) * sources * kFraction / (2 * int64_t{targets}) - kFraction / 2;
  const auto bounded = static_cast<int>(std::clamp<int64_t>(position, 0, int64_t{sources - 1} * kFraction));
  const int first = bounded / kFraction;
  return {first, std::min(first + 1, sources - 1), bounded % kFraction};
}

int between(int first, int second, int weight) {
  return first * (kFraction - weight) + second * weight;
}

void scalePlane(const Plane& from, const Plane& to) {
  std::vector<SourcePosition> columns;
  columns.reserve(static_cast<size_t>(to.columns));
  for (int x = 0; x < to.columns; ++x) columns.push_back(sourceOf(x, to.columns, from.columns));
  for (int y = 0; y < to.rows; ++y) {
    const SourcePosition rows = sourceOf(y, to.rows, from.rows);
    const uint8_t* const upper = from.row(rows.first);
    const uint8_t* const lower = from.row(rows.second);
    uint8_t* out = to.row(y);
    for (const SourcePosition& column : columns) {
      for (int channel = 0; channel < from.channels; ++channel) {
        const int first = column.first * from.channels + channel;
        const int second = column.second * from.channels + channel;
        const int value = between(between(upper[first], upper[second], column.weight),
                                  between(lower[first], lower[second], column.weight), rows.weight);
        *out++ = static_cast<uint8_t>((value + kFraction * kFraction / 2) / (kFraction * kFraction));
      }
    }
  }
}

void mirrorRow(uint8_t* row, size_t rowBytes, size_t unit) {
  const size_t units = rowBytes / unit;
  for (size_t i = 0; i < units / 2; ++i) {
    std::swap_ranges(row + i * unit, row + (i + 1) * unit, row + (units - 1 - i) * unit);
  }
}

}  // namespace

bool mirrorLeftRight(const ImageView& image) {
  if (image.isOpaque()) return false;
  for (const Plane& plane : image.planes) {
    const size_t unit = plane.pixelBytes() * (image.format == kFormatRaw16 ? 2 : 1);
    for (int y = 0; y < plane.rows; ++y) mirrorRow(plane.row(y), plane.rowBytes(), unit);
  }
  return true;
}

Picture scaleTo(const ImageView& image, int width, int height) {
  constexpr int kMaxSide = 16384;
  if (!image.isYuv() || width <= 0 || height <= 0 || width > kMaxSide || height > kMaxSide) return {};
  Picture scaled(image.format, width, height);
  if (scaled.empty()) return {};
  for (size_t i = 0; i < image.planes.size(); ++i) scalePlane(image.planes[i], scaled.view().planes[i]);
  return scaled;
}

}  // namespace orlu::standin
