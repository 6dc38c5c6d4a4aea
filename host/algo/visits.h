// Calls visitors, immediately or later, according to the script.
#pragma once

#include <functional>
#include <map>
#include <mutex>

#include "algo_interface.h"
#include "algo_script.h"
#include "parameter_set.h"

namespace orlu::standin {

class Visits {
public:
  // Passes the value to the visitor as scripted: now, on another thread, or later. Returns the visitor's
  // result; 0 for a postponed call.
  int visit(const AlgoScript& script, void* block, const AlgoMetadataVisitor& visitor,
            ParameterSet::Value& value);
  // Makes the calls that were postponed for this block.
  void callKept(void* block);

private:
  std::mutex mMutex;
  std::multimap<void*, std::function<void()>> mKept;  // by block
};

}  // namespace orlu::standin
