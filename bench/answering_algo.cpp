#include "answering_algo.h"

#include <atomic>

#include "answering_table.h"

namespace orlu::bench {
namespace {

int gToken = 0;  // its address is the handle of every client and block

std::atomic<ProcessHandler> gHandler{nullptr};
std::atomic<TableFilter> gFilter{nullptr};
thread_local uint64_t gLastNativeRequest = 0;

int process(const AlgoProcessRecord& record) {
  gLastNativeRequest = record.nativeReq;
  if (const ProcessHandler handler = gHandler) {
    handler(record);
  } else {
    callBack(record.callbackCookie, record.nativeReq);
  }
  return 0;
}

}  // namespace

void setProcessHandler(ProcessHandler handler) {
  gHandler = handler;
}

void setTableFilter(TableFilter filter) {
  gFilter = filter;
}

void callBack(uint64_t cookie, uint64_t nativeReq) {
  trial::callBackDone(cookie, nativeReq);
}

uint64_t lastNativeRequest() {
  return gLastNativeRequest;
}

}  // namespace orlu::bench

extern "C" void AlgoInterfaceEntry(orlu::AlgoInterfaceCallbacks* table) {
  orlu::trial::fillAnsweringTable(*table, &orlu::bench::gToken);
  table->process = orlu::bench::process;
  if (const orlu::bench::TableFilter filter = orlu::bench::gFilter) filter(table);
}
