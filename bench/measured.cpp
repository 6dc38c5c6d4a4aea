#include "measured.h"

namespace orlu::bench {

void measure(benchmark::State& state, RequestRunner& runner, int warmUp) {
  runner.record();
  for (int i = 0; i < warmUp; ++i) {
    runner.run();
    runner.replay();
  }
  std::vector<double> requests;
  std::vector<double> floors;
  bool floorFirst = false;
  for (auto _ : state) {
    if (floorFirst) floors.push_back(runner.replay().count());
    requests.push_back(runner.run().count());
    if (!floorFirst) floors.push_back(runner.replay().count());
    floorFirst = !floorFirst;
    state.SetIterationTime(requests.back());
  }
  state.counters["request_us"] = median(requests) * 1e6;
  state.counters["floor_us"] = median(floors) * 1e6;
  state.counters["ratio"] = median(ratios(requests, floors));
}

}  // namespace orlu::bench
