// Loads the algorithm interface library, once for the process, and fills in tables of its operations.
#pragma once

#include <mutex>

#include "algo_interface.h"

namespace orlu {

class AlgoNativeProvider {
public:
  // The one provider, made on first use (from any thread) and never destroyed.
  static AlgoNativeProvider* getInstance();

  // Opens the library by filling in a table of its own.
  AlgoNativeProvider();
  AlgoNativeProvider(const AlgoNativeProvider&) = delete;
  AlgoNativeProvider& operator=(const AlgoNativeProvider&) = delete;
  virtual ~AlgoNativeProvider() = default;

  // Empties the caller's table and has the library fill it in. False, with the reason logged and the table
  // left empty, when there is no table, no library or no entry. From any thread: clients are made on several.
  bool initAlgoInterface(AlgoInterfaceCallbacks* table);

private:
  using Entry = void (*)(AlgoInterfaceCallbacks*);

  std::mutex mMutex;  // guards the two below
  // Null until the library is open. It is never closed: the callables in every client's table, and the
  // library's threads that call back, run its code until the process ends.
  void* mLibrary = nullptr;
  Entry mEntry = nullptr;
  AlgoInterfaceCallbacks mCallbacks;
};

}  // namespace orlu
