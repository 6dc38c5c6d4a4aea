// The way of one request: from Java to the algorithms, and back.

#include <optional>
#include <utility>

#include "algo_list.h"
#include "algo_native_request_map.h"
#include "log.h"
#include "metadata_updater.h"
#include "request_processor.h"
#include "result_updater.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-RequestProcessor";
constexpr char kAlgoTypeKey[] = "orlu.control.algoType";

// Request types are compared by their beginnings.
bool begins(const std::string& text, const char* prefix) {
  return text.rfind(prefix, 0) == 0;
}

ALGO_REQUEST_TYPE requestTypeOf(const VRequest& request) {
  if (begins(request.requestType(), "previewProcess")) return kRequestPreview;
  return request.isStopProcess() ? kRequestStop : kRequestCapture;
}

// The capture result whose camera metadata goes with the request.
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

}  // namespace

// A request between two of its stages. It owns its parameter block and its entry in the map until they are
// freed or left to a later stage, also when memory runs out on the way.
struct RequestInFlight {
  RequestInFlight(AlgoNativeClient* itsClient, VRequest& itsRequest, CameraMetadataParser& itsParser)
      : client(itsClient), request(itsRequest), parser(itsParser) {}
  RequestInFlight(const RequestInFlight&) = delete;
  RequestInFlight& operator=(const RequestInFlight&) = delete;
  ~RequestInFlight() { free(); }

  // Writes the results, and ends the request.
  void finish() {
    ResultUpdater(client, algoList, request, metadata, &parser).updateResult();
    free();
  }
  // processImageUpdateResult() ends it, which may happen any time from now on, or else the end of its client.
  void leave() { isOwned = false; }

  AlgoNativeClient* const client;
  VRequest& request;
  CameraMetadataParser& parser;
  std::vector<std::string> algoList;
  void* metadata = nullptr;
  bool isFullAsync = false;
  bool isOwned = true;
  std::optional<uint64_t> nativeReq;  // once it is in the map

private:
  void free() {
    if (!std::exchange(isOwned, false)) return;
    client->context().destroyMetadata(metadata);
    if (nativeReq) AlgoNativeRequestMap::getInstance()->remove(*nativeReq);
  }
};

int RequestProcessor::processImage(JNIEnv* env, int64_t inst, jobject request, jobject inputs,
                                   jobject outputs, jobject compositions) {
  AlgoNativeClient* const client = AlgoNativeClient::of(inst);
  LOGD("process image E, %p %p %p %p %p", static_cast<void*>(client), static_cast<void*>(request),
       static_cast<void*>(inputs), static_cast<void*>(outputs), static_cast<void*>(compositions));
  if (isAnythingNull(client, inputs, outputs, compositions)) {
    LOGE("process image failed, input is null, %p %p %p %p", static_cast<void*>(client),
         static_cast<void*>(inputs), static_cast<void*>(outputs), static_cast<void*>(compositions));
    return -1;
  }
  VRequest vrequest(env, request, inputs, outputs, compositions);
  CameraMetadataParser parser;
  if (parser.initFromEnv(env, false) != 0) LOGE("init parser failed");
  const jobject first = vrequest.firstComposition();
  parser.checkFramesOnce(vrequest.captureResults(), vrequest.captureResultCompositions());
  RequestInFlight flight(client, vrequest, parser);
  parser.getStringArray(flight.algoList, kAlgoTypeKey, nullptr, first);
  flight.metadata = client->context().createMetadata();
  MetadataUpdater updater(client, flight.algoList, vrequest, flight.metadata, &parser);
  updater.updateMetadata();

  int32_t isAsync = 0;
  parser.getIntOrlu(isAsync, "isFullAsync", first);
  flight.isFullAsync = isAsync != 0;
  enterIntoMap(flight);
  LOGD("algo list: %s, reqId = %lld, nativeReq %llu, isAsync %d", printAlgoList(flight.algoList).c_str(),
       static_cast<long long>(vrequest.requestId()), static_cast<unsigned long long>(*flight.nativeReq),
       isAsync);

  if (flight.isFullAsync) flight.leave();
  if (!updater.skipAlgoProcess()) {
    processImageAlgo(flight, metadataFrame(updater, vrequest));
  } else if (flight.isFullAsync) {
    client->onPostProcessDataCommonShot(*flight.nativeReq);
  }
  // A full-async request may have ended by now, and its client as well.
  if (!flight.isFullAsync) flight.finish();
  LOGD("process image X");
  return 0;
}

void RequestProcessor::enterIntoMap(RequestInFlight& flight) {
  AlgoNativeRequestMap* const map = AlgoNativeRequestMap::getInstance();
  flight.nativeReq =
      map->create(flight.request.requestId(), flight.metadata, flight.isFullAsync, flight.client);
  map->setAlgoList(*flight.nativeReq, flight.algoList);
}

int RequestProcessor::processImageAlgo(RequestInFlight& flight, int resultIndex) {
  const VRequest& request = flight.request;
  const auto index = static_cast<size_t>(resultIndex);
  const std::vector<jobject>& results = request.captureResults();
  const std::vector<uint8_t> metadataBytes =
      flight.parser.getMetadata(index < results.size() ? results[index] : nullptr);
  flight.client->context().process(requestTypeOf(request), flight.algoList, *flight.nativeReq,
                                   request.inputFrames(), request.outputFrames(), flight.metadata,
                                   flight.client->callbackCookie(),
                                   static_cast<uint64_t>(request.requestId()), metadataBytes);
  // A request that timed out goes on to its results (Oddity 46).
  if (!flight.isFullAsync) AlgoNativeRequestMap::getInstance()->waitForCallback(*flight.nativeReq);
  return 0;
}

int RequestProcessor::processImageUpdateResult(JNIEnv* env, int64_t inst, jobject request, jobject inputs,
                                               jobject outputs, jobject compositions) {
  AlgoNativeClient* const client = AlgoNativeClient::of(inst);
  LOGD("process image update result E, %p %p %p %p %p", static_cast<void*>(client),
       static_cast<void*>(request), static_cast<void*>(inputs), static_cast<void*>(outputs),
       static_cast<void*>(compositions));
  if (isAnythingNull(client, inputs, outputs, compositions)) {
    LOGE("process image update result failed, input is null, %p %p %p %p", static_cast<void*>(client),
         static_cast<void*>(inputs), static_cast<void*>(outputs), static_cast<void*>(compositions));
    return -1;
  }
  VRequest vrequest(env, request, inputs, outputs, compositions);
  CameraMetadataParser parser;
  if (parser.initFromEnv(env, false) != 0) LOGE("init parser failed");
  const jobject first = vrequest.firstComposition();
  parser.checkFramesOnce(vrequest.captureResults(), vrequest.captureResultCompositions());
  int64_t address = 0;
  parser.getLongOrlu(address, "nativeRequestAddr", first);
  const auto nativeReq = static_cast<uint64_t>(address);

  RequestInFlight flight(client, vrequest, parser);
  const bool known =
      AlgoNativeRequestMap::getInstance()->takeAnnounced(nativeReq, flight.metadata, flight.algoList);
  if (known) flight.nativeReq = nativeReq;
  if (!known) parser.getStringArray(flight.algoList, kAlgoTypeKey, nullptr, first);
  LOGD("update result algo list: %s, reqId = %lld, nativeReq %llu getAlgoListResult %d",
       printAlgoList(flight.algoList).c_str(), static_cast<long long>(vrequest.requestId()),
       static_cast<unsigned long long>(nativeReq), known ? 1 : 0);
  flight.finish();
  LOGD("process image update result X");
  return 0;
}

}  // namespace orlu
