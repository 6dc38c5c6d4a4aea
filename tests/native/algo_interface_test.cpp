// Tests the order of the callables in their tables. The algorithm library finds callables by position, and
// compilers can't check the positions.

#include "algo_interface.h"

#include <gtest/gtest.h>

namespace orlu {
namespace {

// Expects each callable to follow the previous one in memory, without gaps.
void expectInOrder(const std::vector<const void*>& callables) {
  const char* place = static_cast<const char*>(callables[0]);
  for (const void* callable : callables) {
    EXPECT_EQ(static_cast<const void*>(place), callable);
    place += sizeof(std::function<void()>);
  }
}

TEST(AlgoInterfaceTest, KeepsTheOrderOfCallables) {
  const AlgoInterfaceCallbacks table;
  const AlgoMetadataOps& ops = table.metadataOps;
  EXPECT_EQ(static_cast<const void*>(&table), &table.version);
  expectInOrder({&table.init, &table.process, &table.uninit, &table.getData, &table.reserved, &table.flush,
                 &table.command, &table.createClient, &table.destroyClient,
                 // The table of metadata operations is embedded here.
                 &ops.createMetadata, &ops.destroyMetadata, &ops.getSize, &ops.setValue, &ops.getValue,
                 &ops.setRaw, &ops.reserved, &ops.paramAlgoUpdateToSystem, &ops.paramSystemDownloadToAlgo,
                 &table.translateParamFile, &table + 1});
}

}  // namespace
}  // namespace orlu
