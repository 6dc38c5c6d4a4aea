// Shared memory and hardware buffers: real files behind real descriptors.

#include <android/hardware_buffer_jni.h>
#include <android/sharedmem.h>
#include <android/sharedmem_jni.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>
#include <vndk/hardware_buffer.h>

#include "fixtures.h"

namespace orlu {
namespace {

using test::env;

bool isOpen(int fd) {
  return fcntl(fd, F_GETFD) >= 0;
}

void closeJava(jobject object) {
  env()->CallVoidMethod(object, env()->GetMethodID(env()->GetObjectClass(object), "close", "()V"));
  test::expectNoException("close");
}

// The first byte of a mapping that Java made.
uint8_t* mappedByJava(jobject object, const char* method) {
  return static_cast<uint8_t*>(
      env()->GetDirectBufferAddress(test::callObject(object, method, "()Ljava/nio/ByteBuffer;")));
}

TEST(HostMemoryTest, SharesOneFileBetweenJavaAndADuplicate) {
  const test::LocalFrame frame;
  jobject memory = test::newSharedMemory(5000);
  const int own = test::intField(memory, "mFd");
  const int fd = ASharedMemory_dupFromJava(env(), memory);
  ASSERT_GE(fd, 0);
  EXPECT_NE(own, fd);
  EXPECT_EQ(FD_CLOEXEC, fcntl(fd, F_GETFD));
  EXPECT_EQ(5000U, ASharedMemory_getSize(fd));

  uint8_t* const java = mappedByJava(memory, "mapReadWrite");
  java[4999] = 77;
  auto* const native = static_cast<uint8_t*>(mmap(nullptr, 5000, PROT_READ, MAP_SHARED, fd, 0));
  ASSERT_NE(MAP_FAILED, static_cast<void*>(native));
  EXPECT_EQ(77, native[4999]);
  munmap(native, 5000);
  munmap(java, 5000);

  closeJava(memory);
  EXPECT_FALSE(isOpen(own));
  EXPECT_TRUE(isOpen(fd));
  EXPECT_EQ(-1, ASharedMemory_dupFromJava(env(), memory));
  close(fd);
}

TEST(HostMemoryTest, TellsWhatIsNoSharedMemory) {
  const test::LocalFrame frame;
  EXPECT_EQ(-1, ASharedMemory_dupFromJava(env(), nullptr));
  EXPECT_EQ(-1, ASharedMemory_dupFromJava(env(), test::javaInt(3)));
  EXPECT_EQ(0U, ASharedMemory_getSize(-1));
  int ends[2];
  ASSERT_EQ(0, pipe(ends));
  EXPECT_EQ(0U, ASharedMemory_getSize(ends[0]));
  close(ends[0]);
  close(ends[1]);
}

TEST(HostMemoryTest, PutsPixelsBehindTheSecondDescriptorOfAHandle) {
  const test::LocalFrame frame;
  jobject buffer = test::newHardwareBuffer(64, 48, 0x23);
  const native_handle_t* const handle =
      AHardwareBuffer_getNativeHandle(AHardwareBuffer_fromHardwareBuffer(env(), buffer));
  ASSERT_NE(nullptr, handle);
  EXPECT_EQ(2, handle->numFds);
  EXPECT_EQ(4, handle->numInts);
  const int pixels = handle->data[1];
  EXPECT_EQ(64U * 48 * 3 / 2, ASharedMemory_getSize(pixels));
  EXPECT_EQ(std::vector<int>({64, 48, 64, 0x23}), std::vector<int>(handle->data + 2, handle->data + 6));

  uint8_t* const java = mappedByJava(buffer, "mapPixels");
  java[4607] = 88;
  uint8_t read = 0;
  EXPECT_EQ(1, pread(pixels, &read, 1, 4607));
  EXPECT_EQ(88, read);
  munmap(java, 4608);

  const int attributes = handle->data[0];
  closeJava(buffer);
  EXPECT_FALSE(isOpen(attributes));
  EXPECT_FALSE(isOpen(pixels));
}

TEST(HostMemoryTest, TakesAHandleOfAnyWordsOver) {
  const test::LocalFrame frame;
  const int fd = ASharedMemory_create("any", 10);
  jobject buffer = test::newHardwareBuffer(1, {fd, 5, 6});
  const native_handle_t* const handle =
      AHardwareBuffer_getNativeHandle(AHardwareBuffer_fromHardwareBuffer(env(), buffer));
  EXPECT_EQ(1, handle->numFds);
  EXPECT_EQ(2, handle->numInts);
  EXPECT_EQ(std::vector<int>({fd, 5, 6}), std::vector<int>(handle->data, handle->data + 3));
  closeJava(buffer);
  EXPECT_FALSE(isOpen(fd));
}

}  // namespace
}  // namespace orlu
