// Puts an observer between a caller and the table of an algorithm library: every callable, the function
// behind a cookie and every visitor is replaced by one that notes the call, makes it, and notes what came
// back. Nothing that passes is changed: an empty callable stays empty, an exception travels on.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "algo_interface.h"

namespace orlu::probe {

// A value that is set, got or visited; raw metadata has neither section nor key.
struct ValueArguments {
  const char* section;
  const char* key;
  const void* data;
  unsigned size;    // bytes behind data
  bool isFilledIn;  // the call fills the data in, rather than taking it
};

// What the library calls back with.
struct CallbackArguments {
  uint64_t cookie;  // the one that the caller of process() handed over
  const android::hardware::hidl_vec<uint8_t>& data;
  const android::hardware::hidl_vec<uint8_t>& extra;
  const android::hardware::hidl_vec<android::hardware::hidl_handle>& handles;
};

// One call, as it was made. Everything in it is the caller's and lives for the call; what the operation does
// not have is null.
struct WatchedCall {
  const char* operation = "";  // the name of the callable, or "callback", "visit"
  uint64_t number = 0;         // counts the calls of this process, from 1
  uint64_t of = 0;  // visit: the call that it belongs to; callback: the last process with its cookie

  const AlgoCreateClientRecord* createClient = nullptr;
  const AlgoInitRecord* init = nullptr;
  const AlgoProcessRecord* process = nullptr;
  const AlgoUninitRecord* uninit = nullptr;
  const AlgoGetDataRecord* getData = nullptr;
  const AlgoFlushRecord* flush = nullptr;
  const AlgoCommandRecord* command = nullptr;
  const AlgoTranslateParamFileRecord* translateParamFile = nullptr;
  const CallbackArguments* callback = nullptr;
  const ValueArguments* value = nullptr;
  const int* kind = nullptr;      // of createMetadata
  void* const* client = nullptr;  // of destroyClient
  void* const* block = nullptr;
};

// How a call ended.
struct WatchedEnd {
  enum Kind { kNothing, kNumber, kHandle, kThrew };

  Kind kind = kNothing;
  int64_t number = 0;      // kNumber
  void* handle = nullptr;  // kHandle
  std::string thrown;      // kThrew: the exception's type, and what() of a std::exception
  std::string what;
  int64_t nanoseconds = 0;
};

// Called on the thread of each call, from several at a time. It must not throw, and outlives every table and
// every cookie: it is never destroyed.
class TableObserver {
public:
  virtual void before(const WatchedCall& call) noexcept = 0;
  virtual void after(const WatchedCall& call, const WatchedEnd& end) noexcept = 0;

protected:
  ~TableObserver() = default;
};

// A table whose callables report to the observer and call those of `real`, which it holds copies of.
//
// The cookie that the library gets in place of the caller's is the address of a function of our own, one for
// each cookie, and never freed: a library may call back late, and the caller's function decides what becomes
// of that.
AlgoInterfaceCallbacks watchedTable(const AlgoInterfaceCallbacks& real, TableObserver& observer);

// Makes a call of the library's that is in no table, and reports it likewise. Returns its number.
uint64_t watchCall(TableObserver& observer, const char* operation, const std::function<void()>& body);

// The number of a call that begins now.
uint64_t nextCallNumber();

// Names of the callables that a table leaves empty (`offered` false) or not, in the order of the table.
std::vector<std::string> callableNames(const AlgoInterfaceCallbacks& table, bool offered);

}  // namespace orlu::probe
