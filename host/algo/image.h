// The layout of an image in memory, and an image with its own pixels.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "algo_interface.h"

namespace orlu::standin {

// One plane: rows of `columns` pixels, each of `channels` samples of `sampleBytes` bytes.
struct Plane {
  uint8_t* data = nullptr;  // borrowed; read-only for an input frame
  size_t stride = 0;        // bytes from one row to the next
  int columns = 0;
  int rows = 0;
  int channels = 1;
  int sampleBytes = 1;

  size_t pixelBytes() const { return static_cast<size_t>(channels) * static_cast<size_t>(sampleBytes); }
  size_t rowBytes() const { return static_cast<size_t>(columns) * pixelBytes(); }
  uint8_t* row(int y) const { return data + static_cast<size_t>(y) * stride; }
};

// The planes of an image: a luma plane and a plane of chroma pairs, or only one plane. An image is opaque,
// one row of bytes, if the stand-in does not read pixels of its format (compressed, packed raw, unknown).
struct ImageView {
  int format = 0;
  int width = 0;
  int height = 0;
  std::vector<Plane> planes;

  bool isYuv() const { return format == kFormatNv21 || format == kFormatNv12; }
  bool isOpaque() const { return !isYuv() && format != kFormatRaw16 && format != kFormatRgba8888; }
  bool sameShape(const ImageView& other) const {
    return format == other.format && width == other.width && height == other.height;
  }
};

// Lays out a frame's planes in `capacity` bytes of memory. Returns false if the planes do not fit, or if an
// image that is not opaque has an invalid width or height. Never accesses the memory.
bool layOut(const AlgoFrameInfo& info, uint8_t* memory, size_t capacity, ImageView& view);

// Copies the pixels. Returns false, without copying, if the shapes differ or an opaque image does not fit.
bool copyPixels(const ImageView& from, const ImageView& to);

// An image that owns its pixels, without padding.
class Picture {
public:
  Picture() = default;
  // Creates zeroed pixels. The picture is empty if layOut() rejects the shape. An opaque picture has
  // `opaqueBytes` bytes.
  Picture(int format, int width, int height, size_t opaqueBytes = 0);
  Picture(Picture&&) = default;
  Picture& operator=(Picture&&) = default;
  // Returns a picture with a copy of the pixels; an empty picture if the view has no planes.
  static Picture copyOf(const ImageView& view);

  bool empty() const { return mBytes.empty(); }
  const ImageView& view() const { return mView; }

private:
  std::vector<uint8_t> mBytes;  // moving it keeps the addresses in the view valid
  ImageView mView;
};

}  // namespace orlu::standin
