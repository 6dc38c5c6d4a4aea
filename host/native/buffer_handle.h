// The native handle of this layer's hardware buffers: two descriptors, then integers.
#pragma once

namespace orlu::host {

constexpr int kAttributesWord = 0;  // a memory file of no meaning here
constexpr int kPixelsWord = 1;      // the memory file that holds the pixels

}  // namespace orlu::host
