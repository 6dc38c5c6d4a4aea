#include "algo_native_context.h"

#include <utility>

#include "log.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-AlgoNativeContext";

// A client is uninitialised for each of these, in this order.
constexpr ALGO_REQUEST_TYPE kUninitTypes[] = {kRequestPreview, kRequestCapture, kRequestType3, kRequestType5};

}  // namespace

AlgoNativeContext::AlgoNativeContext(JavaVM* javaVm) {
  LOGD("create client");
  mTable = std::make_shared<const AlgoGuardedTable>(javaVm);
  const auto& createClient = mTable->operations().createClient;
  if (createClient) {
    AlgoCreateClientRecord record;
    record.interfaceVersion = kAlgoTableVersion;
    mClient = mTable->call<void*>("createClient", createClient, nullptr, record);
  } else {
    LOGE("create client failed");
  }
  LOGD("created client %p", mClient);
}

AlgoNativeContext::~AlgoNativeContext() {
  destroyClient();
}

void AlgoNativeContext::destroyClient() {
  if (std::exchange(mIsClientDestroyed, true)) return;
  LOGD_AS("~AlgoNativeContext", "destroy client %p", mClient);
  const Table table = mTable;
  if (table->operations().destroyClient) {
    table->call("destroyClient", table->operations().destroyClient, -1, mClient);
  } else {
    LOGE_AS("~AlgoNativeContext", "destroy client failed");
  }
}

void AlgoNativeContext::init() {
  const Table table = mTable;
  if (!table->operations().init) {
    LOGE("init failed");
    return;
  }
  AlgoInitRecord record;
  record.client = mClient;
  table->call("init", table->operations().init, -1, record);
}

void AlgoNativeContext::uninit(int mode) {
  const Table table = mTable;
  if (!table->operations().uninit) {
    LOGE("uninit failed");
    return;
  }
  for (ALGO_REQUEST_TYPE type : kUninitTypes) {
    AlgoUninitRecord record;
    record.type = type;
    record.client = mClient;
    record.mode = mode;
    table->call("uninit", table->operations().uninit, -1, record);
  }
}

void AlgoNativeContext::flush() {
  const Table table = mTable;
  if (!table->operations().flush) {
    LOGE("flush failed");
    return;
  }
  AlgoFlushRecord record;
  record.client = mClient;
  table->call("flush", table->operations().flush, -1, record);
}

void AlgoNativeContext::abort(uint64_t first, uint64_t second, void* metadata) {
  const Table table = mTable;
  if (!table->operations().command) {
    LOGE("abort failed");
    return;
  }
  AlgoCommandRecord record;
  record.client = mClient;
  record.first = first;
  record.second = second;
  record.metadata.push_back(table->entryOf(metadata));
  table->call("command", table->operations().command, -1, record);
}

void AlgoNativeContext::notify() {
  const Table table = mTable;
  if (!table->operations().command) {
    LOGE("notify failed");
    return;
  }
  AlgoCommandRecord record;
  record.client = mClient;
  record.data.assign(kNotifyKill, kNotifyKill + sizeof kNotifyKill);
  table->call("command", table->operations().command, -1, record);
}

void AlgoNativeContext::process(ALGO_REQUEST_TYPE type, const std::vector<std::string>& algoList,
                                uint64_t nativeReq, const std::vector<AlgoFrameInfo>& inputs,
                                const std::vector<AlgoFrameInfo>& outputs, void* metadata,
                                uint64_t callbackCookie, uint64_t reqId,
                                const std::vector<uint8_t>& metadataBytes) {
  const Table table = mTable;
  if (!table->operations().process || !table->operations().metadataOps.getSize) {
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
  record.metadata.push_back(table->entryOf(metadata));

  void* const raw = table->createBlock(kCameraMetadataBlock);
  const auto rawSize = static_cast<unsigned>(metadataBytes.size());
  const auto& setRaw = table->operations().metadataOps.setRaw;
  if (raw != nullptr && setRaw) {
    table->call("setRaw", setRaw, -1, raw, reinterpret_cast<const char*>(metadataBytes.data()), rawSize);
  }
  AlgoMetadataEntry rawEntry;
  rawEntry.kind = kCameraMetadataBlock;
  rawEntry.block = raw;
  rawEntry.size = rawSize;
  record.metadata.push_back(rawEntry);

  table->call("process", table->operations().process, -1, record);
  // Java may have ended the request and destroyed the client meanwhile, and this object with it.
  table->destroyBlock(raw);
}

std::vector<uint8_t> AlgoNativeContext::getData(const std::string& cmd) {
  const Table table = mTable;
  if (!table->operations().getData) {
    LOGE("get data failed");
    return {};
  }
  std::vector<uint8_t> result(kQueryResultSize);
  AlgoGetDataRecord record;
  record.cmd = cmd;
  record.block = table->createBlock(kParameterBlock);
  record.size = table->sizeOf(record.block);
  record.client = mClient;
  table->call("getData", table->operations().getData, -1, record);
  const auto& getValue = table->operations().metadataOps.getValue;
  if (record.block != nullptr && getValue) {
    table->call("getValue", getValue, -1, record.block, kFeedback, kQueryResult, result.data(),
                kQueryResultSize);
  }
  table->destroyBlock(record.block);
  return result;
}

int AlgoNativeContext::translateParamFile(int fd, int size, const std::string& identifier) {
  const Table table = mTable;
  if (!table->operations().translateParamFile) {
    LOGE("translateParamFile failed");
    return 0;
  }
  AlgoTranslateParamFileRecord record;
  record.client = mClient;
  record.fd = fd;
  record.size = size;
  record.identifier = identifier;
  table->call("translateParamFile", table->operations().translateParamFile, -1, record);
  return 0;
}

void* AlgoNativeContext::createMetadata() {
  return Table(mTable)->createBlock(kParameterBlock);
}

void AlgoNativeContext::destroyMetadata(void* block) {
  Table(mTable)->destroyBlock(block);
}

int AlgoNativeContext::setValue(void* block, const char* section, const char* key, void* data,
                                unsigned size) {
  const Table table = mTable;
  const auto& operation = table->operations().metadataOps.setValue;
  if (block == nullptr || !operation) return -1;
  return table->call("setValue", operation, -1, block, section, key, data, size);
}

int AlgoNativeContext::getValue(void* block, const char* section, const char* key, void* data,
                                unsigned size) {
  const Table table = mTable;
  const auto& operation = table->operations().metadataOps.getValue;
  if (block == nullptr || !operation) return -1;
  return table->call("getValue", operation, -1, block, section, key, data, size);
}

int AlgoNativeContext::paramAlgoUpdateToSystem(void* block, const AlgoMetadataVisitor& visitor) {
  const Table table = mTable;
  const auto& operation = table->operations().metadataOps.paramAlgoUpdateToSystem;
  if (block == nullptr || !operation) return -1;
  return table->call("paramAlgoUpdateToSystem", operation, -1, block, LentVisitor(visitor).get());
}

int AlgoNativeContext::paramSystemDownloadToAlgo(void* block, const AlgoMetadataVisitor& visitor) {
  const Table table = mTable;
  const auto& operation = table->operations().metadataOps.paramSystemDownloadToAlgo;
  if (block == nullptr || !operation) return -1;
  return table->call("paramSystemDownloadToAlgo", operation, -1, block, LentVisitor(visitor).get());
}

}  // namespace orlu
