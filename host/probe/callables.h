// Names of the callables in an algorithm library's table.
#pragma once

#include "algo_interface.h"

namespace orlu::probe {

// Calls visit(name, callable) for each callable that the library should offer, in the order of the table.
template <typename Table, typename Visit>
void forEachCallable(Table& table, Visit visit) {
  auto& ops = table.metadataOps;
  visit("init", table.init);
  visit("process", table.process);
  visit("uninit", table.uninit);
  visit("getData", table.getData);
  visit("flush", table.flush);
  visit("command", table.command);
  visit("createClient", table.createClient);
  visit("destroyClient", table.destroyClient);
  visit("createMetadata", ops.createMetadata);
  visit("destroyMetadata", ops.destroyMetadata);
  visit("getSize", ops.getSize);
  visit("setValue", ops.setValue);
  visit("getValue", ops.getValue);
  visit("setRaw", ops.setRaw);
  visit("paramAlgoUpdateToSystem", ops.paramAlgoUpdateToSystem);
  visit("paramSystemDownloadToAlgo", ops.paramSystemDownloadToAlgo);
  visit("translateParamFile", table.translateParamFile);
}

}  // namespace orlu::probe
