// Puts an observer between a caller and an algorithm library: wrappers report each call, callback and visit
// with its result. Behaviour is unchanged: empty callables stay empty, exceptions are passed on.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "algo_interface.h"

namespace orlu::probe {

// A value of setValue, getValue, setRaw or a visit; raw metadata has neither section nor key.
struct ValueArguments {
  const char* section;
  const char* key;
  const void* data;
  unsigned size;    // bytes of data
  bool isFilledIn;  // the call fills in the data instead of reading it
};

struct CallbackArguments {
  uint64_t cookie;  // the cookie that the caller passed to process()
  const android::hardware::hidl_vec<uint8_t>& data;
  const android::hardware::hidl_vec<uint8_t>& extra;
  const android::hardware::hidl_vec<android::hardware::hidl_handle>& handles;
};

// One call. The arguments are valid only during the call; arguments that the operation lacks are null.
struct WatchedCall {
  std::string_view operation;  // the name of the callable, or "callback", "visit", "entry"
  uint64_t number = 0;         // counts the calls of this process, from 1
  // For a visit, the number of the enclosing call. For a callback, the number of the last process() that
  // passed the callback's cookie.
  uint64_t of = 0;

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
  const int* kind = nullptr;      // argument of createMetadata
  void* const* client = nullptr;  // argument of destroyClient
  void* const* block = nullptr;
};

// The result of a call.
struct WatchedEnd {
  enum Kind { kNothing, kNumber, kHandle, kThrew };

  Kind kind = kNothing;
  int64_t number = 0;      // kNumber
  void* handle = nullptr;  // kHandle
  std::string thrown;      // kThrew: the exception's type
  std::string what;        // kThrew: what() of a std::exception
  int64_t nanoseconds = 0;
};

// The functions are called on the thread of each call, by several threads at a time, and must not throw. An
// observer is never destroyed: tables and late callbacks may report to it until the process ends.
class TableObserver {
public:
  virtual void before(const WatchedCall& call) noexcept = 0;
  virtual void after(const WatchedCall& call, const WatchedEnd& end) noexcept = 0;

protected:
  ~TableObserver() = default;
};

// Returns a table whose callables call the callables of `real` and report to the observer. If a cookie
// points to a function, process() passes the address of a wrapper instead. The wrapper reports the callback
// and calls the function. Wrappers are never freed, so that a late callback still reaches the function.
AlgoInterfaceCallbacks watchedTable(const AlgoInterfaceCallbacks& real, TableObserver& observer);

// Runs `body`, a call to the library outside any table, and reports it. Returns the number of the call.
uint64_t watchCall(TableObserver& observer, const char* operation, const std::function<void()>& body);

// Returns a new number, for a call that begins now.
uint64_t nextCallNumber();

// Returns the names of the callables that the table offers (`offered` is true) or that are empty (false), in
// table order.
std::vector<std::string> callableNames(const AlgoInterfaceCallbacks& table, bool offered);

}  // namespace orlu::probe
