#include "image.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace orlu::standin {
namespace {

constexpr int kMaxSide = 65500;  // the largest side that libjpeg accepts
constexpr int64_t kMaxPixels = 1 << 28;

bool isSaneShape(int width, int height) {
  return width > 0 && height > 0 && width <= kMaxSide && height <= kMaxSide &&
         static_cast<int64_t>(width) * height <= kMaxPixels;
}

// Adds the plane if its rows fit the stride and end inside the memory.
bool addPlane(ImageView& view, uint8_t* memory, size_t capacity, uint64_t offset, const Plane& plane) {
  const uint64_t stride = plane.stride;
  const uint64_t end = offset + stride * static_cast<uint64_t>(plane.rows - 1) + plane.rowBytes();
  if (stride < plane.rowBytes() || end > capacity) return false;
  view.planes.push_back(plane);
  view.planes.back().data = memory + offset;
  return true;
}

size_t strideOr(int32_t stride, int fallback) {
  return static_cast<size_t>(stride > 0 ? stride : fallback);
}

bool layOutYuv(const AlgoFrameInfo& info, uint8_t* memory, size_t capacity, ImageView& view) {
  Plane luma;
  luma.columns = info.width;
  luma.rows = info.height;
  luma.stride = strideOr(info.stride[0], info.width);
  Plane chroma;
  chroma.columns = (info.width + 1) / 2;
  chroma.rows = (info.height + 1) / 2;
  chroma.channels = 2;
  const int even = 2 * chroma.columns;
  chroma.stride = std::max(strideOr(info.stride[1], 0), static_cast<size_t>(even));
  if (info.stride[1] <= 0) chroma.stride = std::max(luma.stride, static_cast<size_t>(even));

  // A planeSize[0] larger than `rows` means that padding rows follow the luma rows. A smaller one only
  // excludes the padding of the last row, but the memory contains this padding.
  const int32_t scanlines = std::max(info.scanline[0], info.height);
  const uint64_t rows = static_cast<uint64_t>(luma.stride) * static_cast<uint64_t>(scanlines);
  const uint64_t told = info.planeSize[0] > 0 ? static_cast<uint64_t>(info.planeSize[0]) : 0;
  return addPlane(view, memory, capacity, 0, luma) &&
         addPlane(view, memory, capacity, std::max(rows, told), chroma);
}

bool layOutRaw16(const AlgoFrameInfo& info, uint8_t* memory, size_t capacity, ImageView& view) {
  Plane plane;
  plane.columns = info.width;
  plane.rows = info.height;
  plane.sampleBytes = 2;
  // The stride is in bytes or in pixels. A stride smaller than the bytes of a row is in pixels.
  const size_t told = strideOr(info.stride[0], info.width);
  plane.stride = told >= plane.rowBytes() ? told : 2 * std::max(told, static_cast<size_t>(info.width));
  return addPlane(view, memory, capacity, 0, plane);
}

bool layOutRgba(const AlgoFrameInfo& info, uint8_t* memory, size_t capacity, ImageView& view) {
  Plane plane;
  plane.columns = info.width;
  plane.rows = info.height;
  plane.channels = 4;
  plane.stride = std::max(strideOr(info.stride[0], 0), plane.rowBytes());
  return addPlane(view, memory, capacity, 0, plane);
}

bool layOutOpaque(const AlgoFrameInfo& info, uint8_t* memory, size_t capacity, ImageView& view) {
  size_t bytes = std::min<size_t>(capacity, std::numeric_limits<int32_t>::max());
  if (info.size > 0) bytes = std::min(bytes, static_cast<size_t>(info.size));
  Plane plane;
  plane.columns = static_cast<int>(bytes);
  plane.rows = 1;
  plane.stride = bytes;
  return bytes > 0 && addPlane(view, memory, capacity, 0, plane);
}

}  // namespace

bool layOut(const AlgoFrameInfo& info, uint8_t* memory, size_t capacity, ImageView& view) {
  view = ImageView{info.format, info.width, info.height, {}};
  if (view.isOpaque()) return layOutOpaque(info, memory, capacity, view);
  if (!isSaneShape(info.width, info.height)) return false;
  if (view.isYuv()) return layOutYuv(info, memory, capacity, view);
  return view.format == kFormatRaw16 ? layOutRaw16(info, memory, capacity, view)
                                     : layOutRgba(info, memory, capacity, view);
}

bool copyPixels(const ImageView& from, const ImageView& to) {
  if (!from.sameShape(to) || from.planes.size() != to.planes.size()) return false;
  if (from.isOpaque() && from.planes[0].columns > to.planes[0].columns) return false;
  for (size_t i = 0; i < from.planes.size(); ++i) {
    const Plane& source = from.planes[i];
    // Source and destination may overlap.
    for (int y = 0; y < source.rows; ++y) std::memmove(to.planes[i].row(y), source.row(y), source.rowBytes());
  }
  return true;
}

Picture::Picture(int format, int width, int height, size_t opaqueBytes) {
  AlgoFrameInfo info;
  info.format = format;
  info.width = width;
  info.height = height;
  mView = ImageView{format, width, height, {}};
  const auto pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
  const size_t chroma = 2 * static_cast<size_t>((width + 1) / 2) * static_cast<size_t>((height + 1) / 2);
  size_t bytes = opaqueBytes;
  if (mView.isYuv()) bytes = pixels + chroma;
  if (format == kFormatRaw16) bytes = 2 * pixels;
  if (format == kFormatRgba8888) bytes = 4 * pixels;
  mBytes.resize(bytes);
  if (!layOut(info, mBytes.data(), bytes, mView)) mBytes.clear();
}

Picture Picture::copyOf(const ImageView& view) {
  if (view.planes.empty()) return {};
  Picture picture(view.format, view.width, view.height, view.planes[0].rowBytes());
  copyPixels(view, picture.mView);
  return picture;
}

}  // namespace orlu::standin
