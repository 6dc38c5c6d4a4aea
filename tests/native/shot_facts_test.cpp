// Tests the functions that compute a shot's camera role, fusion frames and simulated aperture.

#include <gtest/gtest.h>

#include "camera_role.h"
#include "exif_facts.h"
#include "fusion_frames.h"

namespace orlu {
namespace {

TEST(CameraRoleTest, KnowsTheCameraOfEachZoomRatio) {
  // clang-format off
  const std::map<float, int> expected = {{0.6F, 1}, {1.0F, 2}, {2.0F, 3}, {2.5F, 6}, {5.0F, 5}};
  // clang-format on
  EXPECT_EQ(expected, (std::map<float, int>(satCameraRoles().begin(), satCameraRoles().end())));
}

TEST(CameraRoleTest, IsABitForEachKindOfCamera) {
  const struct {
    const char* type;
    int satRole;
    int role;
  } cases[] = {
      {"Master",     1, 0},
      {"Master",     2, 0},
      {"Master2",    2, 1},
      {"Maste",      2, 1},
      {"Bokeh",      1, 0},
      {"BokehMoon",  2, 0},
      {"BokehTele2", 3, 1},
      {"SAT",        2, 0},
      {"SAT",        1, 4},
      {"SAT",        3, 8},
      {"SAT",        6, 8},
      {"SAT",        5, 1},
      {"SAT",        4, 1},
      {"SAT",        0, 1},
      {"SAT2",       2, 1},
      {"Wide",       2, 4},
      {"Wide",       3, 4},
      {"WideAngle",  1, 1},
      {"Tele",       2, 8},
      {"Tele",       1, 8},
      {"Tele2.5X",   2, 8},
      {"Tele5X",     2, 1},
      {"Other",      2, 1},
      {"",           2, 1},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.role, vafCameraRole(c.type, c.satRole, 1)) << c.type << ' ' << c.satRole;
    EXPECT_EQ(c.role + 1, vafCameraRole(c.type, c.satRole, 0)) << c.type << ' ' << c.satRole;
  }
}

TEST(FusionFramesTest, SwitchingSystemsWinOverBokeh) {
  const struct {
    FusionShot shot;  // isSatFusion, isDualBokeh, isHdr, isPixelShift, baseFrame, frameNum
    FusionFrames frames;
  } cases[] = {
      {{false, true, false, false, 2, 5},  {0, 1}},
      {{false, true, true, false, 2, 5},   {2, 3}},
      {{true, true, true, false, 2, 5},    {2, 4}},
      {{true, false, false, true, 2, 5},   {0, 4}},
      {{true, false, false, false, -1, 2}, {0, 1}},
  };
  for (const auto& c : cases) EXPECT_EQ(c.frames, fusionFramesOf(c.shot));
}

TEST(ExifFactsTest, BokehAndFNumbersSimulateTheAperture) {
  EXPECT_TRUE(isApertureSimulated(true, false, 0));
  EXPECT_TRUE(isApertureSimulated(true, true, -1));
  EXPECT_TRUE(isApertureSimulated(false, true, 0));
  EXPECT_FALSE(isApertureSimulated(false, true, -1));
  EXPECT_FALSE(isApertureSimulated(false, false, 0));
  EXPECT_EQ(-0.01F, simulatedAperture(-1));
}

}  // namespace
}  // namespace orlu
