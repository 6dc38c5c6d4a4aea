// The layout of the native handle of the host layer's hardware buffers: two descriptors, then four integers.
// The constants ...Word are indices into the handle's `data`.
#pragma once

namespace orlu::host {

constexpr int kAttributesWord = 0;  // a memory file that is never read
constexpr int kPixelsWord = 1;      // the memory file with the pixels
constexpr int kDescriptors = 2;
constexpr int kIntegers = 4;  // width, height, row stride in bytes, format
constexpr int kRowWord = 4;   // the row stride in bytes

}  // namespace orlu::host
