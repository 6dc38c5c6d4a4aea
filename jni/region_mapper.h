// Rectangles in the sensor's active array become rectangles in an image, which is smaller, may have another
// aspect ratio and may be a digitally zoomed view. Sizes and coordinates are pixels; floats are 32 bits wide
// throughout, with one rounding for each operation.
#pragma once

#include <cstdint>

#include "metadata_records.h"

namespace orlu {

inline bool hasZeroSide(_tagOrluSize size) {
  return size.width == 0 || size.height == 0;
}

// What the camera says about a frame's scale.
struct RegionScale {
  int32_t remosaicType = 0;
  SCR_Type sensorCrop = {};
  _tagOrluSize fullSize;  // of the sensor's largest image
};

// Whether rectangles have to be scaled from the active array to the image. They have not where the caller
// gave them in image coordinates.
bool needsScaling(_tagOrluSize active, _tagOrluSize image, const RegionScale& scale);

// `rect` in the image, in front of any zoom. `active` has no zero side. Where it is not scaled, the offsets
// apply all the same (Oddity 26).
__tagOrluRect mappedToImage(const __tagOrluRect& rect, _tagOrluSize active, _tagOrluSize image,
                            bool isScaled);

__tagOrluRect zoomedAboutCentre(const __tagOrluRect& rect, _tagOrluSize image, float zoom);

// Left and top against the one border, right and bottom against the other. They may end up crossed.
void clampToImage(__tagOrluRect& rect, _tagOrluSize image);
// Sets both sides of a crossed pair to 0.
void emptyIfCrossed(__tagOrluRect& rect);

// Drops the faces outside the image and fills each one's place with the last face (Oddity 28). Returns how
// many were dropped. At most kMaxFaces faces.
int dropFacesOutside(_tagOrluFaceInfo& faces, _tagOrluSize image);

}  // namespace orlu
