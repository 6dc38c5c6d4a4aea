#include "script_holder.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace orlu::standin {
namespace {

thread_local std::shared_ptr<const AlgoScript> tOwn;

// ORLU_ALGO_DELAY has the form MS[-MS][,unordered]; the second number is the longest delay.
std::shared_ptr<const AlgoScript> scriptOfEnvironment() {
  auto script = std::make_shared<AlgoScript>();
  const char* const delay = std::getenv("ORLU_ALGO_DELAY");
  if (delay != nullptr) {
    char* rest = nullptr;
    const int64_t shortest = std::strtol(delay, &rest, 10);
    const int64_t longest = *rest == '-' ? std::strtol(rest + 1, &rest, 10) : shortest;
    script->delay = std::chrono::milliseconds(shortest);
    script->jitter = std::chrono::milliseconds(std::max<int64_t>(0, longest - shortest));
    script->inOrder = std::strcmp(rest, ",unordered") != 0;
  }
  script->echoFlag = std::getenv("ORLU_ALGO_ECHO") != nullptr;
  return script;
}

}  // namespace

ScriptHolder::ScriptHolder() : mScript(scriptOfEnvironment()) {}

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
