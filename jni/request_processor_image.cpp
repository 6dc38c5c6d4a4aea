// Passes a request to the algorithm library and writes the results back to Java.

#include <optional>
#include <utility>

#include "algo_list.h"
#include "algo_native_request_map.h"
#include "log.h"
#include "metadata_updater.h"
#include "request_processor.h"
#include "result_updater.h"
#include "starts_with.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-RequestProcessor";
constexpr char kAlgoTypeKey[] = "orlu.control.algoType";

ALGO_REQUEST_TYPE requestTypeOf(const VRequest& request) {
  if (startsWith(request.requestType().c_str(), "previewProcess")) return kRequestPreview;
  return request.isStopProcess() ? kRequestStop : kRequestCapture;
}

// Returns the index of the capture result that supplies the request's camera metadata.
int metadataFrame(MetadataUpdater& updater, const VRequest& request) {
  int hdrType = 0;
  int frameIndex = -1;
  updater.updateRawnrHDRFrameIndex(hdrType, frameIndex);
  const bool inRange = frameIndex >= 1 && static_cast<size_t>(frameIndex) < request.captureResults().size();
  return hdrType == kHdr5Yuv && inRange ? frameIndex : 0;
}

bool isAnythingNull(const AlgoNativeClient* client, jobject inputs, jobject outputs, jobject compositions) {
  return client == nullptr || inputs == nullptr || outputs == nullptr || compositions == nullptr;
}

// A request during one stage: submission or completion. At the end of the stage, even if memory runs out, it
// releases the parameter block and the map entry, or leaves them to a later stage.
class RequestInFlight {
public:
  RequestInFlight(AlgoNativeClient& client, VRequest& request, CameraMetadataParser& parser)
      : mClient(client), mRequest(request), mParser(parser) {}
  RequestInFlight(const RequestInFlight&) = delete;
  RequestInFlight& operator=(const RequestInFlight&) = delete;
  ~RequestInFlight() { letGo(); }

  // Adds a new request to the map, which takes over the block of a full-async request.
  void enter() {
    nativeReq = map().create(mRequest.requestId(), metadata, isFullAsync, mClient.owner());
    map().setAlgoList(*nativeReq, algoList);
    if (isFullAsync) mStage = kSubmitted;
  }
  // Takes over a full-async request for Java. Returns false if Java may not finish the request with this id.
  bool take(uint64_t id) {
    if (!map().takeForFinish(id, metadata, algoList)) return false;
    nativeReq = id;
    mStage = kFinishing;
    return true;
  }
  // Not inlined: the result updater needs much stack, and little stack may be left.
  [[gnu::noinline]] void finish() {
    ResultUpdater(&mClient, algoList, mRequest, metadata, &mParser).updateResult();
    letGo();
  }
  // Ends the stage: releases everything that the stage owns, and stops using the block.
  void letGo() {
    AlgoNativeContext& context = mClient.context();
    switch (std::exchange(mStage, kOver)) {
      case kOwned:
        context.destroyMetadata(metadata);
        if (nativeReq) map().remove(*nativeReq);
        break;
      case kSubmitted:
        context.destroyMetadata(map().releaseBlock(*nativeReq, kUsedBySubmission));
        // If the client was destroyed before enter() added this request, the client's destructor missed it.
        if (context.isClientDestroyed()) mClient.releaseRequests();
        break;
      case kFinishing:
        context.destroyMetadata(map().finish(*nativeReq));
        break;
      case kOver:
        break;
    }
  }

  std::vector<std::string> algoList;
  void* metadata = nullptr;
  bool isFullAsync = false;
  std::optional<uint64_t> nativeReq;  // set once the request is in the map

private:
  enum Stage { kOwned, kSubmitted, kFinishing, kOver };

  static AlgoNativeRequestMap& map() { return *AlgoNativeRequestMap::getInstance(); }

  AlgoNativeClient& mClient;
  VRequest& mRequest;
  CameraMetadataParser& mParser;
  Stage mStage = kOwned;
};

}  // namespace

