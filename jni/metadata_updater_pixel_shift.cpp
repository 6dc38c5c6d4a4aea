// A raw pixel-shift shot: packing, zoom, crop, and the platform's colour and tone tables.

#include <algorithm>

#include "metadata_updater_steps.h"

namespace orlu {
namespace {

constexpr char kOperation[] = "updatePixelShift";  // operation in the log lines of the helpers

constexpr size_t kMatrixSize = 9;
using AlgorithmMatrix = Floats<kMatrixSize>;
// The numerator and denominator of each rational.
using PlatformMatrix = Ints<2 * kMatrixSize>;

// Element i of the algorithm's matrix is rational kMatrixOrder[i] of the platform's matrix (Oddity 37).
constexpr size_t kMatrixOrder[kMatrixSize] = {8, 6, 7, 2, 0, 1, 5, 3, 4};

using GammaTable = Ints<65>;
using ToneTable = Longs<64>;

bool isEmpty(const PlatformMatrix& matrix) {
  for (size_t k = 0; k < kMatrixSize; ++k) {
    if (matrix[2 * k] != 0) return false;
  }
  return true;
}

// Converts the platform's matrix to the algorithm's order. A zero denominator yields infinity or NaN, as in
// any float division.
AlgorithmMatrix reordered(const PlatformMatrix& matrix) {
  AlgorithmMatrix result = {};
  for (size_t i = 0; i < kMatrixSize; ++i) {
    const size_t k = kMatrixOrder[i];
    result[i] = static_cast<float>(matrix[2 * k]) / static_cast<float>(matrix[2 * k + 1]);
  }
  return result;
}

// Returns the identity if the platform's matrix is absent or all its numerators are zero.
AlgorithmMatrix readColourMatrix(const Shot& shot) {
  const auto matrix = shot.readOr<PlatformMatrix>(shot.first().captureResultOnly(), "orlu.feedback.ccm");
  if (!isEmpty(matrix)) return reordered(matrix);
  LOGD_AS(kOperation, "pixelshift ccmMatrix is empty use default value");
  return {1, 0, 0, 0, 1, 0, 0, 0, 1};
}

void logTables(const AlgorithmMatrix& ccm, const Ints<4>& crop, const GammaTable& gamma,
               const ToneTable& gtm) {
  const auto c = [&ccm](size_t i) { return static_cast<double>(ccm[i]); };
  const auto g = [&gtm](size_t i) { return static_cast<int>(gtm[i]); };
  LOGD_AS(kOperation, "pixelshift algonative:ccmMatrix=(%f,%f,%f,%f,%f,%f,%f,%f,%f)", c(0), c(1), c(2), c(3),
          c(4), c(5), c(6), c(7), c(8));
  LOGD_AS(kOperation, "pixelshift algonative:satCropRegions=(%d,%d,%d,%d)", crop[0], crop[1], crop[2],
          crop[3]);
  // The algorithm has no separate Bayer crop: it crops to satCropRegions, so both lines log the same values.
  LOGD_AS(kOperation, "pixelshift algonative:bayercrop=(%d,%d,%d,%d)", crop[0], crop[1], crop[2], crop[3]);
  LOGD_AS(kOperation, "pixelshift algonative:gamma=(%d,%d,%d,%d,%d,%d,%d,%d,%d,%d)", gamma[0], gamma[1],
          gamma[2], gamma[3], gamma[4], gamma[5], gamma[6], gamma[7], gamma[8], gamma[9]);
  LOGD_AS(kOperation, "pixelshift algonative:gtm=(%d,%d,%d,%d,%d,%d,%d,%d,%d,%d)", g(0), g(1), g(2), g(3),
          g(4), g(5), g(6), g(7), g(8), g(9));
}

}  // namespace

void MetadataUpdater::updatePixelShift() {
  writeRawPacking(mShot);
  mShot.write<int32_t>(kParameter, "raw_bayer_filter", mBayerFilter);
  const auto zoom = mShot.copy<float>("orlu.parameter.digitalzoom", kZoom, "digital_zoom_ratio");
  const auto satRole = mShot.copy<int32_t>("orlu.parameter.masterSatRole", kSensor, "camera_sat_role");
  // Index of the camera's base frame, clamped to the list of frames.
  const int base = std::min(std::max(mBasicFrameIndex, 0), mCaptureResultNum - 1);
  const Ints<4> crop = readSatCropRegions(mShot, mShot.frames().at(base));
  mShot.write<Ints<4>>(kZoom, "sat_crop_regions", crop);
  const AlgorithmMatrix ccm = readColourMatrix(mShot);
  mShot.write<AlgorithmMatrix>(kParameter, "ccm_matrix", ccm);
  const auto gamma = mShot.copy<GammaTable>("orlu.feedback.gamma", kParameter, "gamma_table");
  // Reads only the capture result (Oddity 52).
  const auto gtm = mShot.copy<ToneTable>(mShot.first().captureResultOnly(), "orlu.feedback.gtmPackedData",
                                         kParameter, "gtm_table");
  logTables(ccm, crop, gamma, gtm);
  LOGD("pixelshift algonative:digitalzoomratio=%f,cameraSatRole=%d", static_cast<double>(zoom), satRole);
  mShot.keep(mUiZoomRatio, "orlu.control.zoom_ratio", kZoom, "ui_zoom_ratio");
}

}  // namespace orlu
