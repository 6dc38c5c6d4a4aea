// Writes the bytes of one image, as laid out in its memory, to a file.
#pragma once

#include <cstdint>
#include <string>

namespace orlu::probe {

struct WrittenPixels {
  uint64_t size = 0;    // bytes in the file
  uint32_t crc = 0;     // CRC-32 of the file
  std::string problem;  // why there is no file; "" if there is one
};

// Returns the size in bytes of a descriptor's memory: shared memory, a memory file or a hardware buffer's
// pixels. 0 if the descriptor has no memory or is closed.
uint64_t memorySize(int fd);

// Writes the first `size` bytes of the descriptor's memory, or the whole memory if it is smaller, to a new
// file at `path`. Creates no file if there is no memory, if `size` is not positive, if the file would exceed
// `mostBytes` bytes, or if `path` can't be created or exists. Deletes the new file if the copy fails, for
// example because the memory can't be mapped or partly disappears.
WrittenPixels writePixels(int fd, int64_t size, uint64_t mostBytes, const std::string& path);

}  // namespace orlu::probe
