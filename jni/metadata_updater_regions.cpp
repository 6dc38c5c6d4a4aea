// Rectangles in the sensor's active array become rectangles in the input image, which is smaller, may have
// another aspect ratio and may be a digitally zoomed view. Floats are 32 bits wide throughout; sizes are
// pixels.

#include "log.h"
#include "metadata_updater_rows.h"

namespace orlu {

// One of the two metering regions and its texts.
struct MetadataUpdater::Metering {
  const char* step;
  const char* tag;
  const char* label;
  const char* unscaled;
};

namespace {

constexpr char kLogTag[] = "_V_VASJNI-MetadataUpdater";

// From active array to image: value * ratio - offset, on each axis.
struct Mapping {
  float ratio;
  int64_t offsetX;
  int64_t offsetY;
};

// What sticks out on one axis when the other one fits, halved. The product comes before the division.
int64_t halfExcess(int32_t active, int32_t imageOther, int32_t activeOther, int32_t image) {
  return (int64_t{active} * imageOther / activeOther - image) / 2;
}

float quotient(int32_t a, int32_t b) {
  return static_cast<float>(a) / static_cast<float>(b);
}

// `active` has no zero side.
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
  const auto centre = static_cast<float>(size / 2);
  return toInt(centre + zoom * (static_cast<float>(value) - centre));
}

__tagOrluRect zoomedAboutCentre(const __tagOrluRect& rect, _tagOrluSize image, float zoom) {
  return {zoomed(rect.left, image.width, zoom), zoomed(rect.top, image.height, zoom),
          zoomed(rect.right, image.width, zoom), zoomed(rect.bottom, image.height, zoom)};
}

// Left and top against the one border, right and bottom against the other. They may end up crossed.
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

bool touchesImage(const __tagOrluRect& rect, _tagOrluSize image) {
  return rect.left <= image.width && rect.right >= 1 && rect.top <= image.height && rect.bottom >= 1;
}

bool hasZeroSide(_tagOrluSize size) {
  return size.width == 0 || size.height == 0;
}

// Fills the place of each face outside the image with the last one. Orientations are all equal and stay.
void dropFacesOutside(_tagOrluFaceInfo& face, _tagOrluSize image, _tagOrluSize active) {
  for (int i = 0; i < face.count;) {
    if (touchesImage(face.rects[i], image)) {
      ++i;
      continue;
    }
    LOGD_AS("convertFace",
            "shotFace faceinfo out of range! face_num - 1, frame.size(%d,%d), activeSize=(%d,%d)",
            image.width, image.height, active.width, active.height);
    --face.count;
    if (face.count > i) face.rects[i] = face.rects[face.count];
  }
}

}  // namespace

// The active array's width and height, zero where the camera doesn't tell.
_tagOrluSize MetadataUpdater::readActiveSize() {
  const auto active = readOr(__tagOrluRect(), "android.sensor.info.activeArraySize", firstFrame());
  return {active.right, active.bottom};
}

// Whether rectangles have to be scaled to the image. They have not when the caller gave image coordinates.
bool MetadataUpdater::needRemapRegion(_tagOrluSize activeSize, int width, int height) {
  const auto remosaic = readOr<int32_t>(0, "com.orlu.RemosaicType", firstFrame());
  const auto crop = readOr(SCR_Type(), "orlu.feedback.SensorCropRegions", firstFrame());
  const auto sizes = readOr(Ints<2>(), "com.orlu.image_sizes", firstFrame());
  if (width > activeSize.width || height > activeSize.height) return true;
  if (remosaic > 0) return activeSize.width == sizes[0] && activeSize.height == sizes[1];
  // By position the crop's third and fourth values are its width and height.
  const int32_t cropWidth = crop.top;
  const int32_t cropHeight = crop.bottom;
  const bool isCropped =
      cropWidth != 0 && remosaic == 0 && !crop.flag && cropWidth == width && cropHeight == height;
  return !isCropped;
}

// `unscaled` is logged when the rectangle keeps its scale; the offsets apply all the same, deliberately.
__tagOrluRect MetadataUpdater::mapToImage(const __tagOrluRect& rect, _tagOrluSize active, _tagOrluSize image,
                                          const char* operation, const char* unscaled) {
  Mapping mapping = mappingOf(active, image);
  if (!needRemapRegion(active, image.width, image.height)) {
    mapping.ratio = 1.0F;
    LOGD_AS(operation, "%s", unscaled);
  }
  return {mapped(rect.left, mapping.ratio, mapping.offsetX), mapped(rect.top, mapping.ratio, mapping.offsetY),
          mapped(rect.right, mapping.ratio, mapping.offsetX),
          mapped(rect.bottom, mapping.ratio, mapping.offsetY)};
}

