#include "hdr_layout.h"

#include <gtest/gtest.h>

#include "case_name.h"

namespace orlu {
namespace {

struct LayoutCase {
  const char* name;
  const char* modes;  // of each frame: h HDR, n night, b both, - none
  HdrProcessType type;
  int hdrCount;
  int nightCount;
  int nightIndex;
  HdrFrameIndex hdrFrames;  // from 90 to 95 where nothing is stored
};

void PrintTo(const LayoutCase& tested, std::ostream* out) {
  *out << tested.modes;
}

class HdrLayoutTest : public testing::TestWithParam<LayoutCase> {};

TEST_P(HdrLayoutTest, FollowsFromTheModes) {
  std::vector<uint64_t> modes;
  for (const char mode : std::string(GetParam().modes)) {
    modes.push_back(mode == 'h' ? 0x12 : mode == 'n' ? 0x48 : mode == 'b' ? 0xA : 0x5);
  }
  HdrFrameIndex hdrFrames = {90, 91, 92, 93, 94, 95};
  const HdrLayout layout = hdrLayoutOf(modes, hdrFrames);
  EXPECT_EQ(GetParam().type, layout.type);
  EXPECT_EQ(GetParam().hdrCount, layout.hdrCount);
  EXPECT_EQ(GetParam().nightCount, layout.nightCount);
  EXPECT_EQ(GetParam().nightIndex, layout.nightIndex);
  EXPECT_EQ(GetParam().hdrFrames, hdrFrames);
}

const LayoutCase kLayouts[] = {
    {"Five",            "hhnhh",     kHdr5Yuv, 4, 1, 2, {2, 0, 1, 3, 4, 95}     },
    {"FiveBothIsHdr",   "bhhnh",     kHdr5Yuv, 4, 1, 3, {3, 0, 1, 2, 4, 95}     },
    {"FiveTwoNights",   "hnhnh",     kHdrNone, 3, 2, 3, {3, 0, 2, 4, 94, 95}    },
    {"FiveNoNight",     "hhhhh",     kHdrNone, 5, 0, 0, {90, 0, 1, 2, 3, 4}     },
    {"Seven",           "hhhnhhh",   kHdr7Yuv, 6, 1, 3, {0, 1, 2, 4, 5, 6}      },
    {"SevenAllHdr",     "hhhhhhh",   kHdrNone, 7, 0, 0, {0, 1, 2, 3, 4, 5}      },
    {"SevenOneMissing", "hhhnh-h",   kHdrNone, 5, 1, 3, {0, 1, 2, 4, 6, 95}     },
    {"Nine",            "nnnhhhhhh", kHdr9Yuv, 6, 3, 0, {3, 4, 5, 6, 7, 8}      },
    {"NineBothIsNight", "nbnhhhhhh", kHdr9Yuv, 6, 3, 0, {3, 4, 5, 6, 7, 8}      },
    {"NineNightLast",   "nn-hhhhhn", kHdrNone, 5, 2, 0, {3, 4, 5, 6, 7, 95}     },
    {"Three",           "hhh",       kHdrNone, 0, 0, 0, {90, 91, 92, 93, 94, 95}},
    {"Eight",           "nnhhhhhh",  kHdrNone, 0, 0, 0, {90, 91, 92, 93, 94, 95}},
};
INSTANTIATE_TEST_SUITE_P(Layouts, HdrLayoutTest, testing::ValuesIn(kLayouts), test::CaseName());

}  // namespace
}  // namespace orlu
