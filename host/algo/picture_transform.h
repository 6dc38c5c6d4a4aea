// Transforms whole pictures: mirroring and scaling.
#pragma once

#include "image.h"

namespace orlu::standin {

// Mirrors left to right, in place. Raw images swap pairs of columns, which keeps the Bayer pattern. Returns
// false for an opaque image.
bool mirrorLeftRight(const ImageView& image);

// Returns the picture scaled bilinearly. Empty if it is not NV21 or NV12 or the size is not positive.
Picture scaleTo(const ImageView& image, int width, int height);

}  // namespace orlu::standin
