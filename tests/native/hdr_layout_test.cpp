#include "hdr_layout.h"

#include <gtest/gtest.h>

#include <string>

namespace orlu {
namespace {

struct LayoutCase {
  std::string modes;  // per frame: h HDR, n night, b both, - neither
  HdrProcessType type;
  int hdrCount;
  int nightCount;
  int nightIndex;
  HdrFrameIndex hdrFrames;  // 90 and more: unset
};

const LayoutCase kLayouts[] = {
    {"hhnhh",     kHdr5Yuv, 4, 1, 2, {2, 0, 1, 3, 4, 95}     },
    {"bhhnh",     kHdr5Yuv, 4, 1, 3, {3, 0, 1, 2, 4, 95}     },
    {"hnhnh",     kHdrNone, 3, 2, 3, {3, 0, 2, 4, 94, 95}    },
    {"hhhhh",     kHdrNone, 5, 0, 0, {90, 0, 1, 2, 3, 4}     },
    {"hhhnhhh",   kHdr7Yuv, 6, 1, 3, {0, 1, 2, 4, 5, 6}      },
    {"hhhhhhh",   kHdrNone, 7, 0, 0, {0, 1, 2, 3, 4, 5}      },
    {"hhhnh-h",   kHdrNone, 5, 1, 3, {0, 1, 2, 4, 6, 95}     },
    {"nnnhhhhhh", kHdr9Yuv, 6, 3, 0, {3, 4, 5, 6, 7, 8}      },
    {"nbnhhhhhh", kHdr9Yuv, 6, 3, 0, {3, 4, 5, 6, 7, 8}      },
    {"nn-hhhhhn", kHdrNone, 5, 2, 0, {3, 4, 5, 6, 7, 95}     },
    {"hhh",       kHdrNone, 0, 0, 0, {90, 91, 92, 93, 94, 95}},
    {"nnhhhhhh",  kHdrNone, 0, 0, 0, {90, 91, 92, 93, 94, 95}},
};

TEST(HdrLayoutTest, FollowsFromTheModes) {
  for (const LayoutCase& expected : kLayouts) {
    FrameModes modes = {};
    for (size_t i = 0; i < expected.modes.size(); ++i) {
      const char mode = expected.modes[i];
      modes[i] = mode == 'h' ? 0x12 : mode == 'n' ? 0x48 : mode == 'b' ? 0xA : 0x5;
    }
    HdrFrameIndex hdrFrames = {90, 91, 92, 93, 94, 95};
    const HdrLayout layout = hdrLayoutOf(modes, static_cast<int>(expected.modes.size()), hdrFrames);
    EXPECT_EQ(expected.type, layout.type) << expected.modes;
    EXPECT_EQ(expected.hdrCount, layout.hdrCount) << expected.modes;
    EXPECT_EQ(expected.nightCount, layout.nightCount) << expected.modes;
    EXPECT_EQ(expected.nightIndex, layout.nightIndex) << expected.modes;
    EXPECT_EQ(expected.hdrFrames, hdrFrames) << expected.modes;
  }
}

}  // namespace
}  // namespace orlu
