// The algorithm library under test, opened once per check process.
#pragma once

#include <atomic>
#include <mutex>
#include <string>
#include <type_traits>
#include <vector>

#include "algo_interface.h"
#include "check.h"
#include "table_watch.h"

namespace orlu::conform {

// Records the faults of calls, the longest time of process(), and the current operation of each thread.
class CallObserver : public probe::TableObserver {
public:
  void before(const probe::WatchedCall& call) noexcept override;
  void after(const probe::WatchedCall& call, const probe::WatchedEnd& end) noexcept override;

  // Returns a text for each faulty call: the callable's name, followed by the exception that it threw (type
  // and text) or by the result of inspectThread.
  std::vector<std::string> thrown() const;
  double longestProcessMilliseconds() const { return static_cast<double>(mLongestProcess) / 1e6; }
  // If set, runs after each operation that did not throw, on the operation's thread. Returns "" or describes
  // a fault of the thread.
  std::string (*inspectThread)() = nullptr;

private:
  mutable std::mutex mMutex;
  std::vector<std::string> mThrown;
  std::atomic<int64_t> mLongestProcess{0};
};

// A table with spare bytes behind it, for a library whose entry writes past the table. The check `layout`
// reports this fault; the other checks still run.
struct SpaciousTable {
  AlgoInterfaceCallbacks table;
  unsigned char behind[512];
};

class Library {
public:
  // Opens the library on first use, with RTLD_NOW. On failure returns null and sets `error`.
  static Library* open(std::string* error = nullptr);

  // Calls the library's entry.
  void fill(AlgoInterfaceCallbacks* table) const;
  // This process's own table, filled on first use. observer() records the exceptions of the table's
  // callables, but does not catch them; call() catches them.
  const AlgoInterfaceCallbacks& table();
  // The same table without the observer, for calls that must reach the library directly.
  const AlgoInterfaceCallbacks& bareTable();
  // False if the process's own table is empty or invalid.
  bool isWhole();
  CallObserver& observer() const { return *mObserver; }

private:
  using Entry = void (*)(AlgoInterfaceCallbacks*);

  explicit Library(Entry entry) : mEntry(entry), mObserver(new CallObserver()) {}

  Entry mEntry;
  std::once_flag mFilled;
  CallObserver* mObserver;  // never destroyed
  bool mIsWhole = false;
  SpaciousTable* mSpacious = new SpaciousTable();  // never destroyed: destroying an invalid table would crash
  AlgoInterfaceCallbacks mTable;
};

// Calls a callable as the service does. Returns `failure` if the callable is empty or throws.
template <typename Result, typename... Parameters, typename... Arguments>
Result call(Result failure, const std::function<Result(Parameters...)>& callable, Arguments&&... arguments) {
  if (!callable) return failure;
  try {
    return callable(arguments...);
  } catch (...) {
    return failure;
  }
}

// Like call(), for a callable without a result.
template <typename... Arguments>
void callPlain(const std::function<void(void*)>& callable, Arguments&&... arguments) {
  if (!callable) return;
  try {
    callable(arguments...);
  } catch (...) {
  }
}

// Reason for skipping a check. ./run conform fails if any check is skipped for this reason.
constexpr char kUnusable[] = "the library can't be used; see the checks loading and layout";

// Opens the library for a check, or skips the check.
#define OPEN_LIBRARY(library)               \
  Library* const library = Library::open(); \
  if (library == nullptr || !library->isWhole()) GTEST_SKIP() << kUnusable

}  // namespace orlu::conform
