#include "image_format.h"

#include "log.h"
#include "vrequest.h"

namespace orlu {
namespace {

constexpr auto& kLogTag = VRequest::kLogTag;

// The name of codes that have no name of their own. The misspelling is intended (Oddity 4).
constexpr char kUndefined[] = "undefineFromat";

// Names of the image-format codes 1 to 33.
constexpr const char* kFormatNames[] = {
    "ALGO_IMG_NV21",            // 1
    "ALGO_IMG_NV12",            // 2
    "ALGO_IMG_YV12",            // 3
    "ALGO_IMG_I420",            // 4
    "ALGO_IMG_GRAY",            // 5
    "ALGO_IMG_MIPI_RAW10",      // 6
    "ALGO_IMG_MIPI_RAW12",      // 7
    "ALGO_IMG_MIPI_RAW13",      // 8
    "ALGO_IMG_RAW10_UNPACKED",  // 9
    kUndefined,                 // 10
    kUndefined,                 // 11
    "ALGO_IMG_UBWCTP10",        // 12
    kUndefined,                 // 13
    kUndefined,                 // 14
    kUndefined,                 // 15
    "ALGO_IMG_RAW12_UNPACKED",  // 16
    "ALGO_IMG_RAW14_UNPACKED",  // 17
    "ALGO_IMG_RAW16",           // 18
    "ALGO_IMG_P010",            // 19
    kUndefined,                 // 20
    kUndefined,                 // 21
    "ALGO_IMG_P01016",          // 22
    "ALGO_IMG_B8G8R8",          // 23
    "ALGO_IMG_JPEG",            // 24
    "ALGO_IMG_R8G8B8A8",        // 25
    kUndefined,                 // 26
    kUndefined,                 // 27
    kUndefined,                 // 28
    kUndefined,                 // 29
    kUndefined,                 // 30
    kUndefined,                 // 31
    "ALGO_IMG_YUY2",            // 32
    "ALGO_IMG_R12G12B12",       // 33
};
constexpr int kFormatCount = sizeof kFormatNames / sizeof kFormatNames[0];
static_assert(kFormatCount == 33);

}  // namespace

const char* formatToStr(int format) {
  return format >= 1 && format <= kFormatCount ? kFormatNames[format - 1] : kUndefined;
}

bool isRawImageFormat(int format) {
  return format == kFormatRaw16 || format == kFormatMipiRaw10;
}

void printImageInfo(const AlgoFrameInfo& frame, const char* label, int index, int usedSharedMemory) {
  LOGD(
      "img %s[%d]: fmt %s, w %d, h %d, s0 %d, s1 %d, sc %d, sz %d, plNum %d, plSz %d %d, data %p %p, "
      "fdNum %d, fdSz %d %d, fd %d %d useShmem %d",
      label, index, formatToStr(frame.format), frame.width, frame.height, frame.stride[0], frame.stride[1],
      frame.scanline[0], frame.size, frame.planeCount, frame.planeSize[0], frame.planeSize[1],
      frame.planeData[0], frame.planeData[1], frame.fdCount, frame.fdSize[0], frame.fdSize[1], frame.fd[0],
      frame.fd[1], usedSharedMemory);
}

}  // namespace orlu
