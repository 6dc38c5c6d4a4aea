// The requests in flight, and the timed wait for their callbacks.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace orlu {

// Users of a full-async request's parameter block. The last user to release the block destroys it.
enum AlgoBlockUser : unsigned {
  kUsedBySubmission = 1,  // until the algorithm library's process() has returned
  kUsedByLibrary = 2,     // until the algorithm library has called back, or the request's client is destroyed
  kUsedByJava = 4,        // until Java has finished the request or can no longer finish it
};

struct AlgoNativeRequest {
  int64_t reqId = 0;  // the Java side's id
  std::condition_variable condition;
  std::mutex mutex;       // guards `received`
  bool received = false;  // the callback of a synchronous request arrived
  void* metadata = nullptr;
  bool isFullAsync = false;
  uint64_t nativeReq = 0;
  bool waiting = false;  // a thread waits on this record and will read it again
  std::vector<std::string> algoList;

  // For full-async requests only.
  const void* owner = nullptr;  // identifies the client
  unsigned blockUsers = kUsedBySubmission | kUsedByLibrary | kUsedByJava;
  bool isAnnounced = false;  // Java has been told, or is being told, that it may finish the request
  bool isFinishing = false;  // Java is finishing the request
  bool isOwnerGone = false;
};

// Thread-safe. Lock order: the map's mutex, then a record's; a waiter never holds both.
//
// A full-async request is finished once: by Java, or together with its client. The request's block is
// destroyed later if somebody may still use it. If withdrawAnnouncement(), releaseBlock(), finish() or
// releaseOwned() returns a block, the caller is now its only user and must destroy it. Null means that the
// block has other users or does not exist.
class AlgoNativeRequestMap {
public:
  // The global map; created at load time and never destroyed: callbacks may arrive until the process ends.
  static AlgoNativeRequestMap* getInstance();

  AlgoNativeRequestMap() = default;
  AlgoNativeRequestMap(const AlgoNativeRequestMap&) = delete;
  AlgoNativeRequestMap& operator=(const AlgoNativeRequestMap&) = delete;

  // Adds a request and returns its id. Ids count up from 0 and are never reused. The caller keeps ownership
  // of a synchronous request's block; the block of a full-async request belongs to its users (AlgoBlockUser).
  uint64_t create(int64_t reqId, void* metadata, bool isFullAsync, const void* owner = nullptr);
  // Removes a request. If a thread waits on the record, that thread will free the record. Returns false if
  // the id is unknown.
  bool remove(uint64_t nativeReq);
  // Returns the record, or null if the id is unknown. The caller holds the map's mutex.
  AlgoNativeRequest* findRequestLocked(uint64_t nativeReq) const;
  // Wakes the thread in waitForCallback(). If no thread waits yet, waitForCallback() will return at once.
  // Returns false if the id is unknown.
  bool onCallbackReceived(uint64_t nativeReq);
  // Waits up to ten seconds for the callback; logs a timeout. Returns false if the id is unknown.
  bool waitForCallback(uint64_t nativeReq);

  void* getMetadataHandle(uint64_t nativeReq);  // null if unknown
  int64_t getRequestId(uint64_t nativeReq);     // -1 if unknown
  // These three return false if the id is unknown; the getters then leave `out` unchanged.
  bool getIsFullAsync(uint64_t nativeReq, bool& out);
  bool getAlgoList(uint64_t nativeReq, std::vector<std::string>& out);
  bool setAlgoList(uint64_t nativeReq, const std::vector<std::string>& algoList);

  // Allows Java to finish the full-async request. Returns false if the id is unknown.
  bool setAnnounced(uint64_t nativeReq);
  // Reverts setAnnounced(), because the announcement did not reach Java.
  void* withdrawAnnouncement(uint64_t nativeReq);
  // Removes a user of the block, even if the request is already finished and its id counts as unknown.
  void* releaseBlock(uint64_t nativeReq, AlgoBlockUser user);
  // Passes a full-async request's block and algorithm list to the one caller that finishes it for Java.
  // Returns false and leaves both unchanged if there is no such request, if another caller has taken it, or
  // if it is still being submitted and has not been announced. The last rule protects the submitting thread
  // from a caller with a guessed id.
  bool takeForFinish(uint64_t nativeReq, void*& metadata, std::vector<std::string>& algoList);
  // Finishes a request that the caller has taken, and logs that.
  void* finish(uint64_t nativeReq);
  // After an owner's destruction, call this until it returns false. Each call handles one of the owner's
  // full-async requests: removes the algorithm library as a user of the block, and finishes the request
  // unless Java will finish it. `metadata` becomes the block that the caller must destroy, or null if the
  // block has other users.
  bool releaseOwned(const void* owner, void*& metadata);

private:
  using Requests = std::vector<AlgoNativeRequest*>;

  Requests::iterator findAnyLocked(uint64_t nativeReq);
  void* releaseLocked(Requests::iterator request, unsigned users);
  AlgoNativeRequest* startWaiting(uint64_t nativeReq);
  void stopWaiting(AlgoNativeRequest* request, uint64_t nativeReq);

  std::mutex mMutex;  // guards everything below
  uint64_t mNextId = 0;
  Requests mRequests;  // in order of creation; includes finished requests while their block is used
};

}  // namespace orlu
