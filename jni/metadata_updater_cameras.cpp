// The camera that took the shot, and the cameras that a multi-camera algorithm works on.

#include <algorithm>
#include <cstring>

#include "camera_role.h"
#include "metadata_updater_steps.h"

namespace orlu {
namespace {

// Calls `nameOf` with the bokeh session. Returns the name, or the tag's value if the name is empty. A string
// that fills the field is not terminated. The log line names `operation`.
template <typename Field>
Field readBokehText(const Shot& shot, const char* operation, std::string_view (*nameOf)(int32_t),
                    const char* tag) {
  int32_t session = 0;
  const int status = shot.read("com.orlu.MultiCameraBokehSelectSessionId", session);
  LOGD_AS(operation, "multiCameraBokehSelectSessionId %d ret %d", session, status);
  const std::string_view name = nameOf(session);
  if (name.empty()) return shot.readOr<Field>(tag);
  Field field;
  std::copy_n(name.begin(), std::min(name.size(), sizeof field.data), field.data);
  return field;
}

}  // namespace

// Part of updateCommonTags().
void MetadataUpdater::updateCameraType() {
  const auto type = readBokehText<Bytes<16>>(mShot, "updateCommonTags", bokehCameraType,
                                             "com.orlu.chi.override.CameraType");
  mShot.write<Bytes<16>>(kSensor, "camera_type", type);
}

void MetadataUpdater::updateFromCameraCharacteristics() {
  mShot.keep(mCameraFacing, "android.lens.facing", kSensor, "camera_facing");
  mShot.keep(mBayerFilter, "android.sensor.info.colorFilterArrangement", kSensor, "bayer_filter");
  mShot.write<int32_t>(kSensor, "remosaic_type", mShot.remosaicType());
}

void MetadataUpdater::updateSat() {
  mShot.copy<int32_t>("orlu.parameter.masterSatRole", kSensor, "camera_sat_role");
}

void MetadataUpdater::updateEngine() {
  const auto composition = readBokehText<Chars<65>>(mShot, __func__, bokehCameraComposition,
                                                    "com.orlu.chi.override.CameraComposition");
  mShot.write<Chars<65>>(kSensor, "camera_composition", composition);
}

// Reads back values that earlier steps wrote, because no member holds them.
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
