#include "parameter_files.h"

#include <unistd.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <vector>

namespace orlu::standin {
namespace {

constexpr size_t kChunk = size_t{64} * 1024;

// Continues a CRC-32 (zip's polynomial) over more bytes; `crc` is 0 for the first bytes.
uint32_t updateCrc(uint32_t crc, const uint8_t* bytes, size_t size) {
  crc = ~crc;
  for (size_t i = 0; i < size; ++i) {
    crc ^= bytes[i];
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320U : 0U);
  }
  return ~crc;
}

}  // namespace

int ParameterFiles::read(const AlgoTranslateParamFileRecord& record) {
  Entry entry;
  std::vector<uint8_t> chunk(kChunk);
  while (entry.bytes < record.size) {
    const size_t wanted = std::min<size_t>(kChunk, static_cast<size_t>(record.size - entry.bytes));
    const ssize_t got = pread(record.fd, chunk.data(), wanted, static_cast<off_t>(entry.bytes));
    if (got <= 0) break;
    entry.crc = updateCrc(entry.crc, chunk.data(), static_cast<size_t>(got));
    entry.bytes += got;
  }
  if (entry.bytes == 0) return -1;
  std::lock_guard lock(mMutex);
  mEntries[record.identifier] = entry;
  return 0;
}

std::string ParameterFiles::describe(const std::string& identifier) const {
  std::lock_guard lock(mMutex);
  const auto entry = mEntries.find(identifier);
  if (entry == mEntries.end()) return {};
  char text[48];
  std::snprintf(text, sizeof text, "%" PRId64 " %08" PRIx32, entry->second.bytes, entry->second.crc);
  return text;
}

}  // namespace orlu::standin
