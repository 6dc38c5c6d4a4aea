#include "algo.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace orlu::test {
namespace {

// Returns a function of the stand-in. If the tested code has opened the stand-in, dlopen() does not load it
// again.
template <typename Function>
Function standInFunction(const char* name) {
  void* const library = dlopen("liborlu.vac.interface.so", RTLD_NOW);
  void* const function = library == nullptr ? nullptr : dlsym(library, name);
  if (function == nullptr) {
    std::fprintf(stderr, "%s\n", dlerror());
    std::abort();
  }
  return reinterpret_cast<Function>(function);
}

}  // namespace

void setScript(const standin::AlgoScript* script) {
  standInFunction<standin::SetScriptFunction>("AlgoStandInSetScript")(script);
}

void setThreadScript(const standin::AlgoScript* script) {
  static const auto setOwn = standInFunction<standin::SetScriptFunction>("AlgoStandInSetThreadScript");
  setOwn(script);
}

Algo::Algo() {
  use();
}

Algo::~Algo() {
  waitIdle(15'000);
  setScript(nullptr);
}

void Algo::use() {
  standin::AlgoScript observed = script;
  observed.observer = [this, own = script.observer](const probe::WatchedCall& call) {
    record(call);
    if (own) own(call);
  };
  setScript(&observed);
}

void Algo::record(const probe::WatchedCall& call) {
  RecordedCall recorded;
  recorded.operation = call.operation;
  if (const probe::ValueArguments* const value = call.value) {
    const auto* const bytes = static_cast<const uint8_t*>(value->data);
    if (value->section != nullptr) recorded.section = value->section;
    if (value->key != nullptr) recorded.key = value->key;
    if (bytes != nullptr) recorded.bytes.assign(bytes, bytes + value->size);
  }
  const std::lock_guard<std::mutex> lock(mMutex);
  mCalls.push_back(std::move(recorded));
}

std::vector<RecordedCall> Algo::calls() const {
  const std::lock_guard<std::mutex> lock(mMutex);
  return mCalls;
}

std::string Algo::operations() const {
  std::string names;
  for (const RecordedCall& call : calls()) names += (names.empty() ? "" : " ") + call.operation;
  return names;
}

void Algo::forget() {
  const std::lock_guard<std::mutex> lock(mMutex);
  mCalls.clear();
}

standin::AlgoCounts Algo::counts() {
  standin::AlgoCounts counts;
  standInFunction<standin::CountFunction>("AlgoStandInCount")(&counts);
  return counts;
}

bool Algo::waitIdle(int milliseconds) {
  return standInFunction<standin::WaitIdleFunction>("AlgoStandInWaitIdle")(milliseconds);
}

void Algo::sendCallback(uint64_t cookie, const std::vector<uint8_t>& data,
                        const std::vector<const native_handle_t*>& handles, bool attachThread) {
  standInFunction<standin::SendCallbackFunction>("AlgoStandInSendCallback")(
      cookie, data.data(), static_cast<uint32_t>(data.size()), handles.data(),
      static_cast<uint32_t>(handles.size()), attachThread);
}

}  // namespace orlu::test
