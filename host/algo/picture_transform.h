// Transforms whole pictures: mirroring and scaling.
#pragma once

#include "image.h"

namespace orlu::standin {

// Mirrors in place; false for an opaque image. Raw images swap pairs of columns, to keep the Bayer pattern.
bool mirrorLeftRight(const ImageView& image);

// Scales bilinearly. Empty if the image is neither NV21 nor NV12, or if a side is below 1 or above 16384.
Picture scaleTo(const ImageView& image, int width, int height);

}  // namespace orlu::standin
