// What the JPEG encoder writes beside the picture: EXIF facts and refocus packing facts.

#include "log.h"
#include "metadata_updater_rows.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-MetadataUpdater";
constexpr char kOperation[] = "updateJpegEncode";  // named by the lines of its parts

void logExif(const ExifInfo& exif, int32_t fNumber) {
  LOGD_AS(
      kOperation,
      "exif expo %lld iso %d aperture %f sensi %d focal %f focal %f flash %d awb %d scene %d ae %d aeCom %d "
      "timestamp %lld location alt %f lati %f long %f time %lld gotalt %d aeCompensationStep %d %d dofLevel "
      "%d",
      static_cast<long long>(exif.exposureTime), exif.iso, static_cast<double>(exif.aperture),
      exif.sensitivity, static_cast<double>(exif.focalLengthIn35mm), static_cast<double>(exif.focalLength),
      exif.flashMode, exif.awbMode, exif.sceneMode, exif.aeMode, exif.aeExposureCompensation,
      static_cast<long long>(exif.sensorTimestamp), exif.location.altitude, exif.location.latitude,
      exif.location.longitude, static_cast<long long>(exif.location.timestamp), exif.location.hasAltitude,
      exif.aeCompensationStepNumerator, exif.aeCompensationStepDenominator, fNumber);
}

}  // namespace

void MetadataUpdater::updateJpegEncode() {
  RefocusPackParams refocus;
  const bool hasFNumber = read(refocus.fNumber, "orlu.refocus.fnumber") == 0;
  read(refocus.pointRatioX, "orlu.refocus.pointRatioX");
  read(refocus.pointRatioY, "orlu.refocus.pointRatioY");
  read(refocus.filmSize, "orlu.control.filmSize");
  const ExifInfo exif = readExif(refocus.fNumber, hasFNumber);
  const int32_t scene = readSceneType();
  logExif(exif, refocus.fNumber);
  write(kFeedback, "scene_type", scene);
  write(kParameter, "refocus_jpegpack_params", refocus);
  write(kParameter, "exif_info_for_write", exif);
}

ExifInfo MetadataUpdater::readExif(int32_t fNumber, bool hasFNumber) {
  ExifInfo exif;
  read(exif.exposureTime, "android.sensor.exposureTime");
  exif.hasIso = read(exif.iso, "orlu.feedback.ISOGain") == 0;
  exif.aperture = readAperture(fNumber, hasFNumber);
  read(exif.sensitivity, "android.sensor.sensitivity");
  exif.uiZoomRatio = mUiZoomRatio;
  exif.hasFocalLengthIn35mm = read(exif.focalLengthIn35mm, "orlu.feedback.focalLengthIn35mm") == 0;
  read(exif.focalLength, "android.lens.focalLength");
  read(exif.flashMode, "android.flash.mode");
  exif.hasFlashState = read(exif.flashState, "android.flash.state") == 0;
  read(exif.awbMode, "android.control.awbMode");
  read(exif.sceneMode, "android.control.sceneMode");
  read(exif.aeMode, "android.control.aeMode");
  read(exif.aeExposureCompensation, "android.control.aeExposureCompensation");
  exif.filterType = mFilterType;
  exif.filterIntensity = mFilterIntensity;
  exif.filterMask = mFilterMask;
  exif.aeCompensationStepNumerator = 1;
  exif.aeCompensationStepDenominator = 10;
  read(exif.sensorTimestamp, "android.sensor.timestamp");
  // Only a document pack tells where it was shot; every other picture deliberately does not.
  if (readOr<int32_t>(0, "orlu.control.document.pack", firstFrame()) != 0) {
    exif.hasLocation = read(exif.location, "android.jpeg.gpsLocation") == 0;
  }
  return exif;
}

// A simulated aperture, when there is one, wins over the lens's.
float MetadataUpdater::readAperture(int32_t fNumber, bool hasFNumber) {
  if (listHas("dualBokeh") || (hasFNumber && fNumber >= 0)) return static_cast<float>(fNumber) / 100.0F;
  return readOr<float>(0, "android.lens.aperture", firstFrame());
}

// The first of three tags that is there.
int32_t MetadataUpdater::readSceneType() {
  int32_t scene = 0;
  if (read(scene, "com.orlu.node.preview.sceneMode") != 0 &&
      read(scene, "orlu.node.preview.sceneMode") != 0) {
    read(scene, "orlu.control.sceneMode");
  }
  return scene;
}

}  // namespace orlu
