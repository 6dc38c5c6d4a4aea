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

  // Maps the size that info() reports, but at most the size of the descriptor's file. Returns 0, also if the
  // memory is already mapped. Returns -1 if there is no descriptor, if either size is not positive, or if
  // mapping fails.
  int map(Access access);
  // Unmaps the memory and closes the descriptor. Only info() remains valid.
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
