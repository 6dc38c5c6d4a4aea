// For each finished request, appends a line of JSON to the file that ORLU_ALGO_TRACE names. The line contains
// facts that only an algorithm library knows. Writes nothing if the variable is not set.
#pragma once

#include <cstdio>
#include <memory>
#include <mutex>
#include <string>

#include "algorithm_chain.h"

namespace orlu::standin {

class Trace {
public:
  // Reads ORLU_ALGO_TRACE. If the file name has changed since the last call, opens the new file.
  void open();
  void done(uint64_t nativeReq, const RunReport& report);

private:
  struct FileCloser {
    void operator()(FILE* file) const { std::fclose(file); }
  };

  std::mutex mMutex;
  std::string mPath;
  std::unique_ptr<FILE, FileCloser> mFile;
};

}  // namespace orlu::standin
