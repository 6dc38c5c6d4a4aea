// The stand-in's algorithms: small, but with an effect that is really there.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <map>
#include <memory>
#include <random>

#include "metadata_records.h"
#include "stand_in_client.h"

namespace orlu {
namespace {

using test::Algo;
using test::FileImage;
using test::StandInClient;

constexpr int kWidth = 128;
constexpr int kHeight = 96;
constexpr size_t kPixels = size_t{kWidth} * kHeight;
constexpr int32_t kNv21 = 1;
constexpr int32_t kJpeg = 24;

std::unique_ptr<FileImage> nv21() {
  auto image = std::make_unique<FileImage>(kNv21, kWidth, kHeight, kPixels * 3 / 2);
  std::fill_n(image->pixels() + kPixels, kPixels / 2, uint8_t{128});
  return image;
}

// A scene with detail everywhere, from 60 to 196.
double scene(int x, int y) {
  return 128 + 40 * std::sin(x * 0.31) * std::cos(y * 0.23) + 28 * std::sin(x * 0.05 + y * 0.07);
}

// The scene as a shifted frame with noise of this deviation.
std::unique_ptr<FileImage> shot(int dx, int dy, double noise, unsigned seed) {
  auto image = nv21();
  std::mt19937 random(seed);
  std::normal_distribution<double> normal(0, noise);
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const double value = scene(x + dx, y + dy) + (noise > 0 ? normal(random) : 0);
      image->pixels()[y * kWidth + x] =
          static_cast<uint8_t>(std::lround(std::fmin(255, std::fmax(0, value))));
    }
  }
  return image;
}

double meanSquaredError(const FileImage& image) {
  double sum = 0;
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) sum += std::pow(image.pixels()[y * kWidth + x] - scene(x, y), 2);
  }
  return sum / static_cast<double>(kPixels);
}

void run(StandInClient& c, const std::vector<std::string>& algorithms,
         const std::vector<const FileImage*>& inputs, const std::vector<const FileImage*>& outputs) {
  ASSERT_EQ(0, c.process(1, algorithms, inputs, outputs));
  ASSERT_EQ(1U, c.waitForCallbacks(1).size());
}

TEST(StandInPictureTest, MergingTakesNoiseDown) {
  const Algo algo;
  StandInClient c;
  const int shifts[][2] = {
      {0,  0 },
      {3,  -2},
      {-4, 1 },
      {2,  4 },
      {-1, -3},
      {4,  0 }
  };
  std::vector<std::unique_ptr<FileImage>> shots;
  std::vector<const FileImage*> inputs;
  for (unsigned i = 0; i < 6; ++i) {
    shots.push_back(shot(shifts[i][0], shifts[i][1], 12, i + 1));
    inputs.push_back(shots[i].get());
  }
  c.set<int32_t>("orlu.algo.control", "input_basic_frameidx", 0);
  const auto output = nv21();
  run(c, {"night"}, inputs, {output.get()});
  // A sixth of the noise's power is what merging leaves in the best case.
  EXPECT_LT(meanSquaredError(*output), meanSquaredError(*shots[0]) / 3);
  EXPECT_EQ(0, c.get<int32_t>("orlu.algo.feedback", "current_base_frame_idx", -1));
}

TEST(StandInPictureTest, PassesThroughWhatItIsNotAskedFor) {
  const Algo algo;
  StandInClient c;
  const auto input = shot(0, 0, 12, 1);
  const auto output = nv21();
  run(c, {"unknown"}, {input.get()}, {output.get()});
  EXPECT_EQ(0, std::memcmp(input->pixels(), output->pixels(), kPixels * 3 / 2));
  EXPECT_EQ(ProcessedAlgo().words[3],
            c.get<ProcessedAlgo>("orlu.algo.parameter", "processed_algo", {}).words[3]);
}

TEST(StandInPictureTest, FlipMirrorsLumaAndChroma) {
  const Algo algo;
  StandInClient c;
  const auto input = shot(0, 0, 0, 1);
  for (size_t i = 0; i < kPixels / 2; ++i) input->pixels()[kPixels + i] = static_cast<uint8_t>(i % kWidth);
  const auto output = nv21();
  run(c, {"flip"}, {input.get()}, {output.get()});
  for (int x = 0; x < kWidth; ++x) {
    ASSERT_EQ(input->pixels()[5 * kWidth + x], output->pixels()[5 * kWidth + kWidth - 1 - x]);
  }
  EXPECT_EQ(kWidth - 2, output->pixels()[kPixels]);
  EXPECT_EQ(kWidth - 1, output->pixels()[kPixels + 1]);
}

TEST(StandInPictureTest, ScoresFramesAndKeepsTheSharpest) {
  const Algo algo;
  StandInClient c;
  const auto flat = nv21();
  const auto sharp = shot(0, 0, 0, 1);
  run(c, {"frameClarOnly"}, {flat.get(), sharp.get(), flat.get()}, {});
  struct Scores {
    double of[50];
  };
  struct Selected {
    int32_t of[20];
  };
  const auto scores = c.get<Scores>("orlu.algo.parameter", "frame_clarity_score", {});
  EXPECT_EQ(0, scores.of[0]);
  EXPECT_GT(scores.of[1], 1);
  const auto selected = c.get<Selected>("orlu.algo.feedback", "frame_select_result", {});
  EXPECT_EQ((std::vector<int32_t>{-1, 1, -1, -1}), std::vector<int32_t>(selected.of, selected.of + 4));
  EXPECT_EQ(1, c.get<int32_t>("orlu.algo.feedback", "current_base_frame_idx", -1));
}

