// Host stand-in for the container types of HIDL callbacks (libhidlbase.so), with the device's layouts: a
// pointer padded to 64 bits, a size (only hidl_vec), and an ownership flag.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <utility>
#include <vector>

#include <cutils/native_handle.h>

namespace android {
namespace hardware {
namespace details {

template <typename T>
class hidl_pointer {
public:
  hidl_pointer() : mBits(0) {}
  T* get() const { return reinterpret_cast<T*>(static_cast<uintptr_t>(mBits)); }
  void set(T* pointer) { mBits = reinterpret_cast<uintptr_t>(pointer); }

private:
  uint64_t mBits;
};

}  // namespace details

// A vector that owns its elements, except after setToExternal().
template <typename T>
struct hidl_vec {
  hidl_vec() = default;
  hidl_vec(std::initializer_list<T> list) { assign(list.begin(), list.size()); }
  explicit hidl_vec(const std::vector<T>& other) { assign(other.data(), other.size()); }
  hidl_vec(const hidl_vec& other) { assign(other.data(), other.size()); }
  hidl_vec(hidl_vec&& other) noexcept { swap(other); }
  hidl_vec& operator=(hidl_vec other) noexcept {
    swap(other);
    return *this;
  }
  ~hidl_vec() { release(); }

  size_t size() const { return mSize; }
  T* data() { return mBuffer.get(); }
  const T* data() const { return mBuffer.get(); }
  T& operator[](size_t index) { return mBuffer.get()[index]; }
  const T& operator[](size_t index) const { return mBuffer.get()[index]; }
  const T* begin() const { return data(); }
  const T* end() const { return data() + mSize; }

  // Makes the vector refer to the caller's elements, which must outlive it. The vector never deletes them.
  void setToExternal(T* elements, size_t size) {
    release();
    mBuffer.set(elements);
    mSize = static_cast<uint32_t>(size);
    mOwnsBuffer = false;
  }

private:
  void assign(const T* elements, size_t size) {
    T* copy = size == 0 ? nullptr : new T[size];
    for (size_t i = 0; i < size; ++i) copy[i] = elements[i];
    mBuffer.set(copy);
    mSize = static_cast<uint32_t>(size);
    mOwnsBuffer = true;
  }
  void swap(hidl_vec& other) noexcept {
    std::swap(mBuffer, other.mBuffer);
    std::swap(mSize, other.mSize);
    std::swap(mOwnsBuffer, other.mOwnsBuffer);
  }
  void release() {
    if (mOwnsBuffer) delete[] mBuffer.get();
    mBuffer.set(nullptr);
  }

  details::hidl_pointer<T> mBuffer;
  uint32_t mSize = 0;
  bool mOwnsBuffer = true;
};
static_assert(sizeof(hidl_vec<uint8_t>) == 16);

// A borrowed native handle; copies refer to the same handle.
struct hidl_handle {
  hidl_handle() = default;
  hidl_handle(const native_handle_t* handle) { mHandle.set(handle); }  // NOLINT: implicit as on the device

  const native_handle_t* getNativeHandle() const { return mHandle.get(); }
  const native_handle_t* operator->() const { return mHandle.get(); }

private:
  details::hidl_pointer<const native_handle_t> mHandle;
  [[maybe_unused]] bool mOwnsHandle = false;
};
static_assert(sizeof(hidl_handle) == 16);

}  // namespace hardware
}  // namespace android
