// The bytes of one image, as they lie in the memory behind its descriptor, in a file.
#pragma once

#include <cstdint>
#include <string>

namespace orlu::probe {

struct WrittenPixels {
  uint64_t size = 0;    // bytes in the file
  uint32_t crc = 0;     // their CRC-32
  std::string problem;  // why there is no file; "" when there is one
};

// How many bytes of memory a descriptor has: of shared memory, a memory file or a hardware buffer's pixels. 0
// when it has none, or is closed.
uint64_t memorySize(int fd);

// Writes what lies behind the descriptor into a new file at this path: `size` bytes, as the record says, or
// as many as there are. Memory that can't be mapped, or of which a part goes while it is read, leaves no
// file.
WrittenPixels writePixels(int fd, int64_t size, uint64_t mostBytes, const std::string& path);

}  // namespace orlu::probe
