// Benchmark of memory growth: the resident size after 10 %, 20 %, ... of many requests, which are alternately
// synchronous and full-async.

#include <memory>

#include "benches.h"
#include "kinds.h"
#include "measured.h"
#include "process_figures.h"

namespace orlu::bench {
namespace {

constexpr int kTenths = 10;

struct Pair {
  explicit Pair(ShotPlan plan)
      : sync(plan), async((plan.isFullAsync = true, plan)), first(sync), second(async) {}

  Shot sync;
  Shot async;
  RequestRunner first;
  RequestRunner second;
};

void memoryBench(benchmark::State& state, int tenth) {
  // All tenths that run share this pair. The last tenth frees it.
  static std::unique_ptr<Pair> pair;
  if (pair == nullptr) pair = std::make_unique<Pair>(kinds()[0].plan);
  for (auto _ : state) state.SetIterationTime((pair->first.run() + pair->second.run()).count());
  state.counters["resident_kb"] = static_cast<double>(test::residentBytes()) / 1024;
  if (tenth == kTenths) pair.reset();
}

}  // namespace

void registerMemoryBenches(const BenchSize& size) {
  const int64_t inTenth = size.memoryRequests / kTenths;
  for (int tenth = 1; tenth <= kTenths; ++tenth) {
    benchmark::RegisterBenchmark(("memory/" + std::to_string(inTenth * tenth)).c_str(), memoryBench, tenth)
        ->UseManualTime()
        ->Iterations(inTenth / 2);
  }
}

}  // namespace orlu::bench
