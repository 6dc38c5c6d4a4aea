// Number of bytes of a locked hardware buffer, for layouts that devices use and for invalid layouts.

#include "pixel_extent.h"

#include <gtest/gtest.h>

namespace orlu::recorder {
namespace {

constexpr uintptr_t kStart = 0x10000;

AHardwareBuffer_Plane at(uintptr_t offset, uint32_t pixelStride, uint32_t rowStride) {
  return {reinterpret_cast<void*>(kStart + offset), pixelStride, rowStride};
}

TEST(PixelExtent, CoversAllRowsOfAllPlanes) {
  constexpr uint32_t kYuv = AHARDWAREBUFFER_FORMAT_Y8Cb8Cr8_420;
  const struct {
    const char* what;
    uint32_t format;
    uint32_t height;
    uint32_t stride;
    AHardwareBuffer_Planes planes;
    uint64_t bytes;
  } cases[] = {
      {"RGBA, padded",              1,           10,    64,  {1, {at(0, 4, 256)}},                                     2560},
      {"BLOB",                      0x21,        1,     999, {1, {at(0, 0, 0)}},                                       50  },
      {"RAW16, padded",             0x20,        10,    64,  {1, {at(0, 0, 0)}},                                       1280},
      {"RAW10, stride in bytes",    0x25,        10,    80,  {1, {at(0, 0, 0)}},                                       800 },
      {"RAW12, stride in bytes",    0x26,        10,    80,  {1, {at(0, 0, 0)}},                                       800 },
      {"NV21",                      kYuv,        10,    64,  {3, {at(0, 1, 64), at(641, 2, 64), at(640, 2, 64)}},      960 },
      {"NV12",                      kYuv,        10,    64,  {3, {at(0, 1, 64), at(640, 2, 64), at(641, 2, 64)}},      960 },
      {"NV21, own format code",     0x11,        10,    64,  {3, {at(0, 1, 64), at(641, 2, 64), at(640, 2, 64)}},      960 },
      {"NV12, odd height",          kYuv,        11,    64,  {3, {at(0, 1, 64), at(704, 2, 64), at(705, 2, 64)}},      1088},
      {"NV12, luma has spare rows",
       kYuv,                                     10,
       64,                                                   {3, {at(0, 1, 64), at(1024, 2, 64), at(1025, 2, 64)}},
       1344                                                                                                                },
      {"YV12",                      kFormatYv12, 10,    64,  {3, {at(0, 1, 64), at(800, 1, 32), at(640, 1, 32)}},      960 },
      {"YU12",                      kYuv,        10,    64,  {3, {at(0, 1, 64), at(640, 1, 32), at(800, 1, 32)}},      960 },
      {"P010",                      0x36,        10,    64,  {3, {at(0, 2, 128), at(1280, 4, 128), at(1282, 4, 128)}}, 1920},
 // Rejected: 0 bytes.
      {"no planes",                 1,           10,    64,  {0, {at(0, 4, 256)}},                                     0   },
      {"null",                      1,           10,    64,  {1, {{nullptr, 4, 256}}},                                 0   },
      {"opaque raw",                0x24,        10,    64,  {1, {at(0, 0, 0)}},                                       0   },
      {"4:2:2",                     0x10,        10,    64,  {3, {at(0, 1, 64), at(640, 2, 64), at(641, 2, 64)}},      0   },
      {"two planes",                kYuv,        10,    64,  {2, {at(0, 1, 64), at(640, 2, 64)}},                      0   },
      {"chroma far away",           kYuv,        10,    64,  {3, {at(0, 1, 64), at(65536, 2, 64), at(65537, 2, 64)}},  0   },
      {"chroma in the luma",        kYuv,        10,    64,  {3, {at(0, 1, 64), at(600, 2, 64), at(601, 2, 64)}},      0   },
      {"chroma before the luma",    kYuv,        10,    64,  {3, {at(960, 1, 64), at(0, 2, 64), at(1, 2, 64)}},        0   },
      {"no chroma",                 kYuv,        10,    64,  {3, {at(0, 1, 64), {nullptr, 2, 64}, {nullptr, 2, 64}}},  0   },
      {"Cr far from Cb",            kYuv,        10,    64,  {3, {at(0, 1, 64), at(640, 1, 32), at(65536, 1, 32)}},    0   },
      {"Cr in Cb",                  kYuv,        10,    64,  {3, {at(0, 1, 64), at(640, 1, 32), at(700, 1, 32)}},      0   },
      {"beyond 2 GiB",              1,           70000, 64,  {1, {at(0, 4, 1U << 31U)}},                               0   },
  };
  for (const auto& c : cases) {
    AHardwareBuffer_Desc desc = {};
    desc.width = 50;
    desc.height = c.height;
    desc.format = c.format;
    desc.stride = c.stride;
    EXPECT_EQ(pixelExtent(desc, c.planes), c.bytes) << c.what;
  }
}

}  // namespace
}  // namespace orlu::recorder
