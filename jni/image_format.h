// Names and kinds of the image-format codes.
#pragma once

#include "algo_interface.h"

namespace orlu {

// The code's name, static text; "undefineFromat" for a code without one.
const char* formatToStr(int format);

// True for RAW16 and MIPI_RAW10 alone (Oddity 1).
bool isRawImageFormat(int format);

// Logs one line about image `index`, at debug level. `label` is "in" or "out"; `usedSharedMemory` is 1 when
// its memory is shared memory, else 0.
void printImageInfo(const AlgoFrameInfo& frame, const char* label, int index, int usedSharedMemory);

}  // namespace orlu
