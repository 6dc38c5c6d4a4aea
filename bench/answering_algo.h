// The benchmarks' algorithm library, with the file name of the device's library. It stores no parameters,
// computes nothing and calls back at once, so that the benchmarks measure only the code that calls it.
#pragma once

#include "algo_interface.h"

namespace orlu::bench {

// Replaces process(); null restores the default, which calls back at once. No request may be in flight.
using ProcessHandler = void (*)(const AlgoProcessRecord& record);
void setProcessHandler(ProcessHandler handler);

// From now on, the library passes each table that it has filled to `filter`. Null removes the filter.
using TableFilter = void (*)(AlgoInterfaceCallbacks* table);
void setTableFilter(TableFilter filter);

// Calls the callback behind the cookie, on the calling thread, to report that the request is done. Does not
// allocate.
void callBack(uint64_t cookie, uint64_t nativeReq);

// Returns the nativeReq of the last request that the calling thread passed to process().
uint64_t lastNativeRequest();

}  // namespace orlu::bench
