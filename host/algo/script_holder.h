// The script in force: the calling thread's own, or else the common one. An operation uses the script in
// force at its start; a request uses the one in force when process() was called.
#pragma once

#include <memory>
#include <mutex>

#include "algo_script.h"

namespace orlu::standin {

class ScriptHolder {
public:
  // Starts with the usual behaviour, as set by ORLU_ALGO_DELAY and ORLU_ALGO_ECHO.
  ScriptHolder();
  // Null restores the usual behaviour.
  void set(const AlgoScript* script);
  // Sets the calling thread's script. Null removes it.
  static void setOwn(const AlgoScript* script);
  // Never null.
  std::shared_ptr<const AlgoScript> current() const;

private:
  mutable std::mutex mMutex;
  std::shared_ptr<const AlgoScript> mScript;
};

}  // namespace orlu::standin
