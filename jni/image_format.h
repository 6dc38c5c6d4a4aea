// Image-format codes of the algorithm interface and their names.
#pragma once

#include "algo_interface.h"

namespace orlu {

enum AlgoImageFormat : int32_t {
  kFormatUnknown = 0,
  kFormatNv21 = 1,
  kFormatNv12 = 2,
  kFormatMipiRaw10 = 6,
  kFormatMipiRaw12 = 7,
  kFormatRaw16 = 18,
  kFormatJpeg = 24,
  kFormatRgba8888 = 25,
};

// The code's name, static text; "undefineFromat" for a code without one.
const char* formatToStr(int format);

// True for RAW16 and MIPI_RAW10 alone: the other raw codes deliberately count as not raw.
bool isRawImageFormat(int format);

// Logs one line about an image, at debug level. `label` is "in" or "out".
void printImageInfo(const AlgoFrameInfo& frame, const char* label, int index, int usedSharedMemory);

}  // namespace orlu
