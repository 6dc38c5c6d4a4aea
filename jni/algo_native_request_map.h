// The requests that were handed to the algorithms and are not finished, and the timed wait for their
// callbacks.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace orlu {

// Who may still use the parameter block of a full-async request. The last one to let go of it destroys it.
enum AlgoBlockUser : unsigned {
  kUsedBySubmission = 1,  // until process() of the algorithm library has returned
  kUsedByLibrary = 2,     // until it has called back, or the request's client is gone
  kUsedByJava = 4,        // until Java has finished the request, or can't any more
};

struct AlgoNativeRequest {
  int64_t reqId = 0;  // the Java side's id
  std::condition_variable condition;
  std::mutex mutex;       // guards `received`
  bool received = false;  // the callback of a synchronous request arrived
  void* metadata = nullptr;
  bool isFullAsync = false;
  uint64_t nativeReq = 0;
  bool waiting = false;  // a thread sleeps on this record and will look at it again
  std::vector<std::string> algoList;

  // Of full-async requests.
  const void* owner = nullptr;  // names the client
  unsigned blockUsers = kUsedBySubmission | kUsedByLibrary | kUsedByJava;
  bool isAnnounced = false;  // Java knows, or is being told, that it may finish the request
  bool isFinishing = false;  // Java finishes it
  bool isOwnerGone = false;
};

// Safe from any thread. Lock order: the map's mutex, then a record's; a waiter never holds both.
//
// A full-async request is finished once: by Java, or together with its client. Its block is destroyed later
// than that if somebody may still use it. An operation that returns a block makes the caller its only user,
// who destroys it; null means that the block has other users, or that there is none.
class AlgoNativeRequestMap {
public:
  // The one map, created when the library is loaded and never destroyed: callbacks may arrive until the
  // process ends.
  static AlgoNativeRequestMap* getInstance();

  AlgoNativeRequestMap() = default;
  AlgoNativeRequestMap(const AlgoNativeRequestMap&) = delete;
  AlgoNativeRequestMap& operator=(const AlgoNativeRequestMap&) = delete;

  // Enters a request and returns its id. Ids count up from 0 and are never reused. The block stays the
  // caller's, except that of a full-async request once it is submitted.
  uint64_t create(int64_t reqId, void* metadata, bool isFullAsync, const void* owner = nullptr);
  // False if unknown. A record that is being waited on is freed by its waiter.
  bool remove(uint64_t nativeReq);
  // The record, or null if the id is unknown. The caller holds the map's mutex.
  AlgoNativeRequest* findRequestLocked(uint64_t nativeReq) const;
  // Wakes the thread that waits for the request, now or later. False if unknown.
  bool onCallbackReceived(uint64_t nativeReq);
  // Sleeps until the callback arrives, for ten seconds at most; a timeout is logged. False if unknown.
  bool waitForCallback(uint64_t nativeReq);

  void* getMetadataHandle(uint64_t nativeReq);  // null if unknown
  int64_t getRequestId(uint64_t nativeReq);     // -1 if unknown
  // These return false, with `out` untouched, if the id is unknown.
  bool getIsFullAsync(uint64_t nativeReq, bool& out);
  bool getAlgoList(uint64_t nativeReq, std::vector<std::string>& out);
  bool setAlgoList(uint64_t nativeReq, const std::vector<std::string>& algoList);

  // From now on Java may finish the full-async request. False if unknown.
  bool setAnnounced(uint64_t nativeReq);
  // The announcement did not reach Java.
  void* withdrawAnnouncement(uint64_t nativeReq);
  // Takes a user off the block; also of a request that is finished, and unknown by now.
  void* releaseBlock(uint64_t nativeReq, AlgoBlockUser user);
  // Hands block and list to the one caller that finishes a full-async request in Java's name. False, with
  // both untouched, for any other id, and until the request is announced or its submission is over: an id
  // that is only guessed must not take the request from the thread that submits it.
  bool takeForFinish(uint64_t nativeReq, void*& metadata, std::vector<std::string>& algoList);
  // Removes a request that the caller took; logged.
  void* finish(uint64_t nativeReq);
  // The owner is gone: finishes one of its full-async requests that nobody else will finish, or takes the
  // library off the block of one that is finished already. False if there is none left; `metadata` is null
  // if the block has other users.
  bool releaseOwned(const void* owner, void*& metadata);

private:
  using Requests = std::vector<AlgoNativeRequest*>;

  Requests::iterator findAnyLocked(uint64_t nativeReq);
  void* releaseLocked(Requests::iterator request, unsigned users);
  AlgoNativeRequest* startWaiting(uint64_t nativeReq);
  void stopWaiting(AlgoNativeRequest* request, uint64_t nativeReq);

  std::mutex mMutex;  // guards everything below
  uint64_t mNextId = 0;
  Requests mRequests;  // in the order of their creation; finished ones too, while their block is used
};

}  // namespace orlu
