#include "camera_role.h"

namespace orlu {
namespace {

const std::map<float, SATCameraRoleType> gSatCameraRoles = {
    {0.6F, kSatRoleWide    },
    {1.0F, kSatRoleMain    },
    {2.0F, kSatRoleTele    },
    {2.5F, kSatRoleTele2_5x},
    {5.0F, kSatRoleTele5x  },
};

bool isMainCamera(std::string_view type, int32_t satRole) {
  return type == "Master" || type == "BokehMoon" || type == "Bokeh" ||
         (type == "SAT" && satRole == kSatRoleMain);
}

// Returns the number of the bit in "vaf_camera_role" for a camera that isn't a main camera. Cameras without
// their own bit, such as the one for zoom ratio 5.0, get bit 0.
int roleBit(std::string_view type, int32_t satRole) {
  const bool isSat = type == "SAT";
  if (type == "Tele" || type == "Tele2.5X" ||
      (isSat && (satRole == kSatRoleTele || satRole == kSatRoleTele2_5x))) {
    return 3;
  }
  return type == "Wide" || (isSat && satRole == kSatRoleWide) ? 2 : 0;
}

}  // namespace

const std::map<float, SATCameraRoleType>& satCameraRoles() {
  return gSatCameraRoles;
}

int32_t vafCameraRole(std::string_view type, int32_t satRole, int32_t facing) {
  const int32_t front = facing == kFrontFacing ? 1 : 0;
  return front + (isMainCamera(type, satRole) ? 0 : 1 << roleBit(type, satRole));
}

std::string_view bokehCameraType(int32_t session) {
  switch (session) {
    case 5:
      return "BokehMoon";
    case 4:
      return "BokehTele2";
    case 3:
      return "Bokeh";
    default:
      return {};
  }
}

std::string_view bokehCameraComposition(int32_t session) {
  switch (session) {
    case 4:
      return "BokehTele2_Tele_Wide";
    case 3:
      return "Bokeh_Wide_UltraWide";
    default:
      return {};
  }
}

}  // namespace orlu
