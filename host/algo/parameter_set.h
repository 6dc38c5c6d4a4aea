// The contents of one metadata block. A parameter block contains values by section and key; a camera-metadata
// block contains serialised metadata. Thread-safe: work on a request may continue after the block's owner has
// stopped waiting.
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
  // Returns the size of all values (without their names) or of the serialised metadata, in bytes.
  size_t size() const;

  // Stores a copy of `size` bytes. Returns -1 if a name is null, if `data` is null and `size` is not 0, or if
  // this is a camera-metadata block.
  int set(const char* section, const char* key, const void* data, size_t size);
  // Copies at most `size` bytes of the value to `data`. If the value is shorter, leaves the rest of `data`
  // unchanged. Returns -1 if the value is absent, a name is null, or `data` is null and `size` is not 0.
  int get(const char* section, const char* key, void* data, size_t size) const;
  // Replaces the serialised metadata. Returns -1 if this is a parameter block, or if `bytes` is null and
  // `size` is not 0.
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