int RequestProcessor::processImage(JNIEnv* env, int64_t inst, jobject request, jobject inputs,
                                   jobject outputs, jobject compositions) {
  AlgoNativeClient* const original = AlgoNativeClient::of(inst);
  LOGD("process image E, %p %p %p %p %p", static_cast<void*>(original), static_cast<void*>(request),
       static_cast<void*>(inputs), static_cast<void*>(outputs), static_cast<void*>(compositions));
  if (isAnythingNull(original, inputs, outputs, compositions)) {
    LOGE("process image failed, input is null, %p %p %p %p", static_cast<void*>(original),
         static_cast<void*>(inputs), static_cast<void*>(outputs), static_cast<void*>(compositions));
    return -1;
  }
  AlgoNativeClient client = original->copyForNative();
  VRequest vrequest(env, request, inputs, outputs, compositions);
  CameraMetadataParser parser;
  if (parser.initFromEnv(env, false) != 0) LOGE("init parser failed");
  const jobject first = vrequest.firstComposition();
  parser.checkFramesOnce(vrequest.captureResults(), vrequest.captureResultCompositions());
  RequestInFlight flight(client, vrequest, parser);
  parser.getStringArray(flight.algoList, kAlgoTypeKey, nullptr, first);
  flight.metadata = client.context().createMetadata();
  MetadataUpdater updater(&client, flight.algoList, vrequest, flight.metadata, &parser);
  updater.updateMetadata();

  int32_t isAsync = 0;
  parser.getIntOrlu(isAsync, "isFullAsync", first);
  flight.isFullAsync = isAsync != 0;
  flight.enter();
  LOGD("algo list: %s, reqId = %lld, nativeReq %llu, isAsync %d", printAlgoList(flight.algoList).c_str(),
       static_cast<long long>(vrequest.requestId()), static_cast<unsigned long long>(*flight.nativeReq),
       isAsync);

  if (!updater.skipAlgoProcess()) {
    processImageAlgo(vrequest, flight.algoList, &client, flight.metadata, &parser,
                     static_cast<uint64_t>(vrequest.requestId()), *flight.nativeReq, flight.isFullAsync,
                     metadataFrame(updater, vrequest));
  } else if (flight.isFullAsync) {
    client.onPostProcessDataCommonShot(*flight.nativeReq);
  }
  if (flight.isFullAsync) {
    flight.letGo();
  } else {
    flight.finish();
  }
  LOGD("process image X");
  return 0;
}

int RequestProcessor::processImageAlgo(VRequest& request, std::vector<std::string>& algoList,
                                       AlgoNativeClient* client, void* metadata, CameraMetadataParser* parser,
                                       uint64_t reqId, uint64_t nativeReq, bool isFullAsync,
                                       int resultIndex) {
  const auto index = static_cast<size_t>(resultIndex);
  const std::vector<jobject>& results = request.captureResults();
  const std::vector<uint8_t> metadataBytes =
      parser->getMetadata(index < results.size() ? results[index] : nullptr);
  client->context().process(requestTypeOf(request), algoList, nativeReq, request.inputFrames(),
                            request.outputFrames(), metadata, client->callbackCookie(), reqId, metadataBytes);
  // If Java has destroyed the client meanwhile, doesn't wait, because the library will not call back. After a
  // timeout, the request continues, and its results are written (Oddity 46).
  if (!isFullAsync && !client->context().isClientDestroyed()) {
    AlgoNativeRequestMap::getInstance()->waitForCallback(nativeReq);
  }
  return 0;
}

int RequestProcessor::processImageUpdateResult(JNIEnv* env, int64_t inst, jobject request, jobject inputs,
                                               jobject outputs, jobject compositions) {
  AlgoNativeClient* const original = AlgoNativeClient::of(inst);
  LOGD("process image update result E, %p %p %p %p %p", static_cast<void*>(original),
       static_cast<void*>(request), static_cast<void*>(inputs), static_cast<void*>(outputs),
       static_cast<void*>(compositions));
  if (isAnythingNull(original, inputs, outputs, compositions)) {
    LOGE("process image update result failed, input is null, %p %p %p %p", static_cast<void*>(original),
         static_cast<void*>(inputs), static_cast<void*>(outputs), static_cast<void*>(compositions));
    return -1;
  }
  AlgoNativeClient client = original->copyForNative();
  VRequest vrequest(env, request, inputs, outputs, compositions);
  CameraMetadataParser parser;
  if (parser.initFromEnv(env, false) != 0) LOGE("init parser failed");
  const jobject first = vrequest.firstComposition();
  parser.checkFramesOnce(vrequest.captureResults(), vrequest.captureResultCompositions());
  int64_t address = 0;
  parser.getLongOrlu(address, "nativeRequestAddr", first);
  const auto nativeReq = static_cast<uint64_t>(address);

  RequestInFlight flight(client, vrequest, parser);
  const bool known = flight.take(nativeReq);
  if (!known) parser.getStringArray(flight.algoList, kAlgoTypeKey, nullptr, first);
  LOGD("update result algo list: %s, reqId = %lld, nativeReq %llu getAlgoListResult %d",
       printAlgoList(flight.algoList).c_str(), static_cast<long long>(vrequest.requestId()),
       static_cast<unsigned long long>(nativeReq), known ? 1 : 0);
  flight.finish();
  LOGD("process image update result X");
  return 0;
}

}  // namespace orlu
