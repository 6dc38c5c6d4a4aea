#include "image_format.h"

#include <gtest/gtest.h>

#include <map>

#include "log_capture.h"

namespace orlu {
namespace {

constexpr char kTag[] = "_V_VASJNI-VRequest";

TEST(ImageFormatTest, NamesAndClassifiesItsCodes) {
  const std::map<int, std::string> names = {
      {1,  "ALGO_IMG_NV21"          },
      {2,  "ALGO_IMG_NV12"          },
      {3,  "ALGO_IMG_YV12"          },
      {4,  "ALGO_IMG_I420"          },
      {5,  "ALGO_IMG_GRAY"          },
      {6,  "ALGO_IMG_MIPI_RAW10"    },
      {7,  "ALGO_IMG_MIPI_RAW12"    },
      {8,  "ALGO_IMG_MIPI_RAW13"    },
      {9,  "ALGO_IMG_RAW10_UNPACKED"},
      {12, "ALGO_IMG_UBWCTP10"      },
      {16, "ALGO_IMG_RAW12_UNPACKED"},
      {17, "ALGO_IMG_RAW14_UNPACKED"},
      {18, "ALGO_IMG_RAW16"         },
      {19, "ALGO_IMG_P010"          },
      {22, "ALGO_IMG_P01016"        },
      {23, "ALGO_IMG_B8G8R8"        },
      {24, "ALGO_IMG_JPEG"          },
      {25, "ALGO_IMG_R8G8B8A8"      },
      {32, "ALGO_IMG_YUY2"          },
      {33, "ALGO_IMG_R12G12B12"     },
  };
  for (int code = -1; code <= 40; ++code) {
    const auto named = names.find(code);
    EXPECT_EQ(named == names.end() ? "undefineFromat" : named->second, formatToStr(code)) << code;
    // The other raw codes (7, 8, 9, 16, 17) are not raw, on purpose.
    EXPECT_EQ(code == 6 || code == 18, isRawImageFormat(code)) << code;
  }
}

void* const kPlanes[] = {reinterpret_cast<void*>(0x60), reinterpret_cast<void*>(0x61)};

// What is printed has a value of its own.
// clang-format off
const AlgoFrameInfo kFrame = {24, 1, 2, 3, {10, 11}, {20, 21}, 0, nullptr, 4, {30, 31}, {40, 41}, 5,
                              {kPlanes[0], kPlanes[1]}, {50, 51}};
// clang-format on

TEST(ImageFormatTest, PrintsAnImageInOneLine) {
  test::LogCapture log;
  printImageInfo(kFrame, "out", 7, 1);
  EXPECT_EQ(1, log.count(ANDROID_LOG_DEBUG, kTag,
                         "img out[7]: fmt ALGO_IMG_JPEG, w 1, h 2, s0 10, s1 11, sc 20, sz 3, plNum 5, "
                         "plSz 50 51, data 0x60 0x61, fdNum 4, fdSz 40 41, fd 30 31 useShmem 1"))
      << log.text();
  EXPECT_EQ(0U, log.text().find(std::string(kTag) + ": image_format.cpp printImageInfo() img "));
}

}  // namespace
}  // namespace orlu
