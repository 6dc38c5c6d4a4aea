// The EXIF facts of a photo as the bytes of a JPEG's APP1 segment.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "metadata_records.h"

namespace orlu::standin {

struct ExifFacts {
  ExifInfo info;
  int width = 0;  // pixels
  int height = 0;
  std::optional<int32_t> rotation;  // clockwise, in degrees, applied by viewers of the picture
};

// Returns the segment's contents, starting with "Exif"; empty if libexif fails. Omits most facts that
// are absent or implausible.
std::vector<uint8_t> buildExif(const ExifFacts& facts);

}  // namespace orlu::standin
