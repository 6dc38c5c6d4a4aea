// One image of a request, kept until the request's work is finished. Duplicates the descriptor, so that the
// caller may close the original.
#pragma once

#include "algo_interface.h"
#include "image.h"

namespace orlu::standin {

class Frame {
public:
  enum class Access { kRead, kReadWrite };

  explicit Frame(const AlgoFrameInfo& info);
  Frame(Frame&& other) noexcept;
  Frame& operator=(Frame&&) = delete;
  ~Frame();

  // Maps as much memory as the record reports, but not more than the descriptor has. Returns 0, or -1 if
  // there is no descriptor or memory, or if mapping fails.
  int map(Access access);
  // Releases memory and descriptor. Only the record remains.
  void release();
  // Gets the planes in the mapped memory. Returns false if nothing is mapped or the planes do not fit.
  bool view(ImageView& view) const;

  const AlgoFrameInfo& info() const { return mInfo; }
  uint8_t* memory() const { return static_cast<uint8_t*>(mMemory); }
  size_t capacity() const { return mCapacity; }  // bytes mapped

private:
  AlgoFrameInfo mInfo;
  int mFd = -1;
  void* mMemory = nullptr;
  size_t mCapacity = 0;
};

}  // namespace orlu::standin
