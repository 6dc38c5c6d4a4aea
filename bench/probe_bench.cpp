// Benchmark of the probe: runs each request alternately without and with the probe. The algorithm library
// calls back at once, so the measured ratio is the largest relative cost of the probe.

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "answering_algo.h"
#include "benches.h"
#include "event_recorder.h"
#include "kinds.h"
#include "measured.h"

namespace orlu::bench {
namespace {

probe::EventRecorder& recorder() {
  static auto* const recorder = new probe::EventRecorder();
  return *recorder;
}

void watchTable(AlgoInterfaceCallbacks* table) {
  *table = probe::watchedTable(*table, recorder());
}

// Makes the probe write its events to `file`. If `file` is "", the probe only forwards calls.
void writeEventsTo(const char* file) {
  setenv("ORLU_EVENTS", file, 1);
  recorder().open();
}

void probeBench(benchmark::State& state, const ShotPlan& plan, int warmUp, bool writes) {
  Shot plainShot(plan);
  RequestRunner plain(plainShot);
  setTableFilter(watchTable);
  Shot watchedShot(plan);
  RequestRunner watched(watchedShot);
  setTableFilter(nullptr);
  char file[] = "/tmp/probe_bench_XXXXXX";
  close(mkstemp(file));
  writeEventsTo(writes ? file : "");
  for (int i = 0; i < warmUp; ++i) {
    plain.run();
    watched.run();
  }
  std::vector<double> plainTimes;
  std::vector<double> times;
  for (auto _ : state) {
    plainTimes.push_back(plain.run().count());
    times.push_back(watched.run().count());
    state.SetIterationTime(times.back());
  }
  writeEventsTo("");
  std::remove(file);
  state.counters["request_us"] = median(times) * 1e6;
  state.counters["plain_us"] = median(plainTimes) * 1e6;
  state.counters["ratio"] = median(ratios(times, plainTimes));
}

}  // namespace

void registerProbeBenches(const BenchSize& size) {
  for (const Kind& kind : kinds()) {
    for (const bool writes : {false, true}) {
      const std::string name = std::string("probe/") + (writes ? "events/" : "forwards/") + kind.name;
      benchmark::RegisterBenchmark(
          name.c_str(),
          [=](benchmark::State& state) { probeBench(state, kind.plan, size.warmUp() / 10, writes); })
          ->UseManualTime()
          ->Iterations(size.requests() / 5)
          ->Unit(benchmark::kMicrosecond);
    }
  }
}

}  // namespace orlu::bench
