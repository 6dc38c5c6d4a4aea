#include "frame_selection.h"

#include "alignment.h"

namespace orlu::standin {
namespace {

constexpr double kLeastShareOfBest = 0.6;

int sharpestOf(const std::vector<ImageView>& frames, const std::vector<double>& sharpness) {
  int best = -1;
  for (size_t i = 0; i < frames.size(); ++i) {
    if (frames[i].planes.empty()) continue;
    if (best < 0 || sharpness[i] > sharpness[static_cast<size_t>(best)]) best = static_cast<int>(i);
  }
  return best;
}

bool isReadable(const std::vector<ImageView>& frames, int index) {
  return index >= 0 && static_cast<size_t>(index) < frames.size() &&
         !frames[static_cast<size_t>(index)].planes.empty();
}

}  // namespace

double sharpnessOf(const ImageView& image) {
  const Luma luma = lumaOf(image);
  if (luma.width < 3 || luma.height < 3) return 0;
  double sum = 0;
  double squares = 0;
  for (int y = 1; y + 1 < luma.height; ++y) {
    const uint16_t* const above = luma.row(y - 1);
    const uint16_t* const row = luma.row(y);
    const uint16_t* const below = luma.row(y + 1);
    for (int x = 1; x + 1 < luma.width; ++x) {
      const double laplacian = above[x] + below[x] + row[x - 1] + row[x + 1] - 4 * row[x];
      sum += laplacian;
      squares += laplacian * laplacian;
    }
  }
  const double count = static_cast<double>(luma.width - 2) * (luma.height - 2);
  const double mean = sum / count;
  return squares / count - mean * mean;
}

FrameSelection selectFrames(const std::vector<ImageView>& frames, int wantedBase, bool sharpestOnly) {
  FrameSelection selection;
  for (const ImageView& frame : frames) selection.sharpness.push_back(sharpnessOf(frame));
  selection.kept.assign(frames.size(), false);
  const int sharpest = sharpestOf(frames, selection.sharpness);
  selection.base = isReadable(frames, wantedBase) ? wantedBase : sharpest;
  if (selection.base < 0) return selection;

  const double best = selection.sharpness[static_cast<size_t>(sharpest)];
  const ImageView& base = frames[static_cast<size_t>(selection.base)];
  for (size_t i = 0; i < frames.size(); ++i) {
    selection.kept[i] = !sharpestOnly && !frames[i].planes.empty() && frames[i].sameShape(base) &&
                        selection.sharpness[i] >= kLeastShareOfBest * best;
  }
  selection.kept[static_cast<size_t>(sharpestOnly ? sharpest : selection.base)] = true;
  return selection;
}

}  // namespace orlu::standin
