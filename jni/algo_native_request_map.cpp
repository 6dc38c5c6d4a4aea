#include "algo_native_request_map.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

#include "log.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-AlgoNativeRequestMap";
constexpr std::chrono::nanoseconds kCallbackTimeout(10'000'000'000);

AlgoNativeRequestMap* const gRequestMap = new AlgoNativeRequestMap();

// True when the callback arrived before the time was over.
bool waitUntilReceived(AlgoNativeRequest& request) {
  std::unique_lock<std::mutex> lock(request.mutex);
  return request.condition.wait_for(lock, kCallbackTimeout,
                                    [&request] { return request.state == AlgoRequestState::kDone; });
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
  setStateLocked(*request, AlgoRequestState::kDone);
  // Outside the record's mutex: the woken thread takes that first, and would go to sleep on it again. The
  // record stays until the map's mutex is free.
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

// The record was left alive by remove() if it was removed meanwhile; then it is freed here.
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
  setStateLocked(*request, AlgoRequestState::kDone);
  return true;
}

bool AlgoNativeRequestMap::takeAnnounced(uint64_t nativeReq, void*& metadata,
                                         std::vector<std::string>& algoList) {
  std::lock_guard<std::mutex> lock(mMutex);
  AlgoNativeRequest* const request = findRequestLocked(nativeReq);
  if (request == nullptr || !request->isFullAsync || request->state != AlgoRequestState::kDone) return false;
  algoList = request->algoList;
  metadata = request->metadata;
  setStateLocked(*request, AlgoRequestState::kEnding);
  return true;
}

bool AlgoNativeRequestMap::removeUnannounced(const void* owner, void*& metadata) {
  std::lock_guard<std::mutex> lock(mMutex);
  const auto found = std::find_if(mRequests.begin(), mRequests.end(), [owner](const AlgoNativeRequest* r) {
    return r->owner == owner && r->isFullAsync && r->state == AlgoRequestState::kSubmitted;
  });
  if (found == mRequests.end()) return false;
  metadata = (*found)->metadata;
  delete *found;
  mRequests.erase(found);
  return true;
}

void AlgoNativeRequestMap::setStateLocked(AlgoNativeRequest& request, AlgoRequestState state) {
  std::lock_guard<std::mutex> lock(request.mutex);
  // What is being ended stays so, however often the library calls back.
  if (request.state != AlgoRequestState::kEnding) request.state = state;
}

AlgoNativeRequest* AlgoNativeRequestMap::findRequestLocked(uint64_t nativeReq) const {
  const auto found = std::find_if(mRequests.begin(), mRequests.end(),
                                  [=](const AlgoNativeRequest* r) { return r->nativeReq == nativeReq; });
  return found == mRequests.end() ? nullptr : *found;
}

}  // namespace orlu
