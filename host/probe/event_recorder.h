// Writes two events for every call through a watched table: one before and one after it.
#pragma once

#include <functional>
#include <mutex>
#include <set>

#include "call_site.h"
#include "event_file.h"
#include "event_line.h"
#include "pixel_recorder.h"
#include "real_library.h"
#include "table_watch.h"

namespace orlu::probe {

class EventRecorder final : public TableObserver {
public:
  // Reads the settings. If they select a new file for the events, writes the header to this file.
  void open();

  // Finds and opens the real library for a caller of the entry, and records this as one operation.
  RealLibrary load(const void* caller);
  // Records which callables a table offers and which are missing. `entry` is the number of the call
  // that filled in the table.
  void table(uint64_t entry, const AlgoInterfaceCallbacks& table);

  using GetValue = decltype(AlgoMetadataOps::getValue);
  // Returns a getValue that calls `real` and records the size of each value found. To find the size, it calls
  // `real` twice more, with larger memory of its own.
  GetValue measured(GetValue real);

  void before(const WatchedCall& call) noexcept override;
  void after(const WatchedCall& call, const WatchedEnd& end) noexcept override;

private:
  void addCallSite(EventLine& line);
  void introduce(const Module& module);

  EventFile mFile;
  PixelRecorder mPixels{mFile};
  ModuleTable mModules;
  std::mutex mMutex;  // guards mIntroduced
  std::set<const Module*> mIntroduced;
};

}  // namespace orlu::probe
