// The calls of visitors, and those that the script puts off.
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
  // Shows the value to the visitor, where the script says. What the visitor returned; 0 for a call put off.
  int visit(const AlgoScript& script, void* block, const AlgoMetadataVisitor& visitor,
            ParameterSet::Value& value);
  // Makes the calls that were put off for this block.
  void callKept(void* block);

private:
  std::mutex mMutex;
  std::multimap<void*, std::function<void()>> mKept;  // by the block
};

}  // namespace orlu::standin
