// Which camera took the shot, and which cameras a multi-camera algorithm works on.

#include <algorithm>
#include <cstring>

#include "camera_role.h"
#include "metadata_updater_steps.h"

namespace orlu {

void MetadataUpdater::updateFromCameraCharacteristics() {
  mShot.keep(mCameraFacing, "android.lens.facing", kSensor, "camera_facing");
  mShot.keep(mBayerFilter, "android.sensor.info.colorFilterArrangement", kSensor, "bayer_filter");
  mShot.copy<int32_t>("com.orlu.RemosaicType", kSensor, "remosaic_type");
}

void MetadataUpdater::updateSat() {
  mShot.copy<int32_t>("orlu.parameter.masterSatRole", kSensor, "camera_sat_role");
}

void MetadataUpdater::updateEngine() {
  int32_t session = 0;
  const int status = mShot.read("com.orlu.MultiCameraBokehSelectSessionId", session);
  LOGD("multiCameraBokehSelectSessionId %d ret %d", session, status);
  Chars<65> composition;
  const std::string_view name = bokehCameraComposition(session);
  if (name.empty()) {
    mShot.read("com.orlu.chi.override.CameraComposition", composition);
  } else {
    std::copy(name.begin(), name.end(), composition.data);
  }
  mShot.write<Chars<65>>(kSensor, "camera_composition", composition);
}

// From what the steps before wrote, since "camera_type" has no member.
void MetadataUpdater::convertMetadata() {
  const auto satRole = mShot.readBack<int32_t>(kSensor, "camera_sat_role");
  const auto type = mShot.readBack<Chars<16>>(kSensor, "camera_type");
  const std::string_view name(type.data, strnlen(type.data, sizeof type.data));
  const int32_t role = vafCameraRole(name, satRole, mCameraFacing);
  mShot.write<int32_t>(kParameter, "vaf_camera_role", role);
  LOGD("CHECKXX SAT camera_type %.*s, cameraSatRole %d, vaf_camera_role %d", static_cast<int>(name.size()),
       name.data(), satRole, role);
}

}  // namespace orlu
