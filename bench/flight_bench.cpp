// Benchmark of a request while others are in flight. AlgoNativeRequestMap searches from its first element,
// and the measured request is the last element, which takes longest to find.

#include "algo_native_request_map.h"
#include "benches.h"
#include "kinds.h"
#include "measured.h"

namespace orlu::bench {
namespace {

class InFlight {
public:
  explicit InFlight(int64_t requests) {
    for (int64_t i = 0; i < requests; ++i) mIds.push_back(map().create(i, nullptr, false));
  }
  InFlight(const InFlight&) = delete;
  InFlight& operator=(const InFlight&) = delete;
  // Removes the last element first, which moves the fewest elements.
  ~InFlight() {
    for (auto id = mIds.rbegin(); id != mIds.rend(); ++id) map().remove(*id);
  }

private:
  static AlgoNativeRequestMap& map() { return *AlgoNativeRequestMap::getInstance(); }

  std::vector<uint64_t> mIds;
};

// Runs all map operations of a synchronous request. Returns the seconds they took.
double mapSeconds() {
  AlgoNativeRequestMap& map = *AlgoNativeRequestMap::getInstance();
  const auto begin = Clock::now();
  const uint64_t id = map.create(1, nullptr, false);
  map.setAlgoList(id, {"night", "jpegEncode"});
  bool isFullAsync = false;
  map.getIsFullAsync(id, isFullAsync);
  map.onCallbackReceived(id);
  map.waitForCallback(id);
  map.remove(id);
  return Seconds(Clock::now() - begin).count();
}

void flightBench(benchmark::State& state, const ShotPlan& plan, int inFlight, int warmUp) {
  Shot shot(plan);
  RequestRunner runner(shot);
  const InFlight others(inFlight - 1);
  measure(state, runner, warmUp);
  std::vector<double> times(1000);
  for (double& time : times) time = mapSeconds();
  state.counters["map_us"] = median(times) * 1e6;
}

}  // namespace

void registerFlightBenches(const BenchSize& size) {
  for (const int inFlight : {1, 10, 100, 1000, 2500, 5000, 7500, 10000}) {
    benchmark::RegisterBenchmark(("in_flight/" + std::to_string(inFlight)).c_str(), flightBench,
                                 kinds()[0].plan, inFlight, size.warmUp() / 4)
        ->UseManualTime()
        ->Iterations(size.requests() / 2);
  }
}

}  // namespace orlu::bench
