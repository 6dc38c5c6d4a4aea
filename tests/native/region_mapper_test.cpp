#include "region_mapper.h"

#include <gtest/gtest.h>

#include <string>

namespace orlu {
namespace {

std::string textOf(const __tagOrluRect& rect) {
  return std::to_string(rect.left) + ' ' + std::to_string(rect.top) + ' ' + std::to_string(rect.right) + ' ' +
         std::to_string(rect.bottom);
}

TEST(RegionMapperTest, MapsToTheImage) {
  const struct {
    _tagOrluSize active;
    _tagOrluSize image;
    bool isScaled;
    __tagOrluRect rect;
    const char* mapped;
  } cases[] = {
      {{8000, 6000}, {4000, 3000}, true,  {800, 600, 1600, 1200}, "400 300 800 600"  },
      {{4000, 3000}, {4000, 2250}, true,  {0, 375, 100, 475},     "0 0 100 100"      },
      {{4000, 3000}, {3000, 3000}, true,  {500, 0, 1500, 100},    "0 0 1000 100"     },
      {{4001, 3000}, {3000, 3000}, true,  {500, 0, 1500, 100},    "0 0 1000 100"     },
      {{8000, 6000}, {4000, 3000}, false, {800, 600, 1600, 1200}, "800 600 1600 1200"},
      {{4000, 3000}, {4000, 2250}, false, {0, 375, 100, 475},     "0 0 100 100"      },
      {{3000, 2000}, {1000, 666},  true,  {-2, -2, 5, 5},         "0 0 1 1"          },
  };
  // The image is centred in the scaled active array. Half of an odd difference between their widths is
  // rounded toward zero: in the fourth case, half of 1001 is 500.
  for (const auto& c : cases) {
    const __tagOrluRect mapped = mappedToImage(c.rect, c.active, c.image, c.isScaled);
    EXPECT_EQ(c.mapped, textOf(mapped))
        << "of " << textOf(c.rect) << " in " << c.active.width << ", scaled " << c.isScaled;
  }
}

TEST(RegionMapperTest, ZoomClampAndEmpty) {
  const _tagOrluSize image = {1001, 1000};
  __tagOrluRect rect = zoomedAboutCentre({400, 900, 700, 600}, image, 2.0F);
  EXPECT_EQ("300 1300 900 700", textOf(rect));
  clampToImage(rect, {800, 500});
  EXPECT_EQ("300 1300 800 500", textOf(rect));
  emptyIfCrossed(rect);
  EXPECT_EQ("300 0 800 0", textOf(rect));
}

TEST(RegionMapperTest, ScalesUnlessTheCallerGaveImageCoordinates) {
  const _tagOrluSize active = {4000, 3000};
  // The third and fourth values are the crop's width and height.
  const SCR_Type crop = {0, 0, 2000, 1500, false, {}};
  const SCR_Type flagged = {0, 0, 2000, 1500, true, {}};
  EXPECT_FALSE(needsScaling(active, {2000, 1500}, {0, crop, {}}));
  EXPECT_FALSE(needsScaling(active, active,
                            {
                                0, {0,      0, 4000, 3000, false, {}},
                                 {}
  }));
  EXPECT_TRUE(needsScaling(active, {2000, 1501}, {0, crop, {}}));
  EXPECT_TRUE(needsScaling(active, {2000, 1500}, {0, flagged, {}}));
  EXPECT_TRUE(needsScaling(active, {2000, 1500}, {-1, crop, {}}));
  EXPECT_TRUE(needsScaling(active, {0, 0}, {0, {}, {}}));
  EXPECT_FALSE(needsScaling(active,
                            {
                                2000, 1500
  },
                            {1, {}, {4000, 3001}}));
  EXPECT_TRUE(needsScaling(active, {2000, 1500}, {1, crop, active}));
  EXPECT_TRUE(needsScaling(active, {4001, 1500}, {1, {}, {}}));
}

TEST(RegionMapperTest, TheLastFaceReplacesADroppedFace) {
  const _tagOrluSize image = {100, 100};
  _tagOrluFaceInfo faces;
  faces.count = 5;
  const __tagOrluRect rects[] = {
      {0,   0, 1, 1},
      {101, 0, 2, 2},
      {3,   3, 3, 3},
      {100, 0, 4, 4},
      {0,   0, 0, 5},
  };
  std::copy(std::begin(rects), std::end(rects), faces.rects);
  EXPECT_EQ(2, dropFacesOutside(faces, image));
  EXPECT_EQ(3, faces.count);
  EXPECT_EQ("0 0 1 1, 100 0 4 4, 3 3 3 3",
            textOf(faces.rects[0]) + ", " + textOf(faces.rects[1]) + ", " + textOf(faces.rects[2]));
}

}  // namespace
}  // namespace orlu
