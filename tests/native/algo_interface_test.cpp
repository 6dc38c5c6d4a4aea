// The order of the tables of callables, which no compiler checks: the algorithm library finds each by its
// place.

#include "algo_interface.h"

#include <gtest/gtest.h>

namespace orlu {
namespace {

// How many callables stand before this one in its table.
template <typename Table, typename Callable>
size_t placeOf(const Table& table, const void* first, const Callable& callable) {
  static_assert(sizeof(Callable) == sizeof(std::function<void()>));
  EXPECT_LE(reinterpret_cast<const char*>(&callable + 1), reinterpret_cast<const char*>(&table + 1));
  return static_cast<size_t>(reinterpret_cast<const char*>(&callable) - static_cast<const char*>(first)) /
         sizeof(Callable);
}

TEST(AlgoInterfaceTest, KeepsTheOrderOfMetadataOperations) {
  const AlgoMetadataOps ops;
  const auto place = [&ops](const auto& callable) { return placeOf(ops, &ops, callable); };
  EXPECT_EQ(0U, place(ops.createMetadata));
  EXPECT_EQ(1U, place(ops.destroyMetadata));
  EXPECT_EQ(2U, place(ops.getSize));
  EXPECT_EQ(3U, place(ops.setValue));
  EXPECT_EQ(4U, place(ops.getValue));
  EXPECT_EQ(5U, place(ops.setRaw));
  EXPECT_EQ(7U, place(ops.paramAlgoUpdateToSystem));
  EXPECT_EQ(8U, place(ops.paramSystemDownloadToAlgo));
  EXPECT_EQ(9 * sizeof(ops.getSize), sizeof ops);
}

TEST(AlgoInterfaceTest, KeepsTheOrderOfOperations) {
  const AlgoInterfaceCallbacks table;
  const auto place = [&table](const auto& callable) { return placeOf(table, &table.init, callable); };
  EXPECT_EQ(static_cast<const void*>(&table), &table.version);
  EXPECT_EQ(1U, place(table.process));
  EXPECT_EQ(2U, place(table.uninit));
  EXPECT_EQ(3U, place(table.getData));
  EXPECT_EQ(5U, place(table.flush));
  EXPECT_EQ(6U, place(table.command));
  EXPECT_EQ(7U, place(table.createClient));
  EXPECT_EQ(8U, place(table.destroyClient));
  EXPECT_EQ(9U, place(table.metadataOps.createMetadata));
  EXPECT_EQ(18U, place(table.translateParamFile));
}

}  // namespace
}  // namespace orlu
