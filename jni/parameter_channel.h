// Typed access to a request's parameter set: values of trivially copyable types under a section and a key.
// The width of a value is part of the contract with the algorithm library, so the caller always names the
// type:
//
//   channel.set<int32_t>(kControl, "film_size", 1);
//   const auto scores = channel.get<std::array<double, 50>>(kParameter, "frame_clarity_score");
#pragma once

#include <type_traits>

#include "algo_native_context.h"

namespace orlu {

class ParameterChannel {
public:
  // Borrows both arguments; use the channel on the creating thread only. If `block` is null, nothing is
  // stored, and reads return the initial value.
  ParameterChannel(const AlgoNativeContext& context, void* block)
      : mTable(&context.table()), mEnv(mTable->environment()), mBlock(block) {}

  void* block() const { return mBlock; }

  // Returns the value, or `initial` if the block lacks the value or the operation could not be called. A
  // stored value that is shorter than T replaces only the first bytes of `initial`. Does not check the
  // status: bytes that getValue wrote are returned even if getValue failed.
  template <typename T>
  T get(const char* section, const char* key, std::common_type_t<T> initial = T()) const {
    static_assert(std::is_trivially_copyable_v<T> && !std::is_pointer_v<T>);
    getBytes(section, key, &initial, sizeof initial);
    return initial;
  }

  // Stores sizeof(T) bytes. The caller names T; it is never deduced.
  template <typename T>
  int set(const char* section, const char* key, const std::common_type_t<T>& value) const {
    static_assert(std::is_trivially_copyable_v<T> && !std::is_pointer_v<T>);
    return setBytes(section, key, &value, sizeof value);
  }

  // Copy any number of bytes. Return the status of the algorithm library (0 for success), or -1 if the
  // operation could not be called or threw.
  int getBytes(const char* section, const char* key, void* data, unsigned size) const {
    return mTable->getValue(mEnv, mBlock, section, key, data, size);
  }
  int setBytes(const char* section, const char* key, const void* data, unsigned size) const {
    // The algorithm library copies the bytes and never changes them, although its parameter is not const.
    return mTable->setValue(mEnv, mBlock, section, key, const_cast<void*>(data), size);
  }

private:
  const AlgoGuardedTable* mTable;
  JNIEnv* mEnv;  // environment of the creating thread; cached to save one call into the VM per access
  void* mBlock;
};

}  // namespace orlu
