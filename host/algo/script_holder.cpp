#include "script_holder.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace orlu::standin {
namespace {

thread_local std::shared_ptr<const AlgoScript> tOwn;

// ORLU_ALGO_DELAY is "MS", "MS-MS" or "MS-MS,unordered"; the second number is the longest delay.
std::shared_ptr<const AlgoScript> scriptOfEnvironment() {
  auto script = std::make_shared<AlgoScript>();
  const char* const delay = std::getenv("ORLU_ALGO_DELAY");
  int shortest = 0;
  int longest = 0;
  const int numbers = delay == nullptr ? 0 : std::sscanf(delay, "%d-%d", &shortest, &longest);
  if (numbers > 0) script->delay = std::chrono::milliseconds(shortest);
  if (numbers > 1 && longest > shortest) script->jitter = std::chrono::milliseconds(longest - shortest);
  script->inOrder = delay == nullptr || std::strstr(delay, ",unordered") == nullptr;
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
