// Four kinds of shot, each with its tags and without, synchronous and full-async, over their floors.

#include "benches.h"
#include "kinds.h"
#include "measured.h"

namespace orlu::bench {
namespace {

void count(benchmark::State& state, const JniRecording& recording) {
  double& all = state.counters["jni"].value;
  double& most = state.counters["local_references"].value;
  for (const auto& [function, calls] : recording.counts()) {
    state.counters["jni:" + function].value += calls;
    all += calls;
  }
  most = std::max<double>(most, recording.mostLocalReferences());
}

void requestBench(benchmark::State& state, const ShotPlan& plan, int warmUp) {
  Shot shot(plan);
  RequestRunner runner(shot);
  measure(state, runner, warmUp);
  count(state, runner.first());
  count(state, runner.second());
  const HeapUse heap = runner.heap();
  const LogLines lines = runner.logLines();
  state.counters["allocations"] = static_cast<double>(heap.allocations);
  state.counters["allocated_bytes"] = static_cast<double>(heap.bytes);
  state.counters["debug_lines"] = lines.debug;
  state.counters["error_lines"] = lines.error;
}

}  // namespace

void registerRequestBenches(const BenchSize& size) {
  for (const Kind& kind : kinds()) {
    for (const bool withTags : {true, false}) {
      for (const bool isFullAsync : {false, true}) {
        ShotPlan plan = kind.plan;
        plan.withTags = withTags;
        plan.isFullAsync = isFullAsync;
        const std::string name = std::string("request/") + kind.name + (withTags ? "/tags" : "/no_tags") +
                                 (isFullAsync ? "/async" : "/sync");
        benchmark::RegisterBenchmark(name.c_str(), requestBench, plan, size.warmUp())
            ->UseManualTime()
            ->Iterations(size.requests());
      }
    }
  }
}

}  // namespace orlu::bench
