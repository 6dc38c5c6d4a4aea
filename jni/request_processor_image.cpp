// The way of one request: from Java to the algorithms, and back.

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
  constexpr int kFiveFrameHdr = 6;
  int hdrType = 0;
  int frameIndex = -1;
  updater.updateRawnrHDRFrameIndex(hdrType, frameIndex);
  const bool inRange = frameIndex >= 1 && static_cast<size_t>(frameIndex) < request.captureResults().size();
  return hdrType == kFiveFrameHdr && inRange ? frameIndex : 0;
}

// The composition that names a request to end may name any. Only a full-async one is ended so: the thread
// that waits for another still uses its block, and destroys it.
bool canBeEnded(uint64_t nativeReq) {
  bool isFullAsync = false;
  return AlgoNativeRequestMap::getInstance()->getIsFullAsync(nativeReq, isFullAsync) && isFullAsync;
}

// Ends a request: its results go to Java, its parameter block and its entry in the map are freed.
void finishRequest(AlgoNativeClient* client, std::vector<std::string>& algoList, VRequest& request,
                   void* metadata, CameraMetadataParser& parser, uint64_t nativeReq) {
  ResultUpdater(client, algoList, request, metadata, &parser).updateResult();
  client->context().destroyMetadata(metadata);
  AlgoNativeRequestMap::getInstance()->remove(nativeReq);
}

}  // namespace

int RequestProcessor::processImage(JNIEnv* env, int64_t inst, jobject request, jobject inputs,
                                   jobject outputs, jobject compositions) {
  auto* const client = reinterpret_cast<AlgoNativeClient*>(static_cast<uintptr_t>(inst));
  LOGD("process image E, %p %p %p %p %p", static_cast<void*>(client), static_cast<void*>(request),
       static_cast<void*>(inputs), static_cast<void*>(outputs), static_cast<void*>(compositions));
  if (client == nullptr || inputs == nullptr || outputs == nullptr || compositions == nullptr) {
    LOGE("process image failed, input is null, %p %p %p %p", static_cast<void*>(client),
         static_cast<void*>(inputs), static_cast<void*>(outputs), static_cast<void*>(compositions));
    return -1;
  }
  VRequest vrequest(env, request, inputs, outputs, compositions);
  CameraMetadataParser parser;
  if (parser.initFromEnv(env, false) != 0) LOGE("init parser failed");
  const jobject first = vrequest.firstComposition();
  parser.knowFrame(vrequest.firstCaptureResult(), first);
  std::vector<std::string> algoList;
  parser.getStringArray(algoList, kAlgoTypeKey, nullptr, first);
  void* const metadata = client->context().createMetadata();
  MetadataUpdater updater(client, algoList, vrequest, metadata, &parser);
  updater.updateMetadata();

  int32_t isAsync = 0;
  parser.getIntOrlu(isAsync, "isFullAsync", first);
  const bool isFullAsync = isAsync != 0;
  AlgoNativeRequestMap* const map = AlgoNativeRequestMap::getInstance();
  const uint64_t nativeReq = map->create(vrequest.requestId(), metadata, isFullAsync);
  map->setAlgoList(nativeReq, algoList);
  LOGD("algo list: %s, reqId = %lld, nativeReq %llu, isAsync %d", printAlgoList(algoList).c_str(),
       static_cast<long long>(vrequest.requestId()), static_cast<unsigned long long>(nativeReq), isAsync);

  if (!updater.skipAlgoProcess()) {
    processImageAlgo(vrequest, algoList, client, metadata, &parser,
                     static_cast<uint64_t>(vrequest.requestId()), nativeReq, isFullAsync,
                     metadataFrame(updater, vrequest));
  } else if (isFullAsync) {
    client->onPostProcessDataCommonShot(nativeReq);
  }
  // A full-async request lives on until processImageUpdateResult().
  if (!isFullAsync) finishRequest(client, algoList, vrequest, metadata, parser, nativeReq);
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
  if (!isFullAsync) AlgoNativeRequestMap::getInstance()->waitForCallback(nativeReq);
  return 0;
}

int RequestProcessor::processImageUpdateResult(JNIEnv* env, int64_t inst, jobject request, jobject inputs,
                                               jobject outputs, jobject compositions) {
  auto* const client = reinterpret_cast<AlgoNativeClient*>(static_cast<uintptr_t>(inst));
  LOGD("process image update result E, %p %p %p %p %p", static_cast<void*>(client),
       static_cast<void*>(request), static_cast<void*>(inputs), static_cast<void*>(outputs),
       static_cast<void*>(compositions));
  if (client == nullptr || inputs == nullptr || outputs == nullptr || compositions == nullptr) {
    LOGE("process image update result failed, input is null, %p %p %p %p", static_cast<void*>(client),
         static_cast<void*>(inputs), static_cast<void*>(outputs), static_cast<void*>(compositions));
    return -1;
  }
  VRequest vrequest(env, request, inputs, outputs, compositions);
  CameraMetadataParser parser;
  if (parser.initFromEnv(env, false) != 0) LOGE("init parser failed");
  const jobject first = vrequest.firstComposition();
  parser.knowFrame(vrequest.firstCaptureResult(), first);
  int64_t address = 0;
  parser.getLongOrlu(address, "nativeRequestAddr", first);
  const auto nativeReq = static_cast<uint64_t>(address);

  AlgoNativeRequestMap* const map = AlgoNativeRequestMap::getInstance();
  std::vector<std::string> algoList;
  const bool known = canBeEnded(nativeReq) && map->getAlgoList(nativeReq, algoList);
  if (!known) parser.getStringArray(algoList, kAlgoTypeKey, nullptr, first);
  LOGD("update result algo list: %s, reqId = %lld, nativeReq %llu getAlgoListResult %d",
       printAlgoList(algoList).c_str(), static_cast<long long>(vrequest.requestId()),
       static_cast<unsigned long long>(nativeReq), known ? 1 : 0);
  if (known) {
    finishRequest(client, algoList, vrequest, map->takeMetadataHandle(nativeReq), parser, nativeReq);
  } else {
    ResultUpdater(client, algoList, vrequest, nullptr, &parser).updateResult();
  }
  LOGD("process image update result X");
  return 0;
}

}  // namespace orlu
