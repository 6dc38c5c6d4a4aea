// The requests that were handed to the algorithms and are not finished, and the timed wait for their
// callbacks.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace orlu {

struct AlgoNativeRequest {
  int64_t reqId = 0;  // the Java side's id
  std::condition_variable condition;
  std::mutex mutex;          // guards `received`
  bool received = false;     // the callback arrived
  void* metadata = nullptr;  // the request's parameter block, not owned
  bool isFullAsync = false;
  uint64_t nativeReq = 0;
  bool waiting = false;  // a thread sleeps on this record and will look at it again
  std::vector<std::string> algoList;
};

// Safe from any thread. Lock order: the map's mutex, then a record's; a waiter never holds both.
class AlgoNativeRequestMap {
public:
  // The one map, made when the library is loaded and never destroyed: callbacks may come until the process
  // ends.
  static AlgoNativeRequestMap* getInstance();

  AlgoNativeRequestMap() = default;
  AlgoNativeRequestMap(const AlgoNativeRequestMap&) = delete;
  AlgoNativeRequestMap& operator=(const AlgoNativeRequestMap&) = delete;

  // Enters a request and answers its id. Ids count up from 0 and are never used again. The block stays the
  // caller's.
  uint64_t create(int64_t reqId, void* metadata, bool isFullAsync);
  // False when unknown. A record that is being waited on is freed by its waiter.
  bool remove(uint64_t nativeReq);
  // Wakes whoever waits for the request, now or later. False when unknown.
  bool onCallbackReceived(uint64_t nativeReq);
  // Sleeps until the callback arrived, for ten seconds at most; a timeout is logged. False when unknown.
  bool waitForCallback(uint64_t nativeReq);

  void* getMetadataHandle(uint64_t nativeReq);  // null when unknown
  // The same for whoever ends the request and destroys its block: one caller gets it, later ones null.
  void* takeMetadataHandle(uint64_t nativeReq);
  int64_t getRequestId(uint64_t nativeReq);  // -1 when unknown
  // False, with `out` untouched, when unknown.
  bool getIsFullAsync(uint64_t nativeReq, bool& out);
  bool getAlgoList(uint64_t nativeReq, std::vector<std::string>& out);
  bool setAlgoList(uint64_t nativeReq, const std::vector<std::string>& algoList);

private:
  // The caller holds the map's mutex. Null when unknown.
  AlgoNativeRequest* findRequestLocked(uint64_t nativeReq) const;
  AlgoNativeRequest* startWaiting(uint64_t nativeReq);
  void stopWaiting(AlgoNativeRequest* request, uint64_t nativeReq);

  std::mutex mMutex;  // guards everything below
  uint64_t mNextId = 0;
  std::vector<AlgoNativeRequest*> mRequests;  // in the order of their creation
};

}  // namespace orlu
