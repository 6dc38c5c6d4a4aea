// The native handle of this layer's hardware buffers: two descriptors, then integers.
#pragma once

namespace orlu::host {

constexpr int kAttributesWord = 0;  // a memory file that nothing here reads
constexpr int kPixelsWord = 1;      // the memory file with the pixels

}  // namespace orlu::host