// Images whose records lie, or that are not there, are left alone.
TEST(StandInPictureTest, CopesWithOddImages) {
  const Algo algo;
  StandInClient c;
  const auto good = shot(0, 0, 0, 1);
  std::vector<std::unique_ptr<FileImage>> odd;
  for (int i = 0; i < 9; ++i) odd.push_back(nv21());
  odd[0]->info.width = 0;
  odd[1]->info.height = -5;
  odd[2]->info.width = 0x7FFFFFFF;
  odd[3]->info.stride[0] = 0x7FFFFFFF;
  odd[4]->info.scanline[0] = 0x7FFFFFFF;
  odd[5]->info.fd[0] = 987;  // not open
  odd[6]->info.fd[0] = -1;
  odd[7]->info.fdSize[0] = 0;
  odd[8]->info.planeSize[0] = 0x7FFFFFFF;
  uint64_t request = 0;
  for (const auto& image : odd) {
    const auto output = nv21();
    const std::vector<std::string> all = {"night", "flip", "upscale", "jpegEncode", "ppt", "lightstream"};
    c.process(++request, all, {image.get(), good.get(), image.get()}, {output.get(), image.get()});
    c.process(++request, {"hdr"}, {good.get(), image.get()}, {image.get()});
    c.process(++request, {"jpegBokehOnly"}, {image.get()}, {image.get()});
  }
  EXPECT_EQ(request, c.waitForCallbacks(request).size());
}

// The entries of an EXIF block's directories; a number by its first value, a fraction as its quotient.
std::map<int, double> exifEntries(const uint8_t* tiff) {
  const auto number = [tiff](uint32_t at, size_t size) {
    uint32_t value = 0;
    std::memcpy(&value, tiff + at, size);
    return value;
  };
  std::map<int, double> entries;
  std::vector<uint32_t> directories = {number(4, 4)};
  while (!directories.empty()) {
    const uint32_t at = directories.back();
    directories.pop_back();
    for (uint32_t i = 0; i < number(at, 2); ++i) {
      const uint32_t entry = at + 2 + 12 * i;
      const auto tag = static_cast<int>(number(entry, 2));
      const uint32_t type = number(entry + 2, 2);
      const uint32_t value = number(entry + 8, type == 3 ? 2 : 4);
      if (tag == 0x8769 || tag == 0x8825) directories.push_back(value);
      entries[tag] = type == 5 || type == 10 ? static_cast<double>(static_cast<int32_t>(number(value, 4))) /
                                                   static_cast<int32_t>(number(value + 4, 4))
                                             : value;
    }
  }
  return entries;
}

TEST(StandInPictureTest, EncodesAJpegWithTheFactsOfTheRecord) {
  const Algo algo;
  StandInClient c;
  ExifInfo info;
  info.exposureTime = 20'000'000;
  info.iso = 321;
  info.hasIso = 1;
  info.sensitivity = 111;
  info.aperture = 1.75F;
  info.focalLength = 5.5F;
  info.focalLengthIn35mm = 27;
  info.hasFocalLengthIn35mm = 1;
  info.flashState = 3;
  info.hasFlashState = 1;
  info.aeExposureCompensation = -2;
  info.aeCompensationStepNumerator = 1;
  info.aeCompensationStepDenominator = 3;
  info.hasLocation = 1;
  info.location.latitude = -33.5;
  info.location.longitude = 151.25;
  c.set("orlu.algo.parameter", "exif_info_for_write", info);
  c.set<int32_t>("orlu.algo.control", "jpeg_rotation", 90);
  const auto input = shot(0, 0, 0, 1);
  const FileImage output(kJpeg, kWidth, kHeight, 40'000);
  run(c, {"jpegEncode"}, {input.get()}, {&output});

  const auto size = c.get<int32_t>("orlu.algo.feedback", "encoded_jpeg_size", -1);
  ASSERT_GT(size, 1000);
  const uint8_t* const file = output.pixels();
  EXPECT_EQ(0, std::memcmp(file, "\xFF\xD8\xFF\xE1", 4));
  EXPECT_EQ(0, std::memcmp(file + size - 2, "\xFF\xD9", 2));
  ASSERT_EQ(0, std::memcmp(file + 6, "Exif\0\0II*\0", 10));
  const std::map<int, double> exif = exifEntries(file + 12);
  // clang-format off
  const std::map<int, double> expected = {
      {0x829A, 0.02}, {0x8827, 321}, {0x829D, 1.75}, {0x920A, 5.5}, {0xA405, 27},     {0x9209, 0x09},      {0x0112, 6},
      {0x0213, 1},    {0, 0x0302},   {1, 'S'},       {2, 33},       {3, 'E'},         {4, 151},
      {0xA002, kWidth},              {0xA003, kHeight},             {0x9204, -2.0 / 3}};
  // clang-format on
  for (const auto& [tag, value] : expected) {
    ASSERT_EQ(1U, exif.count(tag)) << std::hex << tag;
    EXPECT_NEAR(value, exif.at(tag), 1e-6) << std::hex << tag;
  }
}

TEST(StandInPictureTest, WritesNoJpegWhereThereIsNoRoom) {
  const Algo algo;
  StandInClient c;
  const auto input = shot(0, 0, 40, 1);
  const FileImage output(kJpeg, kWidth, kHeight, 600);
  run(c, {"jpegEncode"}, {input.get()}, {&output});
  EXPECT_EQ(0, c.get<int32_t>("orlu.algo.feedback", "encoded_jpeg_size", -1));
  EXPECT_EQ(0, output.pixels()[0]);
}

}  // namespace
}  // namespace orlu
