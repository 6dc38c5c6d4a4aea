// Writes the bytes of one image, as laid out in its memory, to a file.
#pragma once

#include <cstdint>
#include <string>

namespace orlu::probe {

struct WrittenPixels {
  uint64_t size = 0;    // bytes in the file
  uint32_t crc = 0;     // their CRC-32
  std::string problem;  // why there is no file; "" if there is one
};

// Returns the size of a descriptor's memory: shared memory, a memory file or a hardware buffer's pixels. 0 if
// it has none or is closed.
uint64_t memorySize(int fd);

// Writes `size` bytes of the descriptor's memory, or all if there are fewer, to a new file at this path,
// unless they exceed `mostBytes`. Leaves no file if the memory can't be mapped or part of it disappears while
// it is read.
WrittenPixels writePixels(int fd, int64_t size, uint64_t mostBytes, const std::string& path);

}  // namespace orlu::probe