void MetadataUpdater::convertFace(_tagOrluFaceInfo& face, int width, int height, bool skipZoom) {
  if (width < 1 || height < 1) return;
  const _tagOrluSize image = {width, height};
  const _tagOrluSize active = readActiveSize();
  // The remainder keeps the sign of the angle.
  const int32_t orientation = readOr<int32_t>(0, "android.jpeg.orientation", firstFrame()) % 360;
  const auto zoom = readOr<float>(0, "android.control.zoomRatio", firstFrame());
  if (hasZeroSide(active) || face.count < 1) return;

  const bool isZoomed = zoom > 1.0F && !skipZoom && !listHas("rawhdr");
  const __tagOrluRect orig = face.rects[0];
  for (int k = 0; k < face.count; ++k) {
    __tagOrluRect& rect = face.rects[k];
    rect = mapToImage(rect, active, image, __func__, "shotFace call from app set ratio to 1.0");
    face.orientations[k] = orientation;
    LOGD("shotFace.rects[%d] rect(l=%d, t=%d, r=%d, b=%d)", k, rect.left, rect.top, rect.right, rect.bottom);
    if (isZoomed) rect = zoomedAboutCentre(rect, image, zoom);
    logConversion(__func__, "shotFace", active, image, orig, face.rects[0], zoom);
    clampToImage(rect, image);
  }
  dropFacesOutside(face, image, active);
}

void MetadataUpdater::setVAFAfRegionShot(__tagOrluRect& region) {
  convertMetering(region, {"setVAFAfRegionShot", "android.control.afRegions", "shotAF",
                           "shotafRegion call from app set ratio to 1.0"});
}

void MetadataUpdater::setVAFAeRegion(__tagOrluRect& region) {
  convertMetering(region, {"setVAFAeRegion", "android.control.aeRegions", "shotAE",
                           "shotAERegion call from app set ratio to 1.0"});
}

void MetadataUpdater::convertMetering(__tagOrluRect& region, const Metering& metering) {
  const AlgoFrameInfo* const input = firstInput();
  if (input == nullptr) {
    LOGE_AS(metering.step, "%s failed, image size 0", metering.step);
    return;
  }
  const _tagOrluSize image = {input->width, input->height};
  const _tagOrluSize active = readActiveSize();
  int32_t weight = 0;  // not used here
  const __tagOrluRect orig = readMetering(weight, metering.tag);
  const auto zoom = readOr<float>(0, "android.control.zoomRatio", firstFrame());
  if (hasZeroSide(active)) return;

  region = mapToImage(orig, active, image, metering.step, metering.unscaled);
  // Without zoom nothing is clamped, unlike faces; kept so.
  if (zoom > 1.0F) {
    region = zoomedAboutCentre(region, image, zoom);
    clampToImage(region, image);
    emptyIfCrossed(region);
  }
  logConversion(metering.step, metering.label, active, image, orig, region, zoom);
}

// The first region under the tag, in the active array's coordinates; zero when there is none.
__tagOrluRect MetadataUpdater::readMetering(int32_t& weight, const char* tag) {
  __tagOrluRect region;
  const Frame first = firstFrame();
  mParser->getMeteringRectangle(region, weight, tag, first.captureResult, first.composition);
  return region;
}

void MetadataUpdater::logConversion(const char* operation, const char* label, _tagOrluSize active,
                                    _tagOrluSize image, const __tagOrluRect& orig,
                                    const __tagOrluRect& converted, float zoom) {
  LOGD_AS(
      operation,
      "check vaf size %s[%d, %d] activesize[%d, %d] orig[%d, %d, %d, %d] shotaf[%d, %d, %d, %d] zoomratio %f",
      label, image.width, image.height, active.width, active.height, orig.left, orig.top, orig.right,
      orig.bottom, converted.left, converted.top, converted.right, converted.bottom,
      static_cast<double>(zoom));
}

void MetadataUpdater::updateZoom() {
  const Aec aec = readOr(Aec(), kAecTag, firstFrame());
  write(kSystem, "adrc_gain", aec[kAecAdrcGain]);
  LOGD("zoom adrcGain %f", static_cast<double>(aec[kAecAdrcGain]));
}

}  // namespace orlu
