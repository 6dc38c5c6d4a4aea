// The algorithm library of the benchmarks, under the device's name: it keeps nothing, computes nothing, and
// answers at once, so that what is measured is the library in front of it.
#pragma once

#include "algo_interface.h"

namespace orlu::bench {

// What process() does; null: call back before it returns. Set while no request is under way.
using ProcessHandler = void (*)(const AlgoProcessRecord& record);
void setProcessHandler(ProcessHandler handler);

// What is done with each table that is filled in from now on; null: nothing.
using TableFilter = void (*)(AlgoInterfaceCallbacks* table);
void setTableFilter(TableFilter filter);

// Tells that a request is done, on the calling thread, without taking memory.
void callBack(uint64_t cookie, uint64_t nativeReq);

// The id that the last request handed to process() has in the library.
uint64_t lastNativeRequest();

}  // namespace orlu::bench
