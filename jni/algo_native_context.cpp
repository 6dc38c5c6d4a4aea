#include "algo_native_context.h"

#include "log.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-AlgoNativeContext";

// uninit() runs for each of these types, in this order.
constexpr ALGO_REQUEST_TYPE kUninitTypes[] = {kRequestPreview, kRequestCapture, kRequestType3, kRequestType5};

}  // namespace

AlgoNativeContext::AlgoNativeContext(JavaVM* javaVm) {
  LOGD("create client");
  mTable = std::make_unique<const AlgoGuardedTable>(javaVm);
  const auto& createClient = operations().createClient;
  if (createClient) {
    AlgoCreateClientRecord record;
    record.interfaceVersion = kAlgoTableVersion;
    mClient = mTable->call<void*>(mTable->environment(), "createClient", createClient, nullptr, record);
  } else {
    LOGE("create client failed");
  }
  LOGD("created client %p", mClient);
}

AlgoNativeContext::~AlgoNativeContext() {
  destroyClient();
}

void AlgoNativeContext::destroyClient() {
  if (mIsClientDestroyed.exchange(true)) return;
  LOGD_AS("~AlgoNativeContext", "destroy client %p", mClient);
  const auto& destroy = operations().destroyClient;
  if (destroy) {
    mTable->call(mTable->environment(), "destroyClient", destroy, -1, mClient);
  } else {
    LOGE_AS("~AlgoNativeContext", "destroy client failed");
  }
}

template <typename Record>
void AlgoNativeContext::submit(const char* name, const std::function<int(const Record&)>& callable,
                               const Record& record) {
  // During an earlier operation of the same native method, a callback to Java may have destroyed the client.
  if (mIsClientDestroyed) return;
  mTable->call(mTable->environment(), name, callable, -1, record);
}

void AlgoNativeContext::init() {
  const auto& init = operations().init;
  if (!init) {
    LOGE("init failed");
    return;
  }
  AlgoInitRecord record;
  record.client = mClient;
  submit("init", init, record);
}

void AlgoNativeContext::uninit(int mode) {
  const auto& uninit = operations().uninit;
  if (!uninit) {
    LOGE("uninit failed");
    return;
  }
  for (ALGO_REQUEST_TYPE type : kUninitTypes) {
    AlgoUninitRecord record;
    record.type = type;
    record.client = mClient;
    record.mode = mode;
    submit("uninit", uninit, record);
  }
}

void AlgoNativeContext::flush() {
  const auto& flush = operations().flush;
  if (!flush) {
    LOGE("flush failed");
    return;
  }
  AlgoFlushRecord record;
  record.client = mClient;
  submit("flush", flush, record);
}

void AlgoNativeContext::abort(uint64_t first, uint64_t second, void* metadata) {
  const auto& command = operations().command;
  if (!command) {
    LOGE("abort failed");
    return;
  }
  AlgoCommandRecord record;
  record.client = mClient;
  record.first = first;
  record.second = second;
  record.metadata.push_back(mTable->entryOf(metadata));
  submit("command", command, record);
}

void AlgoNativeContext::notify() {
  const auto& command = operations().command;
  if (!command) {
    LOGE("notify failed");
    return;
  }
  AlgoCommandRecord record;
  record.client = mClient;
  record.data.assign(kNotifyKill, kNotifyKill + sizeof kNotifyKill);
  submit("command", command, record);
}

void AlgoNativeContext::process(ALGO_REQUEST_TYPE type, const std::vector<std::string>& algoList,
                                uint64_t nativeReq, const std::vector<AlgoFrameInfo>& inputs,
                                const std::vector<AlgoFrameInfo>& outputs, void* metadata,
                                uint64_t callbackCookie, uint64_t reqId,
                                const std::vector<uint8_t>& metadataBytes) {
  const auto& process = operations().process;
  if (!process || !operations().metadataOps.getSize) {
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
  record.metadata.push_back(mTable->entryOf(metadata));

  void* const raw = mTable->createBlock(kCameraMetadataBlock);
  const auto rawSize = static_cast<unsigned>(metadataBytes.size());
  const auto& setRaw = operations().metadataOps.setRaw;
  if (raw != nullptr && setRaw) {
    mTable->call(mTable->environment(), "setRaw", setRaw, -1, raw,
                 reinterpret_cast<const char*>(metadataBytes.data()), rawSize);
  }
  AlgoMetadataEntry rawEntry;
  rawEntry.kind = kCameraMetadataBlock;
  rawEntry.block = raw;
  rawEntry.size = rawSize;
  record.metadata.push_back(rawEntry);

  submit("process", process, record);
  mTable->destroyBlock(raw);
}

std::vector<uint8_t> AlgoNativeContext::getData(const std::string& cmd) {
  const auto& getData = operations().getData;
  if (!getData) {
    LOGE("get data failed");
    return {};
  }
  std::vector<uint8_t> result(kQueryResultSize);
  AlgoGetDataRecord record;
  record.cmd = cmd;
  record.block = mTable->createBlock(kParameterBlock);
  record.size = mTable->sizeOf(record.block);
  record.client = mClient;
  submit("getData", getData, record);
  getValue(record.block, kFeedback, kQueryResult, result.data(), kQueryResultSize);
  mTable->destroyBlock(record.block);
  return result;
}

int AlgoNativeContext::translateParamFile(int fd, int size, const std::string& identifier) {
  const auto& translate = operations().translateParamFile;
  if (!translate) {
    LOGE("translateParamFile failed");
    return 0;
  }
  AlgoTranslateParamFileRecord record;
  record.client = mClient;
  record.fd = fd;
  record.size = size;
  record.identifier = identifier;
  submit("translateParamFile", translate, record);
  return 0;
}

void* AlgoNativeContext::createMetadata() {
  return mTable->createBlock(kParameterBlock);
}

void AlgoNativeContext::destroyMetadata(void* block) {
  mTable->destroyBlock(block);
}

int AlgoNativeContext::setValue(void* block, const char* section, const char* key, void* data,
                                unsigned size) {
  return mTable->setValue(mTable->environment(), block, section, key, data, size);
}

int AlgoNativeContext::getValue(void* block, const char* section, const char* key, void* data,
                                unsigned size) {
  return mTable->getValue(mTable->environment(), block, section, key, data, size);
}

int AlgoNativeContext::paramAlgoUpdateToSystem(void* block, const AlgoMetadataVisitor& visitor) {
  return visit("paramAlgoUpdateToSystem", operations().metadataOps.paramAlgoUpdateToSystem, block, visitor);
}

int AlgoNativeContext::paramSystemDownloadToAlgo(void* block, const AlgoMetadataVisitor& visitor) {
  return visit("paramSystemDownloadToAlgo", operations().metadataOps.paramSystemDownloadToAlgo, block,
               visitor);
}

int AlgoNativeContext::visit(const char* name, const std::function<int(void*, AlgoMetadataVisitor)>& callable,
                             void* block, const AlgoMetadataVisitor& visitor) {
  if (block == nullptr || !callable) return -1;
  return mTable->call(mTable->environment(), name, callable, -1, block, LentVisitor(visitor).get());
}

}  // namespace orlu
