// The library's exports: the entry that fills in the tables, and the functions for tests.
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "algo_interface.h"
#include "algo_script.h"
#include "callback_message.h"
#include "java_thread.h"
#include "stand_in.h"

#define EXPORTED extern "C" __attribute__((visibility("default")))

namespace orlu::standin {
namespace {

// Fills in callables that call the stand-in's members. Clears those named in the script's `notOffered`.
class TableFiller {
public:
  explicit TableFiller(const AlgoScript& script) : mScript(script) {}

  template <typename Result, typename... Arguments, typename Member>
  void offer(const char* name, std::function<Result(Arguments...)>& callable, Member member) const {
    callable = nullptr;
    if (mScript.notOffered.count(name) != 0) return;
    callable = [member](Arguments... arguments) { return (StandIn::instance().*member)(arguments...); };
  }

private:
  const AlgoScript& mScript;
};

// Reports calls of operations, but not their callbacks and visits, to the script's observer.
class ScriptObserver : public probe::TableObserver {
public:
  // Never destroyed: tables report to it until the process ends.
  static ScriptObserver& instance() {
    static auto* const observer = new ScriptObserver;
    return *observer;
  }

  void before(const probe::WatchedCall& call) noexcept override {
    if (call.operation != "getValue") pass(call);
  }
  void after(const probe::WatchedCall& call, const probe::WatchedEnd& /*end*/) noexcept override {
    if (call.operation == "getValue") pass(call);
  }

private:
  static void pass(const probe::WatchedCall& call) {
    if (call.of != 0) return;
    const auto script = StandIn::instance().script().current();
    if (script->observer) script->observer(call);
  }
};

void fillMetadataOps(const TableFiller& filler, AlgoMetadataOps& ops) {
  filler.offer("createMetadata", ops.createMetadata, &StandIn::createMetadata);
  filler.offer("destroyMetadata", ops.destroyMetadata, &StandIn::destroyMetadata);
  filler.offer("getSize", ops.getSize, &StandIn::getSize);
  filler.offer("setValue", ops.setValue, &StandIn::setValue);
  filler.offer("getValue", ops.getValue, &StandIn::getValue);
  filler.offer("setRaw", ops.setRaw, &StandIn::setRaw);
  filler.offer("paramAlgoUpdateToSystem", ops.paramAlgoUpdateToSystem, &StandIn::paramAlgoUpdateToSystem);
  filler.offer("paramSystemDownloadToAlgo", ops.paramSystemDownloadToAlgo,
               &StandIn::paramSystemDownloadToAlgo);
}

void fillTable(const TableFiller& filler, AlgoInterfaceCallbacks& table) {
  filler.offer("init", table.init, &StandIn::init);
  filler.offer("process", table.process, &StandIn::process);
  filler.offer("uninit", table.uninit, &StandIn::uninit);
  filler.offer("getData", table.getData, &StandIn::getData);
  filler.offer("flush", table.flush, &StandIn::flush);
  filler.offer("command", table.command, &StandIn::command);
  filler.offer("createClient", table.createClient, &StandIn::createClient);
  filler.offer("destroyClient", table.destroyClient, &StandIn::destroyClient);
  fillMetadataOps(filler, table.metadataOps);
  filler.offer("translateParamFile", table.translateParamFile, &StandIn::translateParamFile);
}

}  // namespace
}  // namespace orlu::standin

using orlu::standin::StandIn;

EXPORTED void AlgoInterfaceEntry(orlu::AlgoInterfaceCallbacks* table) {
  if (table == nullptr) return;
  StandIn::instance().trace().open();
  StandIn::instance().entry();
  const auto script = StandIn::instance().script().current();
  orlu::standin::fillTable(orlu::standin::TableFiller(*script), *table);
  if (script->observer) *table = orlu::probe::watchedTable(*table, orlu::standin::ScriptObserver::instance());
}

EXPORTED void AlgoStandInSetScript(const orlu::standin::AlgoScript* script) {
  StandIn::instance().script().set(script);
}

EXPORTED void AlgoStandInSetThreadScript(const orlu::standin::AlgoScript* script) {
  orlu::standin::ScriptHolder::setOwn(script);
}

EXPORTED void AlgoStandInCount(orlu::standin::AlgoCounts* counts) {
  *counts = StandIn::instance().count();
}

EXPORTED void AlgoStandInSendCallback(uint64_t callbackCookie, const uint8_t* data, uint32_t size,
                                      const native_handle_t* const* handles, uint32_t handleCount,
                                      bool attachThread) {
  const std::vector<uint8_t> message(data, data + size);
  const std::vector<android::hardware::hidl_handle> borrowed(handles, handles + handleCount);
  std::thread([&] {
    if (attachThread) orlu::standin::attachToJava();
    orlu::standin::sendCallback(callbackCookie, message, borrowed);
    orlu::standin::detachFromJava();
  }).join();
}

EXPORTED bool AlgoStandInWaitIdle(int milliseconds) {
  return StandIn::instance().waitIdle(std::chrono::milliseconds(milliseconds));
}
