#include "jpeg_encode.h"

#include <turbojpeg.h>

#include <algorithm>
#include <memory>

namespace orlu::standin {
namespace {

constexpr int kBestQuality = 95;
constexpr int kWorstQuality = 5;
constexpr int kQualityStep = 15;

constexpr size_t kMarkerBytes = 2;
constexpr uint8_t kApp0 = 0xE0;
constexpr uint8_t kApp1 = 0xE1;
constexpr size_t kLargestSegment = 0xFFFF - 2;

using Encoder = std::unique_ptr<void, int (*)(void*)>;

// The planes in the encoder's form: luma with even width and height, Cb, and Cr.
struct EncoderPlanes {
  std::vector<uint8_t> luma;  // padded copy, only if the width or height is odd
  std::vector<uint8_t> cb;
  std::vector<uint8_t> cr;
  const uint8_t* planes[3] = {};
  int strides[3] = {};
};

void splitChroma(const ImageView& image, EncoderPlanes& out) {
  const Plane& chroma = image.planes[1];
  std::vector<uint8_t>& first = image.format == kFormatNv21 ? out.cr : out.cb;
  std::vector<uint8_t>& second = image.format == kFormatNv21 ? out.cb : out.cr;
  for (int y = 0; y < chroma.rows; ++y) {
    const uint8_t* pair = chroma.row(y);
    for (int x = 0; x < chroma.columns; ++x, pair += 2) {
      first.push_back(pair[0]);
      second.push_back(pair[1]);
    }
  }
  out.planes[1] = out.cb.data();
  out.planes[2] = out.cr.data();
  out.strides[1] = out.strides[2] = chroma.columns;
}

// Repeats the last column if the width is odd, and the last row if the height is odd.
void padLuma(const Plane& luma, EncoderPlanes& out) {
  const int evenColumns = luma.columns + luma.columns % 2;
  const int evenRows = luma.rows + luma.rows % 2;
  for (int y = 0; y < evenRows; ++y) {
    const uint8_t* const row = luma.row(std::min(y, luma.rows - 1));
    out.luma.insert(out.luma.end(), row, row + luma.columns);
    if (evenColumns != luma.columns) out.luma.push_back(row[luma.columns - 1]);
  }
  out.planes[0] = out.luma.data();
  out.strides[0] = evenColumns;
}

EncoderPlanes planesOf(const ImageView& image) {
  EncoderPlanes out;
  const Plane& luma = image.planes[0];
  splitChroma(image, out);
  if (luma.columns % 2 != 0 || luma.rows % 2 != 0) {
    padLuma(luma, out);
  } else {
    out.planes[0] = luma.data;
    out.strides[0] = static_cast<int>(luma.stride);
  }
  return out;
}

// Returns the encoder's output; empty on failure.
std::vector<uint8_t> compress(const Encoder& encoder, const ImageView& image, EncoderPlanes& planes,
                              int quality) {
  unsigned char* jpeg = nullptr;
  unsigned long size = 0;
  const Plane& pixels = image.planes[0];
  const int status =
      image.isYuv() ? tjCompressFromYUVPlanes(encoder.get(), planes.planes, image.width, planes.strides,
                                              image.height, TJSAMP_420, &jpeg, &size, quality, 0)
                    : tjCompress2(encoder.get(), pixels.data, image.width, static_cast<int>(pixels.stride),
                                  image.height, TJPF_RGBA, &jpeg, &size, TJSAMP_420, quality, 0);
  const std::unique_ptr<unsigned char, void (*)(unsigned char*)> owner(jpeg, tjFree);
  if (status != 0) return {};
  return {jpeg, jpeg + size};
}

// Replaces the encoder's JFIF segment with the EXIF segment: readers expect only one of them. Returns the
// file unchanged if the EXIF data is empty or too long for a segment.
std::vector<uint8_t> withExif(const std::vector<uint8_t>& jpeg, const std::vector<uint8_t>& exif) {
  if (exif.empty() || exif.size() > kLargestSegment || jpeg.size() < 6) return jpeg;
  size_t rest = kMarkerBytes;
  if (jpeg[3] == kApp0) rest += kMarkerBytes + static_cast<size_t>(jpeg[4] << 8 | jpeg[5]);
  if (rest > jpeg.size()) return jpeg;
  const size_t length = exif.size() + 2;
  std::vector<uint8_t> out(jpeg.begin(), jpeg.begin() + kMarkerBytes);
  out.insert(out.end(),
             {0xFF, kApp1, static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length & 0xFF)});
  out.insert(out.end(), exif.begin(), exif.end());
  out.insert(out.end(), jpeg.begin() + static_cast<ptrdiff_t>(rest), jpeg.end());
  return out;
}

std::vector<uint8_t> unchanged(const ImageView& image, size_t room) {
  const Plane& bytes = image.planes[0];
  if (bytes.rowBytes() > room) return {};
  return {bytes.data, bytes.data + bytes.rowBytes()};
}

}  // namespace

std::vector<uint8_t> encodeJpeg(const ImageView& image, const std::vector<uint8_t>& exif, size_t room) {
  if (image.format == kFormatJpeg) return unchanged(image, room);
  if (!image.isYuv() && image.format != kFormatRgba8888) return {};
  const Encoder encoder(tjInitCompress(), tjDestroy);
  if (!encoder) return {};
  EncoderPlanes planes;
  if (image.isYuv()) planes = planesOf(image);
  for (int quality = kBestQuality; quality >= kWorstQuality; quality -= kQualityStep) {
    std::vector<uint8_t> file = withExif(compress(encoder, image, planes, quality), exif);
    if (file.empty() || file.size() <= room) return file;
  }
  return {};
}

}  // namespace orlu::standin
