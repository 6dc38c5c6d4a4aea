// The bytes behind one metadata block: (section, key) -> value for a parameter block, one run of serialised
// metadata for a camera-metadata block. Safe from any thread: a request may still be worked on when the
// block's owner has given up waiting for it.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "algo_interface.h"

namespace orlu::standin {

class ParameterSet {
public:
  struct Value {
    std::string section;
    std::string key;
    std::vector<uint8_t> bytes;
  };

  explicit ParameterSet(int kind) : mKind(kind) {}

  int kind() const { return mKind; }
  // Bytes held, names not counted.
  size_t size() const;

  // Copies `size` bytes in. -1 for a null name, null data with a size, or a camera-metadata block.
  int set(const char* section, const char* key, const void* data, size_t size);
  // Copies at most `size` bytes out; a shorter value leaves the rest of `data` alone. -1 when absent.
  int get(const char* section, const char* key, void* data, size_t size) const;
  // Replaces the contents of a camera-metadata block. -1 for a parameter block or null bytes with a size.
  int setRaw(const char* bytes, size_t size);

  // Copies of a section's values, in the order in which they were first set.
  std::vector<Value> values(const char* section) const;

  // A value read as T. What is absent keeps the initial value, and so do the bytes past a short value.
  template <typename T>
  T read(const char* section, const char* key, T initial) const {
    static_assert(std::is_trivially_copyable_v<T>);
    get(section, key, &initial, sizeof initial);
    return initial;
  }
  template <typename T>
  void write(const char* section, const char* key, const T& value) {
    static_assert(std::is_trivially_copyable_v<T>);
    set(section, key, &value, sizeof value);
  }

private:
  const Value* findLocked(const char* section, const char* key) const;

  const int mKind;
  mutable std::mutex mMutex;
  std::vector<Value> mValues;
  std::map<std::pair<std::string, std::string>, size_t> mIndex;
  std::vector<uint8_t> mRaw;
};

}  // namespace orlu::standin
