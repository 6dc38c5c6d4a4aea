// Measures how a request's time grows with the number of frames, and with the number of tags per frame.

#include "benches.h"
#include "kinds.h"
#include "measured.h"

namespace orlu::bench {
namespace {

void growthBench(benchmark::State& state, const ShotPlan& plan, int warmUp) {
  Shot shot(plan);
  RequestRunner runner(shot);
  measure(state, runner, warmUp);
  state.counters["jni"] = static_cast<double>(runner.first().size());
  state.counters["allocations"] = static_cast<double>(runner.heap().allocations);
}

void add(const char* what, int value, const ShotPlan& plan, const BenchSize& size) {
  benchmark::RegisterBenchmark((std::string(what) + "/" + std::to_string(value)).c_str(), growthBench, plan,
                               size.warmUp() / 4)
      ->UseManualTime()
      ->Iterations(size.requests() / 2);
}

}  // namespace

void registerGrowthBenches(const BenchSize& size) {
  const ShotPlan night = kinds()[1].plan;
  for (const int frames : {1, 2, 5, 10, 20, 30, 40, 50}) {
    ShotPlan plan = night;
    plan.frames = frames;
    add("frames", frames, plan, size);
    plan.hardwareBuffers = false;
    add("shared_frames", frames, plan, size);
  }
  const ShotPlan capture = kinds()[0].plan;
  for (const int tags : {0, 50, 100, 150, 200, 250, 300, 350, 400}) {
    ShotPlan plan = capture;
    plan.tagNum = tags;
    add("tags", tags, plan, size);
  }
}

}  // namespace orlu::bench
