// The contents of one metadata block: values by section and key in a parameter block, serialised metadata in
// a camera-metadata block. Thread-safe: work on a request may continue after the block's owner has stopped
// waiting.
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
  // Returns a size in bytes: of all values (without their names), or of the serialised metadata.
  size_t size() const;

  // Stores a copy of `size` bytes. Returns -1 for a null name, for null data unless `size` is 0, and for a
  // camera-metadata block.
  int set(const char* section, const char* key, const void* data, size_t size);
  // Copies at most `size` bytes of the value to `data`; the bytes beyond a shorter value are unchanged.
  // Returns -1 if the value is absent, for a null name, and for null data unless `size` is 0.
  int get(const char* section, const char* key, void* data, size_t size) const;
  // Replaces the serialised metadata. Returns -1 for a parameter block, and for null unless `size` is 0.
  int setRaw(const char* bytes, size_t size);

  // Returns copies of a section's values, in the order in which they were first set.
  std::vector<Value> values(const char* section) const;

  // Returns a value as T. If the value is absent or shorter, the missing bytes come from `initial`.
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
