#include "exposure.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace orlu {
namespace {

TEST(ArithmeticTest, ConvertsFloatsAsTheDeviceDoes) {
  constexpr int32_t kMin = std::numeric_limits<int32_t>::min();
  constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
  const struct {
    float from;
    int32_t to;
  } cases[] = {
      {1.9F,         1         },
      {-1.9F,        -1        },
      {2147483520.F, 2147483520},
      {2147483648.F, kMax      },
      {-3e9F,        kMin      },
      {INFINITY,     kMax      },
      {-INFINITY,    kMin      },
      {NAN,          0         },
  };
  for (const auto& c : cases) EXPECT_EQ(c.to, toInt(c.from)) << c.from;
  EXPECT_EQ(100, extent(10, 109));
  EXPECT_EQ(1, extent(5, 5));
  EXPECT_EQ(kMax, extent(0, kMax));
  EXPECT_EQ(kMax, extent(kMin, kMax));
  EXPECT_EQ(kMin, extent(kMax, kMin));
}

// Element i has the value i * 1e6, so an element in nanoseconds is i milliseconds.
TEST(ExposureTest, ReadsTimesAndRatiosFromTheirElements) {
  Aec aec = {};
  for (size_t i = 0; i < aec.size(); ++i) aec[i] = static_cast<float>(i) * 1e6F;
  EXPECT_EQ(14.F, milliseconds(aec));
  EXPECT_EQ(17.F, milliseconds(aec, kAecExposureTimeNormal));
  EXPECT_EQ(11.F / 9.F, longToShortSensitivity(aec));
  EXPECT_EQ(1.1F, longToSafeSensitivity(aec));
  EXPECT_EQ(17, normalExposureTime(aec, false));
  aec[kAecShortSensitivity] = 39.9e6F;
  aec[kAecRealGain] = 2;
  EXPECT_EQ(19, normalExposureTime(aec, true));
  EXPECT_TRUE(std::isnan(longToShortSensitivity({})));
  EXPECT_EQ(0, normalExposureTime({}, true));
}

}  // namespace
}  // namespace orlu
