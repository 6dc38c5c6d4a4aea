// Transforms whole pictures: mirroring and scaling.
#pragma once

#include "image.h"

namespace orlu::standin {

// Mirrors left to right, in place. Raw images are mirrored in pairs of columns, which keeps the Bayer
// pattern. Returns false for an opaque image.
bool mirrorLeftRight(const ImageView& image);

// Returns the image scaled bilinearly. Returns an empty picture if the image is neither NV21 nor NV12, or if
// a side is below 1 or above 16384.
Picture scaleTo(const ImageView& image, int width, int height);

}  // namespace orlu::standin
