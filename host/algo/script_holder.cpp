#include "script_holder.h"

namespace orlu::standin {

void ScriptHolder::set(const AlgoScript* script) {
  auto copy = script != nullptr ? std::make_shared<AlgoScript>(*script) : std::make_shared<AlgoScript>();
  std::lock_guard lock(mMutex);
  mScript = std::move(copy);
}

std::shared_ptr<const AlgoScript> ScriptHolder::current() const {
  std::lock_guard lock(mMutex);
  return mScript;
}

}  // namespace orlu::standin
