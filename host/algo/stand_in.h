// Implements the operations of the interface's tables. Only scripted exceptions are thrown.
#pragma once

#include <chrono>
#include <memory>

#include "algo_interface.h"
#include "algo_script.h"
#include "block_registry.h"
#include "clients.h"
#include "parameter_files.h"
#include "script_holder.h"
#include "trace.h"
#include "visits.h"
#include "worker.h"

namespace orlu::standin {

class StandIn {
public:
  // Created on first use and never destroyed: the worker and the callables are used until the process ends.
  static StandIn& instance();

  ScriptHolder& script() { return mScript; }
  Trace& trace() { return mTrace; }
  AlgoCounts count() const;
  bool waitIdle(std::chrono::milliseconds limit) { return mWorker.drainAll(limit); }

  // Runs the script's actions for a call of AlgoInterfaceEntry().
  void entry();

  // The callables of the tables. If a block is not live, getSize() returns 0, process() runs the request
  // without parameters, and the other callables that need the block return -1.
  int init(const AlgoInitRecord& record);
  int process(const AlgoProcessRecord& record);
  int uninit(const AlgoUninitRecord& record);
  int getData(const AlgoGetDataRecord& record);
  int flush(const AlgoFlushRecord& record);
  int command(const AlgoCommandRecord& record);
  void* createClient(const AlgoCreateClientRecord& record);
  int destroyClient(void* client);
  int translateParamFile(const AlgoTranslateParamFileRecord& record);

  void* createMetadata(int kind);
  void destroyMetadata(void* block);
  unsigned getSize(void* block);
  int setValue(void* block, const char* section, const char* key, void* data, unsigned size);
  int getValue(void* block, const char* section, const char* key, void* data, unsigned size);
  int setRaw(void* block, const char* bytes, unsigned size);
  int paramAlgoUpdateToSystem(void* block, const AlgoMetadataVisitor& visitor);
  int paramSystemDownloadToAlgo(void* block, const AlgoMetadataVisitor& visitor);

private:
  StandIn() = default;

  template <typename Body>
  int guarded(const char* operation, const Body& body) const;
  static void misbehave(const AlgoScript& script, const std::string& operation);
  void work(Request& request);
  static void echoFlag(ParameterSet& parameters);
  std::string answer(const std::string& cmd) const;
  std::shared_ptr<ParameterSet> parametersOf(const std::vector<AlgoMetadataEntry>& entries) const;

  ScriptHolder mScript;
  Trace mTrace;
  BlockRegistry mBlocks;
  Clients mClients;
  ParameterFiles mParameterFiles;
  Visits mVisits;
  Worker mWorker{[this](Request& request) { work(request); }};
};

}  // namespace orlu::standin
