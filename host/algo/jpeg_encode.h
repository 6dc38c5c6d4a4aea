// Encodes an image as a JPEG with its EXIF block.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "image.h"

namespace orlu::standin {

// Returns the JPEG in the best of a few qualities in which it fits into `room` bytes. An image that is
// already a JPEG is returned unchanged. Returns an empty vector if nothing fits, if encoding fails, and for
// formats other than NV21, NV12, RGBA and JPEG.
std::vector<uint8_t> encodeJpeg(const ImageView& image, const std::vector<uint8_t>& exif, size_t room);

}  // namespace orlu::standin
