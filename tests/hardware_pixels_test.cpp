// Tests of the recorder's mapping of hardware buffers: the mapped bytes, the reasons for refusals, and the
// resources that a mapping holds.

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "fixtures.h"
#include "process_figures.h"

namespace orlu {
namespace {

constexpr int kRgba = 1;
constexpr int kRaw16 = 0x20;
constexpr int kBlob = 0x21;
constexpr int kYuv = 0x23;

#define PIXELS "Lcom/orlu/orlu3rdalgoservice/record/MappedPixels;"
jobject lock(jobject buffer) {
  return test::callStatic("com/orlu/orlu3rdalgoservice/record/HardwarePixels", "lock",
                          "(Landroid/hardware/HardwareBuffer;)" PIXELS, buffer);
}

void close(jobject closeable) {
  test::call(closeable, "close", "()V");
}

struct Bytes {
  uint8_t* start;
  size_t size;
};

Bytes bytesOf(jobject byteBuffer) {
  return {static_cast<uint8_t*>(test::env()->GetDirectBufferAddress(byteBuffer)),
          static_cast<size_t>(test::env()->GetDirectBufferCapacity(byteBuffer))};
}

Bytes lockedBytes(jobject pixels) {
  return bytesOf(test::callObject(pixels, "bytes", "()Ljava/nio/ByteBuffer;"));
}

// Locks and unlocks the buffer. Returns the text of the exception thrown, or "".
std::string refusal(jobject buffer) {
  try {
    close(lock(buffer));
  } catch (const std::runtime_error& e) {
    return e.what();
  }
  return "";
}

jobject paddedBuffer(int format, int width, int height, int rowBytes, int size) {
  const int pixels = memfd_create("padded", MFD_CLOEXEC);
  const bool isMade = ftruncate(pixels, size) == 0;
  EXPECT_TRUE(isMade);
  for (int i = 0; i < size; ++i) {
    const auto byte = static_cast<uint8_t>(i % 251);
    EXPECT_EQ(pwrite(pixels, &byte, 1, i), 1);
  }
  return test::callStatic(
      "android/hardware/HardwareBuffer", "fromHandle", "(IIII[I)Landroid/hardware/HardwareBuffer;", width,
      height, format, 2,
      test::javaInts({memfd_create("attributes", MFD_CLOEXEC), pixels, width, height, rowBytes, format}));
}

int mappings() {
  int count = 0;
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    if (line.find("hardware-buffer-pixels") != std::string::npos) ++count;
  }
  return count;
}

TEST(HardwarePixels, AreTheBytesOfTheBuffer) {
  const struct {
    int format;
    int width;
    int height;
    size_t size;
  } cases[] = {
      {kRgba,  50,   10, 2000 },
      {kRaw16, 50,   10, 1000 },
      {kBlob,  4321, 1,  4321 },
      {kYuv,   64,   48, 4608 },
      {kYuv,   64,   47, 4544 },
      {kYuv,   4096, 3,  20480},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.format);
    const test::LocalFrame frame;
    jobject buffer = test::newHardwareBuffer(c.width, c.height, c.format);
    jobject mapping = test::callObject(buffer, "mapPixels", "()Ljava/nio/ByteBuffer;");
    const Bytes written = bytesOf(mapping);
    ASSERT_EQ(written.size, c.size);
    for (size_t i = 0; i < written.size; ++i) written.start[i] = static_cast<uint8_t>(i % 251);
    jobject pixels = lock(buffer);
    const Bytes read = lockedBytes(pixels);
    ASSERT_EQ(read.size, c.size);
    EXPECT_TRUE(std::equal(read.start, read.start + read.size, written.start));
    close(pixels);
    test::callStatic("android/os/SharedMemory", "unmap", "(Ljava/nio/ByteBuffer;)V", mapping);
    close(buffer);
  }
}

TEST(HardwarePixels, HaveThePaddingOfTheirRows) {
  const struct {
    int format;
    int rowBytes;
    size_t size;
  } cases[] = {
      {kRgba,  256, 2560},
      {kRaw16, 128, 1280},
      {kYuv,   64,  960 },
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.format);
    const test::LocalFrame frame;
    jobject buffer = paddedBuffer(c.format, 50, 10, c.rowBytes, static_cast<int>(c.size));
    jobject pixels = lock(buffer);
    const Bytes read = lockedBytes(pixels);
    ASSERT_EQ(read.size, c.size);
    EXPECT_EQ(read.start[read.size - 1], (c.size - 1) % 251);
    close(pixels);
    close(buffer);
    jobject small = paddedBuffer(c.format, 50, 10, c.rowBytes, static_cast<int>(c.size) - 1);
    EXPECT_NE(refusal(small).find("can't be locked for reading: error -22"), std::string::npos);
    close(small);
  }
}

TEST(HardwarePixels, AreRefusedWithAReason) {
  const test::LocalFrame frame;
  jobject closed = test::newHardwareBuffer(50, 10, kRgba);
  close(closed);
  const int before = test::openDescriptors();
  jobject empty = test::newHardwareBuffer(0, {});
  jobject textOnly = test::newHardwareBuffer(0, {1, 2, 3, 4, 5, 6});
  jobject opaque = paddedBuffer(0x24, 50, 10, 64, 960);
  for (const auto& [buffer, reason] : std::vector<std::pair<jobject, std::string>>{
           {nullptr,  "the hardware buffer is closed"         },
           {closed,   "the hardware buffer is closed"         },
           {empty,    "can't be locked for reading: error -22"},
           {textOnly, "can't be locked for reading: error -22"},
           {opaque,   "can't be locked for reading: error -22"},
  }) {
    EXPECT_NE(refusal(buffer).find(reason), std::string::npos) << refusal(buffer);
  }
  for (jobject buffer : {empty, textOnly, opaque}) close(buffer);
  EXPECT_EQ(test::openDescriptors(), before);
}

// A locked buffer stays alive until it is unlocked.
TEST(HardwarePixels, HoldTheBufferUntilTheyAreClosed) {
  const test::LocalFrame frame;
  close(lock(paddedBuffer(kRgba, 50, 10, 200, 2000)));  // initialises everything that is loaded once
  const int descriptors = test::openDescriptors();
  const int maps = mappings();
  jobject buffer = test::newHardwareBuffer(50, 10, kRgba);
  jobject first = lock(buffer);
  jobject second = lock(buffer);
  EXPECT_EQ(mappings(), maps + 1);
  close(buffer);
  EXPECT_EQ(test::openDescriptors(), descriptors + 2);
  close(first);
  close(first);
  EXPECT_EQ(lockedBytes(second).start[1999], 0);
  close(second);
  EXPECT_EQ(test::openDescriptors(), descriptors);
  EXPECT_EQ(mappings(), maps);
}

}  // namespace
}  // namespace orlu
