// Transforms whole pictures: mirroring and scaling.
#pragma once

#include "image.h"

namespace orlu::standin {

// Mirrors an image left to right, in place. Moves the columns of raw images in pairs, to keep the Bayer
// pattern. Returns false for an opaque image (see ImageView).
bool mirrorLeftRight(const ImageView& image);

// Returns the image scaled bilinearly. Returns an empty picture if the image is neither NV21 nor NV12, or if
// `width` or `height` is below 1 or above 16384.
Picture scaleTo(const ImageView& image, int width, int height);

}  // namespace orlu::standin
