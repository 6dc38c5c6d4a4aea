// Encodes an image as a JPEG with its EXIF block.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "image.h"

namespace orlu::standin {

// Returns the file in the highest quality that fits into `room` bytes; a JPEG is returned unchanged. Empty if
// it does not fit or encoding fails, or for formats other than NV21, NV12, RGBA and JPEG.
std::vector<uint8_t> encodeJpeg(const ImageView& image, const std::vector<uint8_t>& exif, size_t room);

}  // namespace orlu::standin
