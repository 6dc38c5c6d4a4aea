// Appends a line of JSON per finished request to the file that ORLU_ALGO_TRACE names, with facts that only an
// algorithm library knows. Writes nothing if the variable is not set.
#pragma once

#include <cstdio>
#include <memory>
#include <mutex>
#include <string>

#include "algorithm_chain.h"

namespace orlu::standin {

class Trace {
public:
  // Reads the environment variable; later lines are appended to the file that it names.
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
