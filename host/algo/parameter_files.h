// Lengths and checksums of the parameter files received, by identifier.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>

#include "algo_interface.h"

namespace orlu::standin {

class ParameterFiles {
public:
  // Reads at most record.size bytes from the start of the record's file. Returns 0, or -1 if the size is not
  // positive or nothing can be read. After a failure, describe() still returns the values of the identifier's
  // previous file.
  int read(const AlgoTranslateParamFileRecord& record);
  // Returns "<bytes> <CRC-32 in eight hexadecimal digits>"; empty for an unknown identifier.
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
