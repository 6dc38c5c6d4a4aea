// Which camera took a shot: names and roles of the cameras of a multi-camera system.
#pragma once

#include <cstdint>
#include <map>
#include <string_view>

namespace orlu {

// "camera_facing" of a camera beside the screen.
constexpr int32_t kFrontFacing = 0;

// Camera roles of a switching multi-camera system, by their numbers in "orlu.parameter.masterSatRole".
enum SATCameraRoleType : int32_t {
  kSatRoleWide = 1,
  kSatRoleMain = 2,
  kSatRoleTele = 3,
  kSatRoleTele5x = 5,
  kSatRoleTele2_5x = 6
};

// Which camera such a system uses from a zoom ratio on. Made when the library is loaded. No step reads it:
// the camera reports the role itself, in "orlu.parameter.masterSatRole".
const std::map<float, SATCameraRoleType>& satCameraRoles();

// "vaf_camera_role": 0 for a main camera, a bit for any other one, plus 1 for a front camera. `type` is the
// camera's name; a longer name that begins like a known one is not known.
int32_t vafCameraRole(std::string_view type, int32_t satRole, int32_t facing);

// What the session ids of "com.orlu.MultiCameraBokehSelectSessionId" mean: the camera's type, and the cameras
// of its composition. Empty for every other id, where the shot's own tags name them.
std::string_view bokehCameraType(int32_t session);
std::string_view bokehCameraComposition(int32_t session);

}  // namespace orlu
