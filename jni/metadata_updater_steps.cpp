#include "metadata_updater_steps.h"

namespace orlu {

// Reads the camera's own face list only if the combined list of a multi-camera system is missing.
_tagOrluFaceInfo readFaces(const Shot& shot, const Frame& frame) {
  IntFaces combined;
  if (shot.read(frame, "orlu.feedback.satFaceRect", combined) != 0) {
    shot.read(frame, "android.statistics.faces", combined.faces);
  }
  return combined.faces;
}

_tagOrluSize readActiveSize(const Shot& shot) {
  const __tagOrluRect active = shot.activeArray();
  return {active.right, active.bottom};
}

Ints<4> readSatCropRegions(const Shot& shot, const Frame& frame) {
  const auto rect = shot.readOr<__tagOrluRect>(frame, "orlu.parameter.crop_region_sat");
  return {rect.left, rect.top, extent(rect.left, rect.right), extent(rect.top, rect.bottom)};
}

int32_t readSceneType(const Shot& shot) {
  int32_t scene = 0;
  if (shot.read("com.orlu.node.preview.sceneMode", scene) != 0 &&
      shot.read("orlu.node.preview.sceneMode", scene) != 0) {
    shot.read("orlu.control.sceneMode", scene);
  }
  return scene;
}

void writeExposureControl(Shot& shot, const Aec& aec) {
  // clang-format off
  shot.write<float>(kSystem, "lux_index_shot",        aec[kAecLuxIndex]);
  shot.write<float>(kSystem, "exp_index",             aec[kAecExposureIndex]);
  shot.write<float>(kSystem, "flash_real_gain",       aec[kAecRealGain]);
  shot.write<float>(kSystem, "safe_gain",             aec[kAecSafeGain]);
  shot.write<float>(kSystem, "long_gain",             aec[kAecLongGain]);
  shot.write<float>(kSystem, "sensor_gain",           aec[kAecSensorGain]);
  shot.write<float>(kSystem, "adrc_gain",             aec[kAecAdrcGain]);
  shot.write<float>(kSystem, "dark_boost_gain",       aec[kAecDarkBoostGain]);
  shot.write<float>(kSystem, "isp_gain",              aec[kAecIspGain]);
  shot.write<float>(kSystem, "exp_sensitivity_ratio", longToShortSensitivity(aec));
  // clang-format on
}

void writeHdrExposures(Shot& shot, const HdrExposures& exposures) {
  shot.write<Floats<kHdrSlots>>(kParameter, "hdr_gains", exposures.gains);
  shot.write<Floats<kHdrSlots>>(kParameter, "hdr_shutters", exposures.shutters);
}

void writeRawPacking(Shot& shot) {
  shot.write<int32_t>(kParameter, "raw_packed_type", 2);
  if (shot.inputFormat() == kFormatMipiRaw10) shot.write<int32_t>(kParameter, "raw_bit_per_pixel", 10);
}

}  // namespace orlu
