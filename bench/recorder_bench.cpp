// Benchmark of the recorder: sends requests through the service's Java class, alternately without and with
// the recorder. The images are small, so the difference is the cost of a recording without its pixels.

#include <cstdlib>
#include <filesystem>
#include <string>

#include "benches.h"
#include "kinds.h"
#include "measured.h"
#include "recorder_calls.h"

namespace orlu::bench {
namespace {

void recorderBench(benchmark::State& state, const ShotPlan& plan, int warmUp) {
  Shot shot(plan);
  std::string folder = std::filesystem::temp_directory_path() / "recorder_bench_XXXXXX";
  if (mkdtemp(folder.data()) == nullptr) return state.SkipWithError("can't create a temporary folder");
  const jobject service = test::newService();
  const jlong client = test::newServiceClient(service, shot.firstComposition());
  const jobject recorder = test::newRecorder(folder, 1, int64_t{1} << 30);
  const auto seconds = [&](bool isRecorded) {
    shot.refresh();
    const NativeFrame frame;
    const auto begin = Clock::now();
    test::processImage(isRecorded ? recorder : nullptr, service, client, shot.request(), shot.inputs(),
                       shot.outputs(), shot.compositions());
    return Seconds(Clock::now() - begin).count();
  };
  for (int i = 0; i < warmUp; ++i) seconds(i % 2 == 0);
  std::vector<double> plainTimes;
  std::vector<double> times;
  for (auto _ : state) {
    plainTimes.push_back(seconds(false));
    times.push_back(seconds(true));
    state.SetIterationTime(times.back());
  }
  test::destroyServiceClient(service, client);
  uintmax_t bytes = 0;
  for (const auto& file : std::filesystem::recursive_directory_iterator(folder)) {
    if (file.is_regular_file()) bytes += file.file_size();
  }
  std::filesystem::remove_all(folder);
  state.counters["recorded_us"] = median(times) * 1e6;
  state.counters["plain_us"] = median(plainTimes) * 1e6;
  state.counters["ratio"] = median(ratios(times, plainTimes));
  state.counters["bytes"] = static_cast<double>(bytes);
}

}  // namespace

void registerRecorderBenches(const BenchSize& size) {
  for (const Kind& kind : kinds()) {
    benchmark::RegisterBenchmark(
        (std::string("recorder/") + kind.name).c_str(),
        [=](benchmark::State& state) { recorderBench(state, kind.plan, size.warmUp() / 10); })
        ->UseManualTime()
        ->Iterations(size.requests() / 5)
        ->Unit(benchmark::kMicrosecond);
  }
}

}  // namespace orlu::bench
