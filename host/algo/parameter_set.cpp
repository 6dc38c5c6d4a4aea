#include "parameter_set.h"

#include <algorithm>
#include <cstring>

namespace orlu::standin {

size_t ParameterSet::size() const {
  std::lock_guard lock(mMutex);
  size_t total = mRaw.size();
  for (const Value& value : mValues) total += value.bytes.size();
  return total;
}

int ParameterSet::set(const char* section, const char* key, const void* data, size_t size) {
  if (mKind != kParameterBlock || section == nullptr || key == nullptr) return -1;
  if (data == nullptr && size != 0) return -1;
  const auto* first = static_cast<const uint8_t*>(data);
  std::vector<uint8_t> bytes(first, first + size);
  std::lock_guard lock(mMutex);
  const auto [entry, isNew] = mIndex.try_emplace({section, key}, mValues.size());
  if (isNew) mValues.push_back({section, key, {}});
  mValues[entry->second].bytes = std::move(bytes);
  return 0;
}

int ParameterSet::get(const char* section, const char* key, void* data, size_t size) const {
  if (section == nullptr || key == nullptr || (data == nullptr && size != 0)) return -1;
  std::lock_guard lock(mMutex);
  const Value* const value = findLocked(section, key);
  if (value == nullptr) return -1;
  const size_t count = std::min(size, value->bytes.size());
  if (count != 0) std::memcpy(data, value->bytes.data(), count);
  return 0;
}

int ParameterSet::setRaw(const char* bytes, size_t size) {
  if (mKind != kCameraMetadataBlock || (bytes == nullptr && size != 0)) return -1;
  const auto* first = reinterpret_cast<const uint8_t*>(bytes);
  std::vector<uint8_t> raw(first, first + size);
  std::lock_guard lock(mMutex);
  mRaw = std::move(raw);
  return 0;
}

std::vector<ParameterSet::Value> ParameterSet::values(const char* section) const {
  std::lock_guard lock(mMutex);
  std::vector<Value> found;
  std::copy_if(mValues.begin(), mValues.end(), std::back_inserter(found),
               [section](const Value& value) { return value.section == section; });
  return found;
}

const ParameterSet::Value* ParameterSet::findLocked(const char* section, const char* key) const {
  const auto entry = mIndex.find({section, key});
  return entry == mIndex.end() ? nullptr : &mValues[entry->second];
}

}  // namespace orlu::standin
