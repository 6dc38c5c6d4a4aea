#include "algo_native_request_map.h"

#include <algorithm>
#include <chrono>
#include <memory>

#include "log.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-AlgoNativeRequestMap";
constexpr std::chrono::nanoseconds kCallbackTimeout(10'000'000'000);

AlgoNativeRequestMap* const gRequestMap = new AlgoNativeRequestMap();

// Returns true if Java has finished the full-async request, or can no longer finish it. Even then, the
// record stays in the map while its block has users.
bool isFinished(const AlgoNativeRequest& request) {
  return (request.blockUsers & kUsedByJava) == 0;
}

// Returns false if the callback does not arrive in time.
bool waitUntilReceived(AlgoNativeRequest& request) {
  std::unique_lock<std::mutex> lock(request.mutex);
  return request.condition.wait_for(lock, kCallbackTimeout, [&request] { return request.received; });
}

}  // namespace

AlgoNativeRequestMap* AlgoNativeRequestMap::getInstance() {
  return gRequestMap;
}

uint64_t AlgoNativeRequestMap::create(int64_t reqId, void* metadata, bool isFullAsync, const void* owner) {
  auto request = std::make_unique<AlgoNativeRequest>();
  request->reqId = reqId;
  request->metadata = metadata;
  request->isFullAsync = isFullAsync;
  request->owner = owner;

  std::lock_guard<std::mutex> lock(mMutex);
  mRequests.push_back(request.get());
  request->nativeReq = mNextId++;
  return request.release()->nativeReq;
}

bool AlgoNativeRequestMap::remove(uint64_t nativeReq) {
  std::lock_guard<std::mutex> lock(mMutex);
  AlgoNativeRequest* const request = findRequestLocked(nativeReq);
  if (request == nullptr) return false;
  mRequests.erase(std::find(mRequests.begin(), mRequests.end(), request));
  if (!request->waiting) {
    LOGD("remove from map reqId = %lld", static_cast<long long>(request->reqId));
    delete request;
  }
  return true;
}

bool AlgoNativeRequestMap::onCallbackReceived(uint64_t nativeReq) {
  std::lock_guard<std::mutex> lock(mMutex);
  AlgoNativeRequest* const request = findRequestLocked(nativeReq);
  if (request == nullptr) return false;
  {
    std::lock_guard<std::mutex> recordLock(request->mutex);
    request->received = true;
  }
  // Notifies without the record's mutex: the woken thread locks this mutex and would otherwise block again.
  // The map's mutex, still locked here, keeps the record alive.
  request->condition.notify_all();
  LOGD("notify reqId = %lld", static_cast<long long>(request->reqId));
  return true;
}

bool AlgoNativeRequestMap::waitForCallback(uint64_t nativeReq) {
  AlgoNativeRequest* const request = startWaiting(nativeReq);
  if (request == nullptr) return false;
  if (!waitUntilReceived(*request)) {
    LOGE("wait for reqId = %lld time out", static_cast<long long>(request->reqId));
  }
  stopWaiting(request, nativeReq);
  return true;
}

AlgoNativeRequest* AlgoNativeRequestMap::startWaiting(uint64_t nativeReq) {
  std::lock_guard<std::mutex> lock(mMutex);
  AlgoNativeRequest* const request = findRequestLocked(nativeReq);
  if (request != nullptr) request->waiting = true;
  return request;
}

// Frees the record if remove() took it off the list during the wait.
void AlgoNativeRequestMap::stopWaiting(AlgoNativeRequest* request, uint64_t nativeReq) {
  std::lock_guard<std::mutex> lock(mMutex);
  if (findRequestLocked(nativeReq) != nullptr) {
    request->waiting = false;
  } else {
    delete request;
  }
}

void* AlgoNativeRequestMap::getMetadataHandle(uint64_t nativeReq) {
  std::lock_guard<std::mutex> lock(mMutex);
  const AlgoNativeRequest* request = findRequestLocked(nativeReq);
  return request == nullptr ? nullptr : request->metadata;
}

int64_t AlgoNativeRequestMap::getRequestId(uint64_t nativeReq) {
  std::lock_guard<std::mutex> lock(mMutex);
  const AlgoNativeRequest* request = findRequestLocked(nativeReq);
  return request == nullptr ? -1 : request->reqId;
}

bool AlgoNativeRequestMap::getIsFullAsync(uint64_t nativeReq, bool& out) {
  std::lock_guard<std::mutex> lock(mMutex);
  const AlgoNativeRequest* request = findRequestLocked(nativeReq);
  if (request == nullptr) return false;
  out = request->isFullAsync;
  return true;
}

