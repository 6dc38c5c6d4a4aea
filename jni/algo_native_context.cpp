#include "algo_native_context.h"

#include <utility>

#include "algo_native_provider.h"
#include "log.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-AlgoNativeContext";

// A client is uninitialised for each of these, in this order.
constexpr ALGO_REQUEST_TYPE kUninitTypes[] = {kRequestPreview, kRequestCapture, kRequestType3, kRequestType5};

}  // namespace

AlgoNativeContext::AlgoNativeContext() {
  LOGD("create client");
  if (!AlgoNativeProvider::getInstance()->initAlgoInterface(&mCallbacks)) LOGE("init algo interface failed");
  if (mCallbacks.createClient) {
    AlgoCreateClientRecord record;
    record.interfaceVersion = kAlgoTableVersion;
    mClient = mCallbacks.createClient(record);
  } else {
    LOGE("create client failed");
  }
  LOGD("created client %p", mClient);
}

AlgoNativeContext::~AlgoNativeContext() {
  LOGD("destroy client %p", mClient);
  if (mCallbacks.destroyClient) {
    mCallbacks.destroyClient(mClient);
  } else {
    LOGE("destroy client failed");
  }
}

void AlgoNativeContext::init() {
  if (!mCallbacks.init) {
    LOGE("init failed");
    return;
  }
  AlgoInitRecord record;
  record.client = mClient;
  mCallbacks.init(record);
}

void AlgoNativeContext::uninit(int mode) {
  if (!mCallbacks.uninit) {
    LOGE("uninit failed");
    return;
  }
  for (ALGO_REQUEST_TYPE type : kUninitTypes) {
    AlgoUninitRecord record;
    record.type = type;
    record.client = mClient;
    record.mode = mode;
    mCallbacks.uninit(record);
  }
}

void AlgoNativeContext::flush() {
  if (!mCallbacks.flush) {
    LOGE("flush failed");
    return;
  }
  AlgoFlushRecord record;
  record.client = mClient;
  mCallbacks.flush(record);
}

void AlgoNativeContext::abort(uint64_t first, uint64_t second, void* metadata) {
  if (!mCallbacks.command) {
    LOGE("abort failed");
    return;
  }
  AlgoCommandRecord record;
  record.client = mClient;
  record.first = first;
  record.second = second;
  record.metadata.push_back(entryOf(metadata));
  mCallbacks.command(record);
}

void AlgoNativeContext::notify() {
  if (!mCallbacks.command) {
    LOGE("notify failed");
    return;
  }
  AlgoCommandRecord record;
  record.client = mClient;
  record.data.assign(kNotifyKill, kNotifyKill + sizeof kNotifyKill);
  mCallbacks.command(record);
}

void AlgoNativeContext::process(ALGO_REQUEST_TYPE type, const std::vector<std::string>& algoList,
                                uint64_t nativeReq, const std::vector<AlgoFrameInfo>& inputs,
                                const std::vector<AlgoFrameInfo>& outputs, void* metadata,
                                uint64_t callbackCookie, uint64_t reqId,
                                const std::vector<uint8_t>& metadataBytes) {
  if (!mCallbacks.process || !mCallbacks.metadataOps.getSize) {
    LOGE("process failed");
    return;
  }
  AlgoProcessRecord record;
  record.requestType = type;
  record.nativeReq = nativeReq;
  record.algoList = algoList;
  record.client = mClient;
  record.callbackCookie = callbackCookie;
  record.reqId = reqId;
  record.inputFrames = inputs;
  record.outputFrames = outputs;
  record.metadata.reserve(2);
  record.metadata.push_back(entryOf(metadata));

  void* const raw = createBlock(kCameraMetadataBlock);
  const auto rawSize = static_cast<unsigned>(metadataBytes.size());
  if (raw != nullptr && mCallbacks.metadataOps.setRaw) {
    mCallbacks.metadataOps.setRaw(raw, reinterpret_cast<const char*>(metadataBytes.data()), rawSize);
  }
  AlgoMetadataEntry rawEntry;
  rawEntry.kind = kCameraMetadataBlock;
  rawEntry.block = raw;
  rawEntry.size = rawSize;
  record.metadata.push_back(rawEntry);

  mCallbacks.process(record);
  destroyMetadata(raw);
}

std::vector<uint8_t> AlgoNativeContext::getData(const std::string& cmd) {
  if (!mCallbacks.getData) {
    LOGE("get data failed");
    return {};
  }
  AlgoGetDataRecord record;
  record.cmd = cmd;
  record.block = createMetadata();
  record.size = sizeOf(record.block);
  record.client = mClient;
  mCallbacks.getData(record);

  std::vector<uint8_t> result(kQueryResultSize);
  getValue(record.block, kFeedback, kQueryResult, result.data(), kQueryResultSize);
  destroyMetadata(record.block);
  return result;
}

int AlgoNativeContext::translateParamFile(int fd, int size, const std::string& identifier) {
  if (!mCallbacks.translateParamFile) {
    LOGE("translateParamFile failed");
    return 0;
  }
  AlgoTranslateParamFileRecord record;
  record.client = mClient;
  record.fd = fd;
  record.size = size;
  record.identifier = identifier;
  mCallbacks.translateParamFile(record);
  return 0;
}

void* AlgoNativeContext::createMetadata() {
  return createBlock(kParameterBlock);
}

void* AlgoNativeContext::createBlock(AlgoMetadataKind kind) {
  if (!mCallbacks.metadataOps.createMetadata) {
    LOGE("createMetadata failed");
    return nullptr;
  }
  return mCallbacks.metadataOps.createMetadata(kind);
}

void AlgoNativeContext::destroyMetadata(void* block) {
  if (block == nullptr) return;
  if (!mCallbacks.metadataOps.destroyMetadata) {
    LOGE("destroyMetadata failed");
    return;
  }
  mCallbacks.metadataOps.destroyMetadata(block);
}

int AlgoNativeContext::setValue(void* block, const char* section, const char* key, void* data,
                                unsigned size) {
  if (block == nullptr || !mCallbacks.metadataOps.setValue) return -1;
  return mCallbacks.metadataOps.setValue(block, section, key, data, size);
}

int AlgoNativeContext::getValue(void* block, const char* section, const char* key, void* data,
                                unsigned size) {
  if (block == nullptr || !mCallbacks.metadataOps.getValue) return -1;
  return mCallbacks.metadataOps.getValue(block, section, key, data, size);
}

int AlgoNativeContext::paramAlgoUpdateToSystem(void* block, AlgoMetadataVisitor visitor) {
  if (block == nullptr || !mCallbacks.metadataOps.paramAlgoUpdateToSystem) return -1;
  return mCallbacks.metadataOps.paramAlgoUpdateToSystem(block, std::move(visitor));
}

int AlgoNativeContext::paramSystemDownloadToAlgo(void* block, AlgoMetadataVisitor visitor) {
  if (block == nullptr || !mCallbacks.metadataOps.paramSystemDownloadToAlgo) return -1;
  return mCallbacks.metadataOps.paramSystemDownloadToAlgo(block, std::move(visitor));
}

AlgoMetadataEntry AlgoNativeContext::entryOf(void* parameterBlock) const {
  AlgoMetadataEntry entry;
  entry.block = parameterBlock;
  entry.size = sizeOf(parameterBlock);
  return entry;
}

unsigned AlgoNativeContext::sizeOf(void* block) const {
  return block == nullptr || !mCallbacks.metadataOps.getSize ? 0 : mCallbacks.metadataOps.getSize(block);
}

}  // namespace orlu
