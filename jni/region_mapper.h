// Maps rectangles in the sensor's active array to an image, which may differ in size and aspect ratio and may
// be digitally zoomed. Sizes and coordinates are in pixels. Floats have 32 bits throughout; each operation
// rounds once.
#pragma once

#include <cstdint>

#include "metadata_records.h"

namespace orlu {

inline bool hasZeroSide(_tagOrluSize size) {
  return size.width == 0 || size.height == 0;
}

// The camera's information about a frame's scale.
struct RegionScale {
  int32_t remosaicType = 0;
  SCR_Type sensorCrop = {};
  _tagOrluSize fullSize;  // size of the sensor's largest image
};

// Returns whether rectangles must be scaled to the image; false if they are in image coordinates already.
bool needsScaling(_tagOrluSize active, _tagOrluSize image, const RegionScale& scale);

// Maps `rect` to the image, before any zoom. The sides of `active` must not be 0. Subtracts the offsets
// that crop the active array to the image's aspect ratio, even if `isScaled` is false (Oddity 26).
__tagOrluRect mappedToImage(const __tagOrluRect& rect, _tagOrluSize active, _tagOrluSize image,
                            bool isScaled);

__tagOrluRect zoomedAboutCentre(const __tagOrluRect& rect, _tagOrluSize image, float zoom);

// Raises a negative left or top to 0; lowers right and bottom to the image's size if they exceed it. Left may
// then exceed right, or top exceed bottom.
void clampToImage(__tagOrluRect& rect, _tagOrluSize image);
// If left exceeds right, sets these two sides to 0. Does the same for top and bottom.
void emptyIfCrossed(__tagOrluRect& rect);

// Drops the faces outside the image and moves the last face into each gap (Oddity 28). `faces` holds at most
// kMaxFaces faces. Returns the number of dropped faces.
int dropFacesOutside(_tagOrluFaceInfo& faces, _tagOrluSize image);

}  // namespace orlu
