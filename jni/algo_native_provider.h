// Loads the algorithm library once per process and fills in tables of its operations.
#pragma once

#include <atomic>
#include <mutex>

#include "algo_interface.h"

namespace orlu {

class AlgoNativeProvider {
public:
  // Returns the shared provider, on any thread. The first call creates it, opens the library and fills in the
  // provider's own table; other calls do not wait until the library is open. The provider is never destroyed.
  static AlgoNativeProvider* getInstance();

  // Opens the library and fills in the provider's own table.
  AlgoNativeProvider();
  AlgoNativeProvider(const AlgoNativeProvider&) = delete;
  AlgoNativeProvider& operator=(const AlgoNativeProvider&) = delete;
  virtual ~AlgoNativeProvider() = default;

  // Clears the caller's table and lets the library fill it in. Returns false, logs the reason and leaves the
  // table empty if the table is null, the library or its entry is missing, or the entry throws. Safe from any
  // thread: several threads create clients, and the library's entry may create one itself.
  bool initAlgoInterface(AlgoInterfaceCallbacks* table);

private:
  using Entry = void (*)(AlgoInterfaceCallbacks*);

  // For getInstance(): creates a provider without opening the library.
  enum Unopened { kUnopened };
  explicit AlgoNativeProvider(Unopened) {}

  // Opens the library if it is not open yet, and looks up its entry each time. On failure, logs the reason
  // and returns null.
  Entry findEntry();

  // Null until the library is open. The library is never closed: its own callback threads, and the callables
  // in clients' tables, run its code until the process ends.
  void* mLibrary = nullptr;
  Entry mEntry = nullptr;             // result of the last lookup
  AlgoInterfaceCallbacks mCallbacks;  // never read: each client has its own table
  std::mutex mMutex;                  // guards the handle and the entry; not held while the entry runs
  std::atomic<bool> mIsOpened{false};
};

}  // namespace orlu
