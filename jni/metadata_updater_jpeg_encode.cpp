// Facts that the JPEG encoder writes with the picture: EXIF and refocus data.

#include "exif_facts.h"
#include "metadata_updater_steps.h"

namespace orlu {
namespace {

float readAperture(const Shot& shot, int32_t fNumber, bool hasFNumber) {
  if (isApertureSimulated(shot.listHas("dualBokeh"), hasFNumber, fNumber)) return simulatedAperture(fNumber);
  return shot.readOr<float>("android.lens.aperture");
}

// Only document packs carry the location (Oddity 35).
void readLocation(const Shot& shot, ExifInfo& exif) {
  if (shot.readOr<int32_t>("orlu.control.document.pack") == 0) return;
  exif.hasLocation = shot.read("android.jpeg.gpsLocation", exif.location) == 0;
}

void logExif(const char* operation, const ExifInfo& exif, int32_t fNumber) {
  LOGD_AS(operation,
          "exif expo %lld iso %d aperture %f sensi %d focal %f focal %f flash %d awb %d scene %d ae %d aeCom "
          "%d timestamp %lld location alt %f lati %f long %f time %lld gotalt %d aeCompensationStep %d %d "
          "dofLevel %d",
          static_cast<long long>(exif.exposureTime), exif.iso, static_cast<double>(exif.aperture),
          exif.sensitivity, static_cast<double>(exif.focalLengthIn35mm),
          static_cast<double>(exif.focalLength), exif.flashMode, exif.awbMode, exif.sceneMode, exif.aeMode,
          exif.aeExposureCompensation, static_cast<long long>(exif.sensorTimestamp), exif.location.altitude,
          exif.location.latitude, exif.location.longitude, static_cast<long long>(exif.location.timestamp),
          exif.location.hasAltitude, exif.aeCompensationStepNumerator, exif.aeCompensationStepDenominator,
          fNumber);
}

}  // namespace

void MetadataUpdater::updateJpegEncode() {
  RefocusPackParams refocus;
  const bool hasFNumber = mShot.read("orlu.refocus.fnumber", refocus.fNumber) == 0;
  mShot.read("orlu.refocus.pointRatioX", refocus.pointRatioX);
  mShot.read("orlu.refocus.pointRatioY", refocus.pointRatioY);
  mShot.read("orlu.control.filmSize", refocus.filmSize);

  ExifInfo exif;
  mShot.read("android.sensor.exposureTime", exif.exposureTime);
  exif.hasIso = mShot.read("orlu.feedback.ISOGain", exif.iso) == 0;
  exif.aperture = readAperture(mShot, refocus.fNumber, hasFNumber);
  mShot.read("android.sensor.sensitivity", exif.sensitivity);
  exif.uiZoomRatio = mUiZoomRatio;
  exif.hasFocalLengthIn35mm = mShot.read("orlu.feedback.focalLengthIn35mm", exif.focalLengthIn35mm) == 0;
  mShot.read("android.lens.focalLength", exif.focalLength);
  mShot.read("android.flash.mode", exif.flashMode);
  exif.hasFlashState = mShot.read("android.flash.state", exif.flashState) == 0;
  mShot.read("android.control.awbMode", exif.awbMode);
  mShot.read("android.control.sceneMode", exif.sceneMode);
  mShot.read("android.control.aeMode", exif.aeMode);
  mShot.read("android.control.aeExposureCompensation", exif.aeExposureCompensation);
  exif.filterType = mFilterType;
  exif.filterIntensity = mFilterIntensity;
  exif.filterMask = mFilterMask;
  exif.aeCompensationStepNumerator = kAeCompensationStepNumerator;
  exif.aeCompensationStepDenominator = kAeCompensationStepDenominator;
  mShot.read("android.sensor.timestamp", exif.sensorTimestamp);
  readLocation(mShot, exif);

  const int32_t scene = readSceneType(mShot);
  logExif(__func__, exif, refocus.fNumber);
  mShot.write<int32_t>(kFeedback, "scene_type", scene);
  mShot.write<RefocusPackParams>(kParameter, "refocus_jpegpack_params", refocus);
  mShot.write<ExifInfo>(kParameter, "exif_info_for_write", exif);
}

}  // namespace orlu
