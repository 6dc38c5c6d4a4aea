// Writes what only an algorithm library knows of its work, one line of JSON for each finished request, into
// the file that ORLU_ALGO_TRACE names. Without the variable nothing is written.
#pragma once

#include <cstdio>
#include <memory>
#include <mutex>
#include <string>

#include "algorithm_chain.h"

namespace orlu::standin {

class Trace {
public:
  // Looks at the environment and appends to the file it names from now on.
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
