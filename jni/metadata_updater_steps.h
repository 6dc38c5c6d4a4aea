// Code shared by the steps of the metadata updater. Included only by the files of these steps.
#pragma once

#include "exposure.h"
#include "log.h"
#include "metadata_updater.h"

namespace orlu {

constexpr char kLogTag[] = "_V_VASJNI-MetadataUpdater";
// Log tag of the few lines that are written at every log level.
constexpr char kShortLogTag[] = "VASJNI-MetadataUpdater";

constexpr char kFrameModeTag[] = "orlu.control.currentModeEx";

// Reads a frame's faces in the active array's coordinates. The returned count is the number of faces in the
// tag, even if fewer fit into the record (Oddity 11).
_tagOrluFaceInfo readFaces(const Shot& shot, const Frame& frame);
// Returns the right and bottom edges of the active array as a size; zero if the camera does not report the
// active array.
_tagOrluSize readActiveSize(const Shot& shot);
// Reads the crop of a multi-camera system that switches cameras (SAT): left, top, width and height.
Ints<4> readSatCropRegions(const Shot& shot, const Frame& frame);
// Returns the scene type from the first of three tags that is present; 0 if all three are missing.
int32_t readSceneType(const Shot& shot);
// Writes ten keys of a frame's exposure control.
void writeExposureControl(Shot& shot, const Aec& aec);
// Gains and exposure times (in milliseconds) of HDR frames; zero in unused slots.
struct HdrExposures {
  Floats<kHdrSlots> gains = {};
  Floats<kHdrSlots> shutters = {};

  void set(size_t slot, const Aec& aec) {
    gains[slot] = aec[kAecRealGain];
    shutters[slot] = milliseconds(aec);
  }
};
void writeHdrExposures(Shot& shot, const HdrExposures& exposures);
void writeRawPacking(Shot& shot);

}  // namespace orlu
