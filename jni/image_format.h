// Names and kinds of the image-format codes.
#pragma once

#include "algo_interface.h"

namespace orlu {

// Returns the code's name as a static string; "undefineFromat" for a code without a name.
const char* formatToStr(int format);

// Returns true for RAW16 and MIPI_RAW10 only (Oddity 1).
bool isRawImageFormat(int format);

// Logs a debug line about an image. `label` is "in" or "out"; `usedSharedMemory` is 1 or 0.
void printImageInfo(const AlgoFrameInfo& frame, const char* label, int index, int usedSharedMemory);

}  // namespace orlu
