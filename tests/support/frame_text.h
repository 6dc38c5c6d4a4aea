// Formats frame records as text, so that failed comparisons show the differences.
#pragma once

#include <string>

#include "algo_interface.h"

namespace orlu::test {

inline std::string listText(const int32_t (&values)[kMaxPlanes]) {
  std::string text;
  for (int32_t value : values) text += ' ' + std::to_string(value);
  return text;
}

// Returns "format planeCount | stride 0 to 3 | plane size 0 to 3 | size".
inline std::string layoutText(const AlgoFrameInfo& frame) {
  return std::to_string(frame.format) + ' ' + std::to_string(frame.planeCount) + " |" +
         listText(frame.stride) + " |" + listText(frame.planeSize) + " | " + std::to_string(frame.size);
}

// Returns width and height, layout, scan lines, and the descriptors with their sizes. Omits the pointers.
inline std::string frameText(const AlgoFrameInfo& frame) {
  return std::to_string(frame.width) + 'x' + std::to_string(frame.height) + ' ' + layoutText(frame) + " |" +
         listText(frame.scanline) + " | " + std::to_string(frame.fdCount) + listText(frame.fd) + " |" +
         listText(frame.fdSize);
}

}  // namespace orlu::test
