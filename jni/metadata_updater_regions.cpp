// Maps faces and metering regions from the sensor's active array to the input image.

#include "metadata_updater_steps.h"
#include "region_mapper.h"

namespace orlu {

// The log texts of one of the two metering regions.
struct MetadataUpdater::MeteringTexts {
  const char* operation;  // shown in the log lines
  const char* label;
  const char* unscaled;
};

namespace {

__tagOrluRect mapToImage(const __tagOrluRect& rect, _tagOrluSize active, _tagOrluSize image, bool isScaled,
                         const char* operation, const char* unscaled) {
  if (!isScaled) LOGD_AS(operation, "%s", unscaled);
  return mappedToImage(rect, active, image, isScaled);
}

void logConversion(const char* operation, const char* label, _tagOrluSize active, _tagOrluSize image,
                   const __tagOrluRect& orig, const __tagOrluRect& converted, float zoom) {
  LOGD_AS(operation,
          "check vaf size %s[%d, %d] activesize[%d, %d] orig[%d, %d, %d, %d] shotaf[%d, %d, %d, %d] "
          "zoomratio %f",
          label, image.width, image.height, active.width, active.height, orig.left, orig.top, orig.right,
          orig.bottom, converted.left, converted.top, converted.right, converted.bottom,
          static_cast<double>(zoom));
}

}  // namespace

bool MetadataUpdater::needRemapRegion(_tagOrluSize activeSize, int width, int height) {
  RegionScale scale;
  scale.remosaicType = mShot.remosaicType();
  scale.sensorCrop = mShot.sensorCrop();
  const Ints<2> fullSize = mShot.imageSizes();
  scale.fullSize = {fullSize[0], fullSize[1]};
  return needsScaling(activeSize, {width, height}, scale);
}

void MetadataUpdater::convertFace(_tagOrluFaceInfo& face, int width, int height, bool skipZoom) {
  if (width < 1 || height < 1) return;
  const _tagOrluSize image = {width, height};
  const _tagOrluSize active = readActiveSize(mShot);
  // The remainder keeps the sign of the angle.
  const int32_t orientation = mShot.readOr<int32_t>("android.jpeg.orientation") % 360;
  const float zoom = mShot.zoomRatio();
  if (hasZeroSide(active) || face.count < 1) return;

  const bool isZoomed = zoom > 1.0F && !skipZoom && !mShot.listHas("rawhdr");
  const __tagOrluRect orig = face.rects[0];
  for (int k = 0; k < face.count; ++k) {
    __tagOrluRect& rect = face.rects[k];
    const bool isScaled = needRemapRegion(active, width, height);
    rect = mapToImage(rect, active, image, isScaled, __func__, "shotFace call from app set ratio to 1.0");
    face.orientations[k] = orientation;
    LOGD("shotFace.rects[%d] rect(l=%d, t=%d, r=%d, b=%d)", k, rect.left, rect.top, rect.right, rect.bottom);
    if (isZoomed) rect = zoomedAboutCentre(rect, image, zoom);
    logConversion(__func__, "shotFace", active, image, orig, face.rects[0], zoom);
    clampToImage(rect, image);
  }
  for (int dropped = dropFacesOutside(face, image); dropped > 0; --dropped) {
    LOGD("shotFace faceinfo out of range! face_num - 1, frame.size(%d,%d), activeSize=(%d,%d)", width, height,
         active.width, active.height);
  }
}

void MetadataUpdater::convertMetering(__tagOrluRect& region, MeteringRegion (Shot::*read)() const,
                                      const MeteringTexts& texts) {
  const AlgoFrameInfo* const input = mShot.firstInput();
  if (input == nullptr) {
    LOGE_AS(texts.operation, "%s failed, image size 0", texts.operation);
    return;
  }
  const _tagOrluSize image = {input->width, input->height};
  const _tagOrluSize active = readActiveSize(mShot);
  const __tagOrluRect orig = (mShot.*read)().rect;
  const float zoom = mShot.zoomRatio();
  if (hasZeroSide(active)) return;

  const bool isScaled = needRemapRegion(active, image.width, image.height);
  region = mapToImage(orig, active, image, isScaled, texts.operation, texts.unscaled);
  // Regions are clamped only if they are zoomed; faces are always clamped (Oddity 27).
  if (zoom > 1.0F) {
    region = zoomedAboutCentre(region, image, zoom);
    clampToImage(region, image);
    emptyIfCrossed(region);
  }
  logConversion(texts.operation, texts.label, active, image, orig, region, zoom);
}

void MetadataUpdater::setVAFAfRegionShot(__tagOrluRect& region) {
  convertMetering(region, &Shot::focusRegion,
                  {__func__, "shotAF", "shotafRegion call from app set ratio to 1.0"});
}

void MetadataUpdater::setVAFAeRegion(__tagOrluRect& region) {
  convertMetering(region, &Shot::exposureRegion,
                  {__func__, "shotAE", "shotAERegion call from app set ratio to 1.0"});
}

}  // namespace orlu
