// Appends a line of JSON per finished request, with facts that only an algorithm library knows, to the file
// in ORLU_ALGO_TRACE. Writes nothing if the variable is not set.
#pragma once

#include <cstdio>
#include <memory>
#include <mutex>
#include <string>

#include "algorithm_chain.h"

namespace orlu::standin {

class Trace {
public:
  // Reads ORLU_ALGO_TRACE; later lines are appended to its file.
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
