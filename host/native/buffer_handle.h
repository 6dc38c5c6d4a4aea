// The native handle of this layer's hardware buffers: two descriptors, then integers.
#pragma once

namespace orlu::host {

constexpr int kAttributesWord = 0;  // a memory file that nothing here reads
constexpr int kPixelsWord = 1;      // the memory file with the pixels
constexpr int kDescriptors = 2;
constexpr int kIntegers = 4;  // width, height, bytes of a row, format
constexpr int kRowWord = 4;   // the bytes of a row

}  // namespace orlu::host
