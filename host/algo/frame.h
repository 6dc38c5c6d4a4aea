// One image of a request, kept from process() until its work is done: the frame's record and a duplicate of
// its descriptor, so that the caller may close the original meanwhile.
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

  // Maps the memory behind the descriptor, bounded by its real size. 0, or -1 when there is no descriptor or
  // no memory behind it.
  int map(Access access);
  // Gives memory and descriptor back. Only the record is left.
  void release();
  // The planes in the mapped memory. False when it is not mapped or the record does not fit it.
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
