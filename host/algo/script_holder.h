// The script in force: the calling thread's own, or else the common one. An operation takes it once, when it
// starts, and keeps to it; a request keeps to the one of its process().
#pragma once

#include <memory>
#include <mutex>

#include "algo_script.h"

namespace orlu::standin {

class ScriptHolder {
public:
  // Null: the usual work.
  void set(const AlgoScript* script);
  // For the calling thread alone. Null: it has none of its own.
  static void setOwn(const AlgoScript* script);
  // Never null.
  std::shared_ptr<const AlgoScript> current() const;

private:
  mutable std::mutex mMutex;
  std::shared_ptr<const AlgoScript> mScript = std::make_shared<AlgoScript>();
};

}  // namespace orlu::standin
