// The script in force: the calling thread's own, or else the common one. An operation uses the script in
// force at its start; a request uses the script in force when process() was called.
#pragma once

#include <memory>
#include <mutex>

#include "algo_script.h"

namespace orlu::standin {

class ScriptHolder {
public:
  // Starts with the script that ORLU_ALGO_DELAY and ORLU_ALGO_ECHO describe.
  ScriptHolder();
  // Sets the common script. Null sets a default AlgoScript, which ignores the environment variables.
  void set(const AlgoScript* script);
  // Sets the calling thread's script. Null removes it.
  static void setOwn(const AlgoScript* script);
  // Returns the script in force; never null.
  std::shared_ptr<const AlgoScript> current() const;

private:
  mutable std::mutex mMutex;
  std::shared_ptr<const AlgoScript> mScript;
};

}  // namespace orlu::standin
