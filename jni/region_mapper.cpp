#include "region_mapper.h"

#include "arithmetic.h"

namespace orlu {
namespace {

// Maps the active array to the image: value * ratio - offset on each axis.
struct Mapping {
  float ratio;
  int64_t offsetX;
  int64_t offsetY;
};

// Scales the active array to the image's size on the other axis. Returns half of the length by which the
// scaled array exceeds the image on this axis. Multiplies before dividing, because algorithms rely on this
// rounding.
int64_t halfExcess(int32_t active, int32_t imageOther, int32_t activeOther, int32_t image) {
  return (int64_t{active} * imageOther / activeOther - image) / 2;
}

float quotient(int32_t a, int32_t b) {
  return static_cast<float>(a) / static_cast<float>(b);
}

Mapping mappingOf(_tagOrluSize active, _tagOrluSize image) {
  if (quotient(image.width, image.height) <= quotient(active.width, active.height)) {
    return {quotient(image.height, active.height),
            halfExcess(active.width, image.height, active.height, image.width), 0};
  }
  return {quotient(image.width, active.width), 0,
          halfExcess(active.height, image.width, active.width, image.height)};
}

int32_t mapped(int32_t value, float ratio, int64_t offset) {
  return toInt(static_cast<float>(value) * ratio - static_cast<float>(offset));
}

int32_t zoomed(int32_t value, int32_t size, float zoom) {
  const int32_t half = size / 2;  // whole pixels
  const auto centre = static_cast<float>(half);
  return toInt(centre + zoom * (static_cast<float>(value) - centre));
}

bool touchesImage(const __tagOrluRect& rect, _tagOrluSize image) {
  return rect.left <= image.width && rect.right >= 1 && rect.top <= image.height && rect.bottom >= 1;
}

}  // namespace

bool needsScaling(_tagOrluSize active, _tagOrluSize image, const RegionScale& scale) {
  if (image.width > active.width || image.height > active.height) return true;
  if (scale.remosaicType > 0) {
    return active.width == scale.fullSize.width && active.height == scale.fullSize.height;
  }
  // The crop's `top` and `bottom` hold its width and height.
  const int32_t cropWidth = scale.sensorCrop.top;
  const int32_t cropHeight = scale.sensorCrop.bottom;
  const bool isImageTheCrop = cropWidth != 0 && scale.remosaicType == 0 && !scale.sensorCrop.flag &&
                              cropWidth == image.width && cropHeight == image.height;
  return !isImageTheCrop;
}

__tagOrluRect mappedToImage(const __tagOrluRect& rect, _tagOrluSize active, _tagOrluSize image,
                            bool isScaled) {
  const Mapping mapping = mappingOf(active, image);
  const float ratio = isScaled ? mapping.ratio : 1.0F;
  return {mapped(rect.left, ratio, mapping.offsetX), mapped(rect.top, ratio, mapping.offsetY),
          mapped(rect.right, ratio, mapping.offsetX), mapped(rect.bottom, ratio, mapping.offsetY)};
}

__tagOrluRect zoomedAboutCentre(const __tagOrluRect& rect, _tagOrluSize image, float zoom) {
  return {zoomed(rect.left, image.width, zoom), zoomed(rect.top, image.height, zoom),
          zoomed(rect.right, image.width, zoom), zoomed(rect.bottom, image.height, zoom)};
}

void clampToImage(__tagOrluRect& rect, _tagOrluSize image) {
  if (rect.left < 0) rect.left = 0;
  if (rect.right > image.width) rect.right = image.width;
  if (rect.top < 0) rect.top = 0;
  if (rect.bottom > image.height) rect.bottom = image.height;
}

void emptyIfCrossed(__tagOrluRect& rect) {
  if (rect.right < rect.left) rect.left = rect.right = 0;
  if (rect.bottom < rect.top) rect.top = rect.bottom = 0;
}

int dropFacesOutside(_tagOrluFaceInfo& faces, _tagOrluSize image) {
  int dropped = 0;
  for (int i = 0; i < faces.count;) {
    if (touchesImage(faces.rects[i], image)) {
      ++i;
      continue;
    }
    ++dropped;
    --faces.count;
    if (faces.count > i) faces.rects[i] = faces.rects[faces.count];
  }
  return dropped;
}

}  // namespace orlu
