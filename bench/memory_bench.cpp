// Whether a process that lives long grows: its resident size at every tenth of many requests, synchronous and
// full-async in turn.

#include <unistd.h>

#include <fstream>
#include <memory>

#include "benches.h"
#include "kinds.h"
#include "measured.h"

namespace orlu::bench {
namespace {

constexpr int kTenths = 10;

double residentKilobytes() {
  std::ifstream file("/proc/self/statm");
  int64_t size = 0;
  int64_t resident = 0;
  file >> size >> resident;
  return static_cast<double>(resident * sysconf(_SC_PAGESIZE)) / 1024;
}

struct Pair {
  explicit Pair(ShotPlan plan)
      : sync(plan), async((plan.isFullAsync = true, plan)), first(sync), second(async) {}

  Shot sync;
  Shot async;
  RequestRunner first;
  RequestRunner second;
};

void memoryBench(benchmark::State& state, int tenth) {
  // One pair for all tenths, made in the first and freed in the last.
  static std::unique_ptr<Pair> pair;
  if (tenth == 1) pair = std::make_unique<Pair>(kinds()[0].plan);
  for (auto _ : state) state.SetIterationTime((pair->first.run() + pair->second.run()).count());
  state.counters["resident_kb"] = residentKilobytes();
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
