#include "frame.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace orlu::standin {

Frame::Frame(const AlgoFrameInfo& info) : mInfo(info) {
  mInfo.nativeHandle = nullptr;  // the caller's; valid only until process() returns
  if (info.fdCount >= 1 && info.fd[0] >= 0) mFd = fcntl(info.fd[0], F_DUPFD_CLOEXEC, 0);
}

Frame::Frame(Frame&& other) noexcept
    : mInfo(other.mInfo),
      mFd(std::exchange(other.mFd, -1)),
      mMemory(std::exchange(other.mMemory, nullptr)),
      mCapacity(std::exchange(other.mCapacity, 0)) {}

Frame::~Frame() {
  release();
}

void Frame::release() {
  if (mMemory != nullptr) munmap(std::exchange(mMemory, nullptr), std::exchange(mCapacity, 0));
  if (mFd >= 0) close(std::exchange(mFd, -1));
}

int Frame::map(Access access) {
  if (mMemory != nullptr) return 0;
  struct stat status = {};
  if (mFd < 0 || mInfo.fdSize[0] <= 0 || fstat(mFd, &status) != 0 || status.st_size <= 0) return -1;
  const size_t bytes = static_cast<size_t>(
      std::min<uint64_t>(static_cast<uint64_t>(status.st_size), static_cast<uint64_t>(mInfo.fdSize[0])));
  const int protection = access == Access::kRead ? PROT_READ : PROT_READ | PROT_WRITE;
  void* const memory = mmap(nullptr, bytes, protection, MAP_SHARED, mFd, 0);
  if (memory == MAP_FAILED) return -1;
  mMemory = memory;
  mCapacity = bytes;
  return 0;
}

bool Frame::view(ImageView& view) const {
  return mMemory != nullptr && layOut(mInfo, memory(), mCapacity, view);
}

}  // namespace orlu::standin
