#include "planted_images.h"

#include <sys/mman.h>

#include <algorithm>
#include <functional>

namespace orlu::planted {
namespace {

constexpr uint8_t kNoColour = 128;
constexpr uint8_t kDarker = 6;
constexpr int kStampBytes = 16;

void takeWidthForStride(std::vector<AlgoFrameInfo>& frames) {
  for (AlgoFrameInfo& frame : frames) {
    std::fill(std::begin(frame.stride), std::begin(frame.stride) + frame.planeCount, frame.width);
  }
}

void spoilPixels(const std::string& kind, const AlgoFrameInfo& frame, uint8_t* pixels) {
  const int luma = frame.planeSize[0];
  const int all = luma + frame.planeSize[1];
  if (kind == "black" || kind == "clipped") {
    std::fill(pixels, pixels + luma, kind == "black" ? 0 : UINT8_MAX);
    std::fill(pixels + luma, pixels + all, kNoColour);
  } else if (kind == "dark") {
    std::transform(pixels, pixels + luma, pixels, [](uint8_t level) { return level / kDarker; });
  } else if (kind == "green") {
    std::fill(pixels + luma, pixels + all, 0);
  } else if (kind == "half") {
    std::fill(pixels + frame.height / 2 * frame.stride[0], pixels + luma, 0);
  }
}

void withPixels(const AlgoFrameInfo& frame, const std::function<void(uint8_t*)>& change) {
  const auto size = static_cast<size_t>(frame.fdSize[0]);
  void* const memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, frame.fd[0], 0);
  if (memory == MAP_FAILED) return;
  change(static_cast<uint8_t*>(memory));
  munmap(memory, size);
}

}  // namespace

void spoilFrames(const std::string& kind, AlgoProcessRecord& record) {
  if (kind == "inputStride") takeWidthForStride(record.inputFrames);
  if (kind == "outputStride") takeWidthForStride(record.outputFrames);
  if (kind == "elsewhere") record.outputFrames.at(0) = record.inputFrames.at(0);
  if (kind == "swapped") {
    for (AlgoFrameInfo& frame : record.inputFrames) frame.format = kFormatNv12;
  }
}

void spoilOutputs(const std::string& kind, const std::vector<AlgoFrameInfo>& outputs) {
  for (const AlgoFrameInfo& frame : outputs) {
    if (frame.format != kFormatNv21 || frame.fdCount == 0) continue;
    withPixels(frame, [&](uint8_t* pixels) { spoilPixels(kind, frame, pixels); });
  }
}

void stamp(const AlgoFrameInfo& frame) {
  withPixels(frame, [](uint8_t* pixels) { std::fill(pixels, pixels + kStampBytes, UINT8_MAX); });
}

}  // namespace orlu::planted
