// Names and roles of the cameras of a multi-camera system.
#pragma once

#include <cstdint>
#include <map>
#include <string_view>

namespace orlu {

// "camera_facing" of a camera on the screen side.
constexpr int32_t kFrontFacing = 0;

// Camera roles of a switching multi-camera system, as numbered in "orlu.parameter.masterSatRole".
enum SATCameraRoleType : int32_t {
  kSatRoleWide = 1,
  kSatRoleMain = 2,
  kSatRoleTele = 3,
  kSatRoleTele5x = 5,
  kSatRoleTele2_5x = 6
};

// Maps each camera's lowest zoom ratio to its role. Created when the library is loaded. The library never
// reads this map: the camera reports its role in "orlu.parameter.masterSatRole".
const std::map<float, SATCameraRoleType>& satCameraRoles();

// Returns "vaf_camera_role": 0 for a main camera, one bit for any other. A front camera adds 1 to either.
// `type` is the camera's name. A known name followed by more characters counts as unknown.
int32_t vafCameraRole(std::string_view type, int32_t satRole, int32_t facing);

// For a session id from "com.orlu.MultiCameraBokehSelectSessionId", bokehCameraType() returns the camera type
// (ids 3, 4 and 5), and bokehCameraComposition() the names of the combined cameras (ids 3 and 4). For other
// ids, they return "", and the caller reads the camera's tags instead.
std::string_view bokehCameraType(int32_t session);
std::string_view bokehCameraComposition(int32_t session);

}  // namespace orlu
