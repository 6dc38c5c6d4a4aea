// The same mix as the soak without a Java VM, for ThreadSanitizer: --requests N. Clients come and go
// meanwhile.

#include <cstdlib>
#include <string>

#include "algo_interface.h"
#include "algo_native_client.h"
#include "algo_native_request_map.h"
#include "log_capture.h"
#include "soak_watch.h"

namespace orlu::fuzz {
namespace {

constexpr int kThreads = 4;
constexpr uint64_t kRequestsOfAClient = 100;
constexpr int64_t kFrameFlag = 77;

class NativeClient {
public:
  NativeClient() : mClient(nullptr, 1, 2) { mClient.context().init(); }
  NativeClient(const NativeClient&) = delete;
  ~NativeClient() {
    mClient.context().flush();
    mClient.context().uninit(0);
  }

  void send(uint64_t index) {
    AlgoNativeRequestMap* const map = AlgoNativeRequestMap::getInstance();
    const SoakKind kind = soakKind(index);
    const bool isSkipped = kind == kSkipped || kind == kSkippedAsync;
    void* const block = makeBlock("frame_flag");
    const uint64_t request = map->create(static_cast<int64_t>(index), block, isFullAsync(kind));
    map->setAlgoList(request, {"night", "jpegEncode"});
    if (!isSkipped) submit(request, block);
    if (kind == kAborted) abort();
    if (isSkipped) mClient.onPostProcessDataCommonShot(request);
    // No Java is told of a full-async one: it is ended when the library is done with it.
    if (isFullAsync(kind)) mClient.context().flush();
    if (!isFullAsync(kind)) map->waitForCallback(request);
    end(request);
  }

private:
  void submit(uint64_t request, void* block) {
    mClient.context().process(kRequestCapture, {"night"}, request, {AlgoFrameInfo()}, {AlgoFrameInfo()},
                              block, mClient.callbackCookie(), request, {1, 2, 3});
  }

  void end(uint64_t request) {
    AlgoNativeRequestMap* const map = AlgoNativeRequestMap::getInstance();
    void* const block = map->getMetadataHandle(request);
    int64_t value = 0;
    mClient.context().getValue(block, kControl, "frame_flag", &value, sizeof value);
    mClient.context().destroyMetadata(block);
    if (!map->remove(request) || value != kFrameFlag) std::abort();
  }

  void abort() {
    void* const block = makeBlock("abort_val");
    mClient.context().abort(0, 0, block);
    mClient.context().destroyMetadata(block);
  }

  // With the frame flag under this key.
  void* makeBlock(const char* key) {
    void* const block = mClient.context().createMetadata();
    int64_t value = kFrameFlag;
    mClient.context().setValue(block, kControl, key, &value, sizeof value);
    return block;
  }

  AlgoNativeClient mClient;
};

void soakOn(SoakWatch& watch) {
  bool isMore = true;
  while (isMore) {
    NativeClient client;
    for (uint64_t i = 0; i < kRequestsOfAClient && (isMore = watch.next()); ++i) {
      client.send(i);
      watch.done();
    }
  }
}

int soak(uint64_t requests) {
  // The first clients of all are made at the same moment, before anything else has opened the library.
  SoakWatch watch(requests);
  const uint64_t firstId = nextRequestId();
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) threads.emplace_back(soakOn, std::ref(watch));
  watch.watch();
  for (std::thread& thread : threads) thread.join();
  return nothingIsLeft({}, firstId) ? 0 : 1;
}

}  // namespace
}  // namespace orlu::fuzz

int main(int argc, char** argv) {
  orlu::test::silenceLog();
  return orlu::fuzz::soak(orlu::fuzz::requestsAskedFor(argc, argv));
}
