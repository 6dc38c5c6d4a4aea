// Times four shots, each with and without tags, as a synchronous and as a full-async request. For
// each request, also times only its JNI calls, without the library's own work.

#include "benches.h"
#include "counts.h"
#include "kinds.h"
#include "measured.h"

namespace orlu::bench {
namespace {

void requestBench(benchmark::State& state, const ShotPlan& plan, int warmUp) {
  Shot shot(plan);
  RequestRunner runner(shot);
  measure(state, runner, warmUp);
  for (const auto& [name, count] : countsOf(runner)) state.counters[name] = static_cast<double>(count);
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
