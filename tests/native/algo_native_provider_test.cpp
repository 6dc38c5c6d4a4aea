#include "algo_native_provider.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "algo.h"
#include "algo_native_context.h"
#include "error_lines.h"

namespace orlu {
namespace {

TEST(AlgoNativeProviderTest, RejectsANullTable) {
  test::LogCapture log;
  EXPECT_FALSE(AlgoNativeProvider::getInstance()->initAlgoInterface(nullptr));
  EXPECT_EQ("init algo interface failed, input is null\n",
            test::errorText(log, "_V_VASJNI-AlgoNativeProvider"));
}

TEST(AlgoNativeProviderTest, EmptiesTheTableFirst) {
  test::Algo algo;
  algo.script.notOffered = {"flush", "getValue"};
  algo.use();
  AlgoInterfaceCallbacks table;
  table.version = 9;
  table.reserved = [](void*) { return 0; };
  table.flush = [](const AlgoFlushRecord&) { return 0; };
  table.metadataOps.getValue = [](void*, const char*, const char*, void*, unsigned) { return 0; };
  EXPECT_TRUE(AlgoNativeProvider::getInstance()->initAlgoInterface(&table));
  EXPECT_EQ(0, table.version);
  EXPECT_FALSE(table.reserved);
  EXPECT_FALSE(table.flush);
  EXPECT_FALSE(table.metadataOps.getValue);
  EXPECT_TRUE(table.command);
  EXPECT_TRUE(table.metadataOps.setValue);
}

TEST(AlgoNativeProviderTest, TheConstructorOpensTheLibrary) {
  test::Algo algo;
  int entered = 0;
  algo.script.entry = [&entered] { ++entered; };
  algo.use();
  const AlgoNativeProvider provider;
  EXPECT_EQ(1, entered);
}

TEST(AlgoNativeProviderTest, GivesEachContextATableOfItsOwn) {
  test::LogCapture log;
  test::Algo algo;
  algo.script.notOffered = {"flush"};
  algo.use();
  AlgoNativeContext first;
  algo.script.notOffered = {};
  algo.use();
  AlgoNativeContext second;
  EXPECT_EQ(2, test::Algo::counts().clients);  // both of the same library
  second.flush();
  EXPECT_EQ(0, log.errors("_V_VASJNI-AlgoNativeContext", "flush failed"));
  first.flush();
  EXPECT_EQ(1, log.errors("_V_VASJNI-AlgoNativeContext", "flush failed"));
  EXPECT_EQ("createClient createClient flush", algo.operations());
}

// The provider must not hold its lock while the entry runs: this entry creates clients on the calling thread
// and on another thread.
TEST(AlgoNativeProviderDeathTest, LetsTheEntryMakeClients) {
  // Restarts the program to get a process without clients. Emulated processes cannot start programs, so they
  // fork.
#if !defined(__arm__)
  GTEST_FLAG_SET(death_test_style, "threadsafe");
#endif
  const auto makeClients = [] {
    test::Algo algo;
    std::atomic<int> entered = 0;
    algo.script.entry = [&entered] {
      if (++entered > 1) return;
      AlgoNativeContext inner;
      std::thread([] { AlgoNativeContext other; }).join();
    };
    algo.use();
    { AlgoNativeContext context; }
    std::fprintf(stderr, "entered %d clients %d\n", entered.load(), test::Algo::counts().clients);
    std::_Exit(0);
  };
  EXPECT_EXIT(makeClients(), testing::ExitedWithCode(0), "entered [34] clients 0");
}

}  // namespace
}  // namespace orlu
