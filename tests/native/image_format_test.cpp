#include "image_format.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "log_capture.h"

namespace orlu {
namespace {

constexpr char kTag[] = "_V_VASJNI-VRequest";

TEST(ImageFormatTest, NamesEachOfItsCodesAndNoOther) {
  const std::set<int> named = {1, 2, 3, 4, 5, 6, 7, 8, 9, 12, 16, 17, 18, 19, 22, 23, 24, 25, 32, 33};
  std::set<std::string> names;
  for (int code = -1; code <= 40; ++code) {
    const std::string name = formatToStr(code);
    EXPECT_EQ(named.count(code) == 0, name == "undefineFromat") << code;
    EXPECT_EQ(named.count(code) != 0, name.rfind("ALGO_IMG_", 0) == 0 && names.insert(name).second) << code;
    // The other raw codes (7, 8, 9, 16, 17) do not count as raw.
    EXPECT_EQ(code == 6 || code == 18, isRawImageFormat(code)) << code;
  }
}

void* const kPlanes[] = {reinterpret_cast<void*>(0x60), reinterpret_cast<void*>(0x61)};

// No two printed fields of kFrame are equal.
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
