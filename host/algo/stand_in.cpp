#include "stand_in.h"

#include <string>
#include <utility>
#include <vector>

#include "java_thread.h"

namespace orlu::standin {
namespace {

constexpr std::chrono::seconds kFlushLimit{2};
// The mode before a client is destroyed, and when Java releases a client but passes no image format.
constexpr int32_t kUninitForGood = 0;
constexpr char kVersion[] = "orlu algorithm stand-in 1";
constexpr char kParamFileCommand[] = "paramfile ";

bool startsWith(const std::string& text, const std::string& start) {
  return text.compare(0, start.size(), start) == 0;
}

bool isKill(const std::vector<uint8_t>& data) {
  return startsWith(std::string(data.begin(), data.end()), kNotifyKill);
}

}  // namespace

StandIn& StandIn::instance() {
  static auto* const instance = new StandIn;
  return *instance;
}

// Runs an operation and returns its result, or -1 if it throws (for example, bad_alloc). Only scripted
// exceptions reach the caller. If the operation creates something, scripted faults occur before it, so that
// nothing leaks; otherwise after it.
template <typename Body>
int StandIn::guarded(const char* operation, const Body& body) const {
  const auto script = mScript.current();
  const bool creates = startsWith(operation, "create");
  if (creates) misbehave(*script, operation);
  int status = -1;
  try {
    status = body();
  } catch (...) {
  }
  if (!creates) misbehave(*script, operation);
  return status;
}

AlgoCounts StandIn::count() const {
  AlgoCounts counts;
  counts.clients = mClients.count();
  counts.parameterBlocks = mBlocks.count(kParameterBlock);
  counts.cameraBlocks = mBlocks.count(kCameraMetadataBlock);
  counts.pendingRequests = mWorker.pending();
  return counts;
}

int StandIn::init(const AlgoInitRecord& /*record*/) {
  return guarded("init", [] { return 0; });
}

int StandIn::process(const AlgoProcessRecord& record) {
  return guarded("process", [&] {
    const auto script = mScript.current();
    auto request = std::make_unique<Request>(record, script, parametersOf(record.metadata));
    if (script->callBackBeforeReturn) {
      mWorker.runHere(std::move(request));
    } else {
      mWorker.submit(std::move(request));
    }
    return script->processResult;
  });
}

int StandIn::uninit(const AlgoUninitRecord& record) {
  return guarded("uninit", [&] {
    const bool dropsRequests = record.mode == kUninitForGood && !mScript.current()->finishInDestroyClient;
    if (dropsRequests) mWorker.abandon(record.client);
    return 0;
  });
}

int StandIn::getData(const AlgoGetDataRecord& record) {
  return guarded("getData", [&] {
    const auto set = mBlocks.find(record.block);
    if (!set) return -1;
    const std::string text = answer(record.cmd);
    return set->set(kFeedback, kQueryResult, text.data(), text.size());
  });
}

int StandIn::flush(const AlgoFlushRecord& record) {
  return guarded("flush", [&] { return mWorker.drain(record.client, kFlushLimit) ? 0 : -1; });
}

int StandIn::command(const AlgoCommandRecord& record) {
  return guarded("command", [&] {
    if (isKill(record.data)) {
      mWorker.abandonAll();
      return 0;
    }
    const auto set = parametersOf(record.metadata);
    int64_t flag = 0;
    if (!set || set->get(kControl, "abort_val", &flag, sizeof flag) != 0) return -1;
    mWorker.abortQueued(record.client, flag);
    return 0;
  });
}

void* StandIn::createClient(const AlgoCreateClientRecord& record) {
  void* client = nullptr;
  guarded("createClient", [&] {
    client = mClients.create(record);
    return 0;
  });
  return client;
}

int StandIn::destroyClient(void* client) {
  return guarded("destroyClient", [&] {
    if (mScript.current()->finishInDestroyClient) mWorker.drain(client, kFlushLimit);
    mWorker.abandon(client);
    return mClients.destroy(client) ? 0 : -1;
  });
}

int StandIn::translateParamFile(const AlgoTranslateParamFileRecord& record) {
  return guarded("translateParamFile", [&] { return mParameterFiles.read(record); });
}

void* StandIn::createMetadata(int kind) {
  void* block = nullptr;
  guarded("createMetadata", [&] {
    block = mBlocks.create(kind);
    return 0;
  });
  return block;
}

void StandIn::destroyMetadata(void* block) {
  guarded("destroyMetadata", [&] {
    mVisits.callKept(block);
    mBlocks.destroy(block);
    return 0;
  });
}

unsigned StandIn::getSize(void* block) {
  unsigned size = 0;
  guarded("getSize", [&] {
    const auto set = mBlocks.find(block);
    if (set) size = static_cast<unsigned>(set->size());
    return 0;
  });
  return size;
}

int StandIn::setValue(void* block, const char* section, const char* key, void* data, unsigned size) {
  return guarded("setValue", [&] {
    const auto set = mBlocks.find(block);
    return set ? set->set(section, key, data, size) : -1;
  });
}

int StandIn::getValue(void* block, const char* section, const char* key, void* data, unsigned size) {
  return guarded("getValue", [&] {
    const auto set = mBlocks.find(block);
    const int status = set ? set->get(section, key, data, size) : -1;
    return status;
  });
}

int StandIn::setRaw(void* block, const char* bytes, unsigned size) {
  return guarded("setRaw", [&] {
    const auto set = mBlocks.find(block);
    return set ? set->setRaw(bytes, size) : -1;
  });
}

int StandIn::paramAlgoUpdateToSystem(void* block, const AlgoMetadataVisitor& visitor) {
  return guarded("paramAlgoUpdateToSystem", [&] {
    const auto set = mBlocks.find(block);
    if (!set || !visitor) return -1;
    int result = 0;
    for (ParameterSet::Value& value : set->values(kFeedback)) {
      const int status = mVisits.visit(*mScript.current(), block, visitor, value);
      if (status != 0) result = status;
    }
    return result;
  });
}

int StandIn::paramSystemDownloadToAlgo(void* block, const AlgoMetadataVisitor& visitor) {
  return guarded("paramSystemDownloadToAlgo", [&] {
    const auto set = mBlocks.find(block);
    if (!set || !visitor) return -1;
    // A value unknown to the system is not a failure.
    for (const WantedValue& wanted : mScript.current()->wanted) {
      ParameterSet::Value value = {wanted.section, wanted.key, std::vector<uint8_t>(wanted.size)};
      if (mVisits.visit(*mScript.current(), block, visitor, value) != 0) continue;
      set->set(wanted.section.c_str(), wanted.key.c_str(), value.bytes.data(), value.bytes.size());
    }
    return 0;
  });
}

void StandIn::misbehave(const AlgoScript& script, const std::string& operation) {
  if (script.leaving.count(operation) != 0) leaveJavaException();
  if (script.throwing.count(operation) != 0) throw ScriptedException();
}

void StandIn::entry() {
  const auto script = mScript.current();
  if (script->entry) script->entry();
  misbehave(*script, "AlgoInterfaceEntry");
}

void StandIn::work(Request& request) {
  RunReport report;
  if (request.script().runAlgorithms) report = AlgorithmChain(request).run();
  for (const ScriptedValue& value : request.script().values) {
    request.parameters().set(value.section.c_str(), value.key.c_str(), value.bytes.data(),
                             value.bytes.size());
  }
  if (request.script().echoFlag) echoFlag(request.parameters());
  mTrace.done(request.nativeReq(), report);
}

void StandIn::echoFlag(ParameterSet& parameters) {
  int64_t flag = 0;
  if (parameters.get(kControl, "frame_flag", &flag, sizeof flag) != 0) return;
  parameters.write(kControl, "current_base_frame_time", flag);
  // Readers use the time only if the index is not negative.
  if (parameters.read<int32_t>(kFeedback, "current_base_frame_idx", -1) < 0)
    parameters.write<int32_t>(kFeedback, "current_base_frame_idx", 0);
}

std::string StandIn::answer(const std::string& cmd) const {
  if (cmd == "version") return kVersion;
  if (startsWith(cmd, kParamFileCommand))
    return mParameterFiles.describe(cmd.substr(sizeof kParamFileCommand - 1));
  if (cmd != "status") return {};
  const AlgoCounts counts = count();
  return "clients " + std::to_string(counts.clients) + " parameterBlocks " +
         std::to_string(counts.parameterBlocks) + " cameraBlocks " + std::to_string(counts.cameraBlocks) +
         " pendingRequests " + std::to_string(counts.pendingRequests);
}

std::shared_ptr<ParameterSet> StandIn::parametersOf(const std::vector<AlgoMetadataEntry>& entries) const {
  for (const AlgoMetadataEntry& entry : entries) {
    if (entry.kind != kParameterBlock) continue;
    auto set = mBlocks.find(entry.block);
    if (set && set->kind() == kParameterBlock) return set;
  }
  return nullptr;
}

}  // namespace orlu::standin
