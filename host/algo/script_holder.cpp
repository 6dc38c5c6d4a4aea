#include "script_holder.h"

namespace orlu::standin {
namespace {

thread_local std::shared_ptr<const AlgoScript> tOwn;

}  // namespace

void ScriptHolder::set(const AlgoScript* script) {
  auto copy = script != nullptr ? std::make_shared<AlgoScript>(*script) : std::make_shared<AlgoScript>();
  std::lock_guard lock(mMutex);
  mScript = std::move(copy);
}

void ScriptHolder::setOwn(const AlgoScript* script) {
  tOwn = script != nullptr ? std::make_shared<const AlgoScript>(*script) : nullptr;
}

std::shared_ptr<const AlgoScript> ScriptHolder::current() const {
  if (tOwn) return tOwn;
  std::lock_guard lock(mMutex);
  return mScript;
}

}  // namespace orlu::standin
