// The parameter files that were handed over, by their identifiers: how long each is and its checksum.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>

#include "algo_interface.h"

namespace orlu::standin {

class ParameterFiles {
public:
  // Reads the file behind the record's descriptor, at most record.size bytes from its start. -1 when the
  // size is not positive or nothing can be read; what was known of the identifier stays then.
  int read(const AlgoTranslateParamFileRecord& record);
  // "<bytes> <checksum>", the CRC-32 in eight hexadecimal digits; empty for an unknown identifier.
  std::string describe(const std::string& identifier) const;

private:
  struct Entry {
    int64_t bytes = 0;
    uint32_t crc = 0;
  };
  mutable std::mutex mMutex;
  std::map<std::string, Entry> mEntries;
};

}  // namespace orlu::standin
