// A raw pixel-shift shot: packing, zoom, crop, and the platform's colour and tone tables.

#include <algorithm>

#include "log.h"
#include "metadata_updater_rows.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-MetadataUpdater";
constexpr char kOperation[] = "updatePixelShift";  // named by the lines of its parts

constexpr size_t kMatrixSize = 9;

// Numerator and denominator of each rational.
using PlatformMatrix = Ints<2 * kMatrixSize>;

// Which of the platform's rationals each element of the algorithm's matrix is.
constexpr size_t kMatrixOrder[kMatrixSize] = {8, 6, 7, 2, 0, 1, 5, 3, 4};

bool isEmpty(const PlatformMatrix& matrix) {
  for (size_t k = 0; k < kMatrixSize; ++k) {
    if (matrix[2 * k] != 0) return false;
  }
  return true;
}

// A zero denominator gives what the float division gives, infinity or not a number.
Floats<kMatrixSize> reordered(const PlatformMatrix& matrix) {
  Floats<kMatrixSize> result = {};
  for (size_t i = 0; i < kMatrixSize; ++i) {
    const size_t k = kMatrixOrder[i];
    result[i] = static_cast<float>(matrix[2 * k]) / static_cast<float>(matrix[2 * k + 1]);
  }
  return result;
}

}  // namespace

void MetadataUpdater::updatePixelShift() {
  writeRawPacking();
  // clang-format off
  write(kParameter, "raw_bayer_filter", mBayerFilter);
  const auto zoom    = copy<float>  ("orlu.parameter.digitalzoom",   kZoom,   "digital_zoom_ratio");
  const auto satRole = copy<int32_t>("orlu.parameter.masterSatRole", kSensor, "camera_sat_role");
  const Ints<4> crop = readSatCropRegions(baseFrame());
  write(kZoom,      "sat_crop_regions", crop);
  const Floats<kMatrixSize> ccm = readColourMatrix();
  write(kParameter, "ccm_matrix",       ccm);
  const auto gamma = copy<Ints<65>> (                          "orlu.feedback.gamma",         kParameter, "gamma_table");
  const auto gtm   = copy<Longs<64>>(firstCaptureResultOnly(), "orlu.feedback.gtmPackedData", kParameter, "gtm_table");
  // clang-format on
  logPixelShift(ccm, crop, gamma.data(), gtm.data(), zoom, satRole);
  keep(mUiZoomRatio, "orlu.control.zoom_ratio", kZoom, "ui_zoom_ratio");
}

// The frame that the camera chose as base; past the list the last one.
Frame MetadataUpdater::baseFrame() const {
  return frameAt(std::min(std::max(mBasicFrameIndex, 0), mCaptureResultNum - 1));
}

// Row by row as the algorithm takes it; the identity when the platform reported none.
std::array<float, 9> MetadataUpdater::readColourMatrix() {
  const auto matrix = readOr(PlatformMatrix(), "orlu.feedback.ccm", firstCaptureResultOnly());
  if (!isEmpty(matrix)) return reordered(matrix);
  LOGD_AS(kOperation, "pixelshift ccmMatrix is empty use default value");
  return {1, 0, 0, 0, 1, 0, 0, 0, 1};
}

void MetadataUpdater::logPixelShift(const std::array<float, 9>& ccm, const std::array<int32_t, 4>& crop,
                                    const int32_t* gamma, const int64_t* gtm, float zoom, int32_t satRole) {
  const auto c = [&ccm](size_t i) { return static_cast<double>(ccm[i]); };
  const auto g = [gtm](size_t i) { return static_cast<int>(gtm[i]); };
  LOGD_AS(kOperation, "pixelshift algonative:ccmMatrix=(%f,%f,%f,%f,%f,%f,%f,%f,%f)", c(0), c(1), c(2), c(3),
          c(4), c(5), c(6), c(7), c(8));
  LOGD_AS(kOperation, "pixelshift algonative:satCropRegions=(%d,%d,%d,%d)", crop[0], crop[1], crop[2],
          crop[3]);
  // The algorithm has no crop of its own for the Bayer pattern: what it crops is the region above.
  LOGD_AS(kOperation, "pixelshift algonative:bayercrop=(%d,%d,%d,%d)", crop[0], crop[1], crop[2], crop[3]);
  LOGD_AS(kOperation, "pixelshift algonative:gamma=(%d,%d,%d,%d,%d,%d,%d,%d,%d,%d)", gamma[0], gamma[1],
          gamma[2], gamma[3], gamma[4], gamma[5], gamma[6], gamma[7], gamma[8], gamma[9]);
  LOGD_AS(kOperation, "pixelshift algonative:gtm=(%d,%d,%d,%d,%d,%d,%d,%d,%d,%d)", g(0), g(1), g(2), g(3),
          g(4), g(5), g(6), g(7), g(8), g(9));
  LOGD_AS(kOperation, "pixelshift algonative:digitalzoomratio=%f,cameraSatRole=%d", static_cast<double>(zoom),
          satRole);
}

}  // namespace orlu
