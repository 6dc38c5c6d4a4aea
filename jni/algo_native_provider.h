// Loads the algorithm interface library, once for the process, and fills in tables of its operations.
#pragma once

#include <atomic>
#include <mutex>

#include "algo_interface.h"

namespace orlu {

class AlgoNativeProvider {
public:
  // The one provider, made on first use (from any thread) and never destroyed. Whoever is first opens the
  // library as the constructor does; nobody waits for that.
  static AlgoNativeProvider* getInstance();

  // Opens the library, by filling in the provider's own table.
  AlgoNativeProvider();
  AlgoNativeProvider(const AlgoNativeProvider&) = delete;
  AlgoNativeProvider& operator=(const AlgoNativeProvider&) = delete;
  virtual ~AlgoNativeProvider() = default;

  // Empties the caller's table and has the library fill it in. False, with the reason logged and the table
  // left empty, when there is no table, no library or no entry, or when the entry throws. From any thread:
  // clients are made on several, and the library's entry may make one itself.
  bool initAlgoInterface(AlgoInterfaceCallbacks* table);

private:
  using Entry = void (*)(AlgoInterfaceCallbacks*);

  // For getInstance(): a provider that has not opened the library yet.
  enum Unopened { kUnopened };
  explicit AlgoNativeProvider(Unopened) {}

  // The library's entry, which is looked up anew each time; null with the reason logged. Opens the library.
  Entry findEntry();

  // Null until the library is open. It is never closed: the callables in every client's table, and the
  // library's threads that call back, run its code until the process ends.
  void* mLibrary = nullptr;
  Entry mEntry = nullptr;             // as the last look-up found it
  AlgoInterfaceCallbacks mCallbacks;  // nobody reads it: each client has a table of its own
  std::mutex mMutex;                  // guards the handle and the entry; free while the entry runs
  std::atomic<bool> mIsOpened{false};
};

}  // namespace orlu
