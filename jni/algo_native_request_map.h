// The requests that were handed to the algorithms and are not finished, and the timed wait for their
// callbacks.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace orlu {

enum class AlgoRequestState {
  kSubmitted,  // the algorithms have it, or will
  kDone,       // its callback arrived: its waiter goes on; Java may end a full-async one
  kEnding      // somebody ends it, and owns its block
};

struct AlgoNativeRequest {
  int64_t reqId = 0;  // the Java side's id
  std::condition_variable condition;
  std::mutex mutex;  // held, with the map's, to change the state; either is enough to look at it
  AlgoRequestState state = AlgoRequestState::kSubmitted;
  void* metadata = nullptr;  // the request's parameter block, not owned
  bool isFullAsync = false;
  uint64_t nativeReq = 0;
  bool waiting = false;  // a thread sleeps on this record and will look at it again
  std::vector<std::string> algoList;
  const void* owner = nullptr;  // the client; never looked into
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

  // Enters a request and returns its id. Ids count up from 0 and are never used again. The block stays the
  // caller's; it is the owner's if removeUnannounced() returns it.
  uint64_t create(int64_t reqId, void* metadata, bool isFullAsync, const void* owner = nullptr);
  // False when unknown. A record that is being waited on is freed by its waiter.
  bool remove(uint64_t nativeReq);
  // Wakes whoever waits for the request, now or later. False when unknown.
  bool onCallbackReceived(uint64_t nativeReq);
  // Sleeps until the callback arrived, for ten seconds at most; a timeout is logged. False when unknown.
  bool waitForCallback(uint64_t nativeReq);

  void* getMetadataHandle(uint64_t nativeReq);  // null when unknown
  int64_t getRequestId(uint64_t nativeReq);     // -1 when unknown
  // False, with `out` untouched, when unknown.
  bool getIsFullAsync(uint64_t nativeReq, bool& out);
  bool getAlgoList(uint64_t nativeReq, std::vector<std::string>& out);
  bool setAlgoList(uint64_t nativeReq, const std::vector<std::string>& algoList);

  // From now on Java may end the request, which is a full-async one. False when unknown.
  bool setAnnounced(uint64_t nativeReq);
  // For Java, which ends a request by naming its id: hands the block and the list to the one caller that ends
  // it, and removes it then. False, with both untouched, for any but an announced full-async request: another
  // thread submits it, or waits on it, and destroys its block.
  bool takeAnnounced(uint64_t nativeReq, void*& metadata, std::vector<std::string>& algoList);
  // Removes one of the owner's full-async requests that nobody can end any more, since they were never
  // announced. Its block becomes the caller's. False when there is none.
  bool removeUnannounced(const void* owner, void*& metadata);

private:
  // The caller holds the map's mutex. Null when unknown.
  AlgoNativeRequest* findRequestLocked(uint64_t nativeReq) const;
  static void setStateLocked(AlgoNativeRequest& request, AlgoRequestState state);
  AlgoNativeRequest* startWaiting(uint64_t nativeReq);
  void stopWaiting(AlgoNativeRequest* request, uint64_t nativeReq);

  std::mutex mMutex;  // guards everything below
  uint64_t mNextId = 0;
  std::vector<AlgoNativeRequest*> mRequests;  // in the order of their creation
};

}  // namespace orlu
