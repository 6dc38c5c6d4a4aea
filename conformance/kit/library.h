// The algorithm library under check, opened once in the check's process.
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

// Notes of each call what the checks look at, and which operation each thread is in.
class CallObserver : public probe::TableObserver {
public:
  void before(const probe::WatchedCall& call) noexcept override;
  void after(const probe::WatchedCall& call, const probe::WatchedEnd& end) noexcept override;

  // Exceptions that left a callable: its name, the exception's type and text.
  std::vector<std::string> thrown() const;
  double longestProcessMilliseconds() const { return static_cast<double>(mLongestProcess) / 1e6; }
  // Asked after each operation on its thread; "" or what is wrong with the thread.
  std::string (*inspectThread)() = nullptr;

private:
  mutable std::mutex mMutex;
  std::vector<std::string> mThrown;
  std::atomic<int64_t> mLongestProcess{0};
};

// Room for a table, and for an entry that writes behind it: a fault that the check of the layout finds, while
// the others go on.
struct SpaciousTable {
  AlgoInterfaceCallbacks table;
  unsigned char behind[512];
};

class Library {
public:
  // Opens it on first use, with everything bound at once. Null when that fails; then `error` says why. The
  // process's own table is filled when it is first asked for.
  static Library* open(std::string* error = nullptr);

  // Calls the entry.
  void fill(AlgoInterfaceCallbacks* table) const;
  // The process's own table, watched. An exception out of it is noted; see call().
  const AlgoInterfaceCallbacks& table();
  // The same unwatched, where nothing of this side's may stand between.
  const AlgoInterfaceCallbacks& bareTable();
  // False when nothing of the process's own table is filled in, or nothing of it can be believed.
  bool isWhole();
  CallObserver& observer() const { return *mObserver; }

private:
  using Entry = void (*)(AlgoInterfaceCallbacks*);

  explicit Library(Entry entry) : mEntry(entry), mObserver(new CallObserver()) {}

  Entry mEntry;
  std::once_flag mFilled;
  CallObserver* mObserver;  // never destroyed
  bool mIsWhole = false;
  SpaciousTable* mSpacious = new SpaciousTable();  // never destroyed: what is no table can't be taken down
  AlgoInterfaceCallbacks mTable;
};

// Calls a callable as the service does: one that is empty or throws counts as `failure`.
template <typename Result, typename... Parameters, typename... Arguments>
Result call(Result failure, const std::function<Result(Parameters...)>& callable, Arguments&&... arguments) {
  if (!callable) return failure;
  try {
    return callable(arguments...);
  } catch (...) {
    return failure;
  }
}

template <typename... Arguments>
void callPlain(const std::function<void(void*)>& callable, Arguments&&... arguments) {
  if (!callable) return;
  try {
    callable(arguments...);
  } catch (...) {
  }
}

// Why a check is skipped that has no library to work with. The command fails then, whatever else it checked.
constexpr char kUnusable[] = "the library can't be used; the checks loading and layout say why";

// Opens the library for a check, or skips it.
#define OPEN_LIBRARY(library)               \
  Library* const library = Library::open(); \
  if (library == nullptr || !library->isWhole()) GTEST_SKIP() << kUnusable

}  // namespace orlu::conform
