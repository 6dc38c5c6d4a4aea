// Changes of a whole picture: mirroring and scaling.
#pragma once

#include "image.h"

namespace orlu::standin {

// Mirrors left to right, in place. A raw image swaps pairs of columns, which keeps its Bayer pattern. False
// for an opaque image.
bool mirrorLeftRight(const ImageView& image);

// The picture scaled to the size, bilinearly. Empty when it is not NV21 or NV12 or the size is no size.
Picture scaleTo(const ImageView& image, int width, int height);

}  // namespace orlu::standin
