// The probe's only export: an entry that calls the entry of the algorithm library behind the probe.
#include "event_recorder.h"
#include "setting.h"

namespace orlu::probe {
namespace {

class Probe {
public:
  // Never destroyed: tables and callbacks report to it until the process ends.
  static Probe& instance() {
    static Probe* const probe = new Probe();
    return *probe;
  }

  void fill(AlgoInterfaceCallbacks* table, const void* caller) {
    mRecorder.open();
    const RealLibrary::Entry entry = realEntry(caller);
    if (entry == nullptr) return;
    const uint64_t number = watchCall(mRecorder, "entry", [&] { entry(table); });
    if (table == nullptr) return;
    mRecorder.table(number, *table);
    if (!setting("ORLU_VALIDATE").empty()) {
      table->metadataOps.getValue = mRecorder.measured(table->metadataOps.getValue);
    }
    *table = watchedTable(*table, mRecorder);
  }

private:
  // Tries again at each call of the entry until the library opens, as the service does without a probe.
  RealLibrary::Entry realEntry(const void* caller) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mEntry == nullptr) mEntry = mRecorder.load(caller).entry;
    return mEntry;
  }

  EventRecorder mRecorder;
  std::mutex mMutex;
  RealLibrary::Entry mEntry = nullptr;
};

}  // namespace
}  // namespace orlu::probe

extern "C" __attribute__((visibility("default"))) void AlgoInterfaceEntry(
    orlu::AlgoInterfaceCallbacks* table) {
  orlu::probe::Probe::instance().fill(table, __builtin_return_address(0));
}
