// Encodes an image as a JPEG with its EXIF block.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "image.h"

namespace orlu::standin {

// Encodes the image at the highest of a few qualities at which the JPEG fits into `room` bytes. Returns an
// image that is already a JPEG unchanged. Returns an empty vector if the JPEG does not fit, if encoding
// fails, and for formats other than NV21, NV12, RGBA and JPEG.
std::vector<uint8_t> encodeJpeg(const ImageView& image, const std::vector<uint8_t>& exif, size_t room);

}  // namespace orlu::standin
