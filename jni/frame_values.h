// A list of one value for each frame of a request, or for some of the frames.
#pragma once

#include <array>
#include <cstddef>
#include <memory>

namespace orlu {

// Uses heap memory only if the capacity exceeds kUsual.
template <typename T>
class FrameValues {
public:
  // Reserves room for `capacity` values, and adds `size` zeros.
  explicit FrameValues(size_t capacity, size_t size = 0)
      : mMore(capacity > kUsual ? std::make_unique<T[]>(capacity) : nullptr), mSize(size) {}

  size_t size() const { return mSize; }
  bool empty() const { return mSize == 0; }
  T* data() { return mMore ? mMore.get() : mUsual.data(); }
  const T* data() const { return mMore ? mMore.get() : mUsual.data(); }
  T& operator[](size_t index) { return data()[index]; }
  const T& operator[](size_t index) const { return data()[index]; }
  // The number of values must not exceed the capacity.
  void push_back(T value) { data()[mSize++] = value; }

private:
  static constexpr size_t kUsual = 16;

  std::array<T, kUsual> mUsual = {};
  std::unique_ptr<T[]> mMore;
  size_t mSize;
};

}  // namespace orlu
