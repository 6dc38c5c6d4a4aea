// Writes every operation as one line of JSON into the file that ORLU_ALGO_TRACE names. Without the variable
// nothing is written.
#pragma once

#include <cstdio>
#include <memory>
#include <mutex>
#include <string>

#include <nlohmann/json_fwd.hpp>

#include "algo_interface.h"
#include "algorithm_chain.h"

namespace orlu::standin {

class Trace {
public:
  // Looks at the environment and appends to the file it names from now on.
  void open();

  void operation(const char* name);
  void init(const AlgoInitRecord& record);
  void uninit(const AlgoUninitRecord& record);
  void process(const AlgoProcessRecord& record);
  void getData(const AlgoGetDataRecord& record);
  void command(const AlgoCommandRecord& record);
  void translateParamFile(const AlgoTranslateParamFileRecord& record);
  void block(const char* operation, const void* block);
  void setValue(const void* block, const char* section, const char* key, const void* data, unsigned size);
  void done(uint64_t nativeReq, const RunReport& report);

private:
  struct FileCloser {
    void operator()(FILE* file) const { std::fclose(file); }
  };

  bool isOn() const;
  void write(const nlohmann::ordered_json& line);

  mutable std::mutex mMutex;
  std::string mPath;
  std::unique_ptr<FILE, FileCloser> mFile;
};

}  // namespace orlu::standin
