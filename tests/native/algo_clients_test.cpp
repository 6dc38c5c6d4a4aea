// Clients that are made and destroyed on several threads at once. What goes wrong is a race that
// ThreadSanitizer sees, or a client without its operations.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "algo.h"
#include "algo_native_client.h"

namespace orlu {
namespace {

TEST(AlgoClientsTest, AreMadeOnSeveralThreadsAtOnce) {
  constexpr int kThreads = 4;
  constexpr int kClientsOfEach = 50;
  std::atomic<int> blocks{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&blocks] {
      for (int k = 0; k < kClientsOfEach; ++k) {
        AlgoNativeClient client(nullptr, k, 0);
        void* const block = client.context().createMetadata();
        if (block != nullptr) ++blocks;
        client.context().destroyMetadata(block);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(kThreads * kClientsOfEach, blocks);
  EXPECT_EQ(0, test::Algo::counts().clients);
}

}  // namespace
}  // namespace orlu
