// The probe's only export, AlgoInterfaceEntry(). It calls the same function of the algorithm library behind
// the probe, then replaces the table's callables with wrappers that record each call.
#include "event_recorder.h"
#include "setting.h"

namespace orlu::probe {
namespace {

class Probe {
public:
  // The probe is never destroyed: tables and callbacks report to its recorder until the process ends.
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
  // Returns the library's entry; null if the library can't be opened. The next call then tries again, as the
  // service does without a probe.
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
