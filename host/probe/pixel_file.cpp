#include "pixel_file.h"

#include <fcntl.h>
#include <linux/dma-buf.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <vector>

namespace orlu::probe {
namespace {

// Bytes mapped at a time: a 32-bit process lacks address space for several large images.
constexpr uint64_t kWindow = uint64_t{16} << 20;
constexpr size_t kReadBack = size_t{64} << 10;

std::string errorText() {
  return std::generic_category().message(errno);
}

// Tells the kernel that the processor starts or stops reading a hardware buffer. Has no effect on other
// memory, which does not need the call.
void synchronise(int fd, uint64_t edge) {
  dma_buf_sync sync = {};
  sync.flags = DMA_BUF_SYNC_READ | edge;
  ioctl(fd, DMA_BUF_IOCTL_SYNC, &sync);
}

// Only the kernel reads the memory: if a page has disappeared, write() fails, but a read here would crash.
bool writeAll(int file, const uint8_t* memory, uint64_t size) {
  while (size > 0) {
    const ssize_t written = write(file, memory, static_cast<size_t>(size));
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    memory += written;
    size -= static_cast<uint64_t>(written);
  }
  return true;
}

// Returns "" if everything was copied.
std::string copyMemory(int fd, uint64_t size, int file) {
  for (uint64_t done = 0; done < size;) {
    const uint64_t window = std::min(kWindow, size - done);
    void* const memory =
        mmap(nullptr, static_cast<size_t>(window), PROT_READ, MAP_SHARED, fd, static_cast<off_t>(done));
    if (memory == MAP_FAILED) return "can't be mapped: " + errorText();
    const bool isWritten = writeAll(file, static_cast<const uint8_t*>(memory), window);
    std::string problem = isWritten ? "" : "can't be written: " + errorText();
    munmap(memory, static_cast<size_t>(window));
    if (!isWritten) return problem;
    done += window;
  }
  return {};
}

std::array<uint32_t, 256> crcTable() {
  constexpr uint32_t kPolynomial = 0xEDB88320;
  std::array<uint32_t, 256> table = {};
  for (uint32_t byte = 0; byte < table.size(); ++byte) {
    uint32_t value = byte;
    for (int bit = 0; bit < 8; ++bit) value = (value & 1U) != 0 ? kPolynomial ^ (value >> 1U) : value >> 1U;
    table[byte] = value;
  }
  return table;
}

// Computes the CRC from the file, because the memory may still change.
uint32_t crcOf(int file) {
  static const std::array<uint32_t, 256> table = crcTable();
  std::vector<uint8_t> buffer(kReadBack);
  uint32_t crc = ~uint32_t{0};
  off_t place = 0;
  for (ssize_t size = 0; (size = pread(file, buffer.data(), buffer.size(), place)) > 0; place += size) {
    for (ssize_t i = 0; i < size; ++i) {
      crc = table[(crc ^ buffer[static_cast<size_t>(i)]) & 0xFFU] ^ (crc >> 8U);
    }
  }
  return ~crc;
}

}  // namespace

uint64_t memorySize(int fd) {
  struct stat status = {};
  if (fd < 0 || fstat(fd, &status) != 0) return 0;
  if (status.st_size > 0) return static_cast<uint64_t>(status.st_size);
  // Older kernels report the size of hardware buffers and shared memory only through lseek().
  if (S_ISREG(status.st_mode)) return 0;
  const off_t before = lseek(fd, 0, SEEK_CUR);
  const off_t end = lseek(fd, 0, SEEK_END);
  if (before >= 0) lseek(fd, before, SEEK_SET);
  return end > 0 ? static_cast<uint64_t>(end) : 0;
}

WrittenPixels writePixels(int fd, int64_t size, uint64_t mostBytes, const std::string& path) {
  WrittenPixels pixels;
  const uint64_t memory = memorySize(fd);
  if (memory == 0) return {0, 0, fd < 0 ? "no descriptor" : "the descriptor has no memory"};
  if (size <= 0) return {0, 0, "the size is " + std::to_string(size)};
  pixels.size = std::min(memory, static_cast<uint64_t>(size));
  if (pixels.size > mostBytes) return {0, 0, "more bytes than ORLU_PIXELS_BYTES allows"};
  const int file = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  if (file < 0) return {0, 0, "can't create " + path + ": " + errorText()};
  synchronise(fd, DMA_BUF_SYNC_START);
  pixels.problem = copyMemory(fd, pixels.size, file);
  synchronise(fd, DMA_BUF_SYNC_END);
  if (pixels.problem.empty()) {
    pixels.crc = crcOf(file);
  } else {
    unlink(path.c_str());
    pixels.size = 0;
  }
  close(file);
  return pixels;
}

}  // namespace orlu::probe