bool AlgoNativeRequestMap::getAlgoList(uint64_t nativeReq, std::vector<std::string>& out) {
  std::lock_guard<std::mutex> lock(mMutex);
  const AlgoNativeRequest* request = findRequestLocked(nativeReq);
  if (request == nullptr) return false;
  out = request->algoList;
  return true;
}

bool AlgoNativeRequestMap::setAlgoList(uint64_t nativeReq, const std::vector<std::string>& algoList) {
  std::lock_guard<std::mutex> lock(mMutex);
  AlgoNativeRequest* const request = findRequestLocked(nativeReq);
  if (request == nullptr) return false;
  request->algoList = algoList;
  return true;
}

bool AlgoNativeRequestMap::setAnnounced(uint64_t nativeReq) {
  std::lock_guard<std::mutex> lock(mMutex);
  AlgoNativeRequest* const request = findRequestLocked(nativeReq);
  if (request == nullptr) return false;
  request->isAnnounced = true;
  return true;
}

void* AlgoNativeRequestMap::withdrawAnnouncement(uint64_t nativeReq) {
  std::lock_guard<std::mutex> lock(mMutex);
  const auto found = findAnyLocked(nativeReq);
  if (found == mRequests.end() || isFinished(**found)) return nullptr;
  AlgoNativeRequest& request = **found;
  request.isAnnounced = false;
  // If the client was destroyed after setAnnounced(), releaseOwned() left the request to Java. But Java can't
  // finish it, because the announcement did not reach Java.
  const bool isAbandoned = request.isOwnerGone && !request.isFinishing;
  return isAbandoned ? releaseLocked(found, kUsedByLibrary | kUsedByJava) : nullptr;
}

void* AlgoNativeRequestMap::releaseBlock(uint64_t nativeReq, AlgoBlockUser user) {
  std::lock_guard<std::mutex> lock(mMutex);
  const auto found = findAnyLocked(nativeReq);
  return found == mRequests.end() ? nullptr : releaseLocked(found, user);
}

bool AlgoNativeRequestMap::takeForFinish(uint64_t nativeReq, void*& metadata,
                                         std::vector<std::string>& algoList) {
  std::lock_guard<std::mutex> lock(mMutex);
  AlgoNativeRequest* const request = findRequestLocked(nativeReq);
  if (request == nullptr || !request->isFullAsync || request->isFinishing) return false;
  const bool isSubmitted = (request->blockUsers & kUsedBySubmission) == 0;
  if (!request->isAnnounced && !isSubmitted) return false;
  algoList = request->algoList;
  metadata = request->metadata;
  request->isFinishing = true;
  return true;
}

void* AlgoNativeRequestMap::finish(uint64_t nativeReq) {
  std::lock_guard<std::mutex> lock(mMutex);
  const auto found = findAnyLocked(nativeReq);
  if (found == mRequests.end()) return nullptr;
  LOGD_AS("remove", "remove from map reqId = %lld", static_cast<long long>((*found)->reqId));
  return releaseLocked(found, kUsedByJava);
}

bool AlgoNativeRequestMap::releaseOwned(const void* owner, void*& metadata) {
  std::lock_guard<std::mutex> lock(mMutex);
  const auto found = std::find_if(mRequests.begin(), mRequests.end(), [owner](const AlgoNativeRequest* r) {
    return r->owner == owner && r->isFullAsync && !r->isOwnerGone;
  });
  if (found == mRequests.end()) return false;
  AlgoNativeRequest& request = **found;
  request.isOwnerGone = true;
  const bool isJavas = request.isAnnounced || request.isFinishing;
  metadata = releaseLocked(found, isJavas ? kUsedByLibrary : kUsedByLibrary | kUsedByJava);
  return true;
}

// Removes users of the block. If none is left, deletes the record and returns the block; otherwise returns
// null.
void* AlgoNativeRequestMap::releaseLocked(Requests::iterator request, unsigned users) {
  AlgoNativeRequest* const record = *request;
  if (record->blockUsers == 0) return nullptr;
  record->blockUsers &= ~users;
  if (record->blockUsers != 0) return nullptr;
  void* const metadata = record->metadata;
  mRequests.erase(request);
  delete record;
  return metadata;
}

AlgoNativeRequest* AlgoNativeRequestMap::findRequestLocked(uint64_t nativeReq) const {
  const auto found = std::find_if(mRequests.begin(), mRequests.end(), [=](const AlgoNativeRequest* r) {
    return r->nativeReq == nativeReq && !isFinished(*r);
  });
  return found == mRequests.end() ? nullptr : *found;
}

AlgoNativeRequestMap::Requests::iterator AlgoNativeRequestMap::findAnyLocked(uint64_t nativeReq) {
  return std::find_if(mRequests.begin(), mRequests.end(),
                      [=](const AlgoNativeRequest* r) { return r->nativeReq == nativeReq; });
}

}  // namespace orlu
