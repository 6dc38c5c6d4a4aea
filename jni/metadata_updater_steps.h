// What the steps of the metadata updater share. For its own files alone.
#pragma once

#include "exposure.h"
#include "log.h"
#include "metadata_updater.h"

namespace orlu {

constexpr char kLogTag[] = "_V_VASJNI-MetadataUpdater";
// The tag of the few lines that are written whatever the log level.
constexpr char kShortLogTag[] = "VASJNI-MetadataUpdater";

constexpr char kFrameModeTag[] = "orlu.control.currentModeEx";

// The faces of a frame in the active array's coordinates. Their count is the tag's, also past the table
// (Oddity 11).
_tagOrluFaceInfo readFaces(const Shot& shot, const Frame& frame);
// Width and height of the active array, zero where the camera does not say.
_tagOrluSize readActiveSize(const Shot& shot);
// Left, top, width and height of what a switching multi-camera system crops.
Ints<4> readSatCropRegions(const Shot& shot, const Frame& frame);
// The first of three tags that is there, or 0.
int32_t readSceneType(const Shot& shot);
// Ten keys of a frame's exposure control.
void writeExposureControl(Shot& shot, const Aec& aec);
// Gains and exposure times in milliseconds of HDR frames, zero in the slots without one.
struct HdrExposures {
  Floats<kHdrSlots> gains = {};
  Floats<kHdrSlots> shutters = {};

  void set(size_t slot, const Aec& aec) {
    gains[slot] = aec[kAecRealGain];
    shutters[slot] = milliseconds(aec);
  }
};
void writeHdrExposures(Shot& shot, const HdrExposures& exposures);
// How raw pixels are packed.
void writeRawPacking(Shot& shot);

}  // namespace orlu
