// Encodes an image as a JPEG with its EXIF block.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "image.h"

namespace orlu::standin {

// The file's bytes, at the highest of some qualities at which they fit into `room`. Empty when they never
// fit, or when the format is neither NV21, NV12 nor RGBA. A JPEG that came in goes out unchanged when it
// fits.
std::vector<uint8_t> encodeJpeg(const ImageView& image, const std::vector<uint8_t>& exif, size_t room);

}  // namespace orlu::standin
