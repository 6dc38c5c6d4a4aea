#include "measured.h"

#include <android/sharedmem.h>
#include <fcntl.h>
#include <unistd.h>

namespace orlu::bench {
namespace {

// Measures the time that the system takes to duplicate and close the descriptors of shared-memory images, and
// to return their sizes. This cost is unavoidable, but the floor (the time of the request's JNI calls alone)
// does not include it.
double descriptorSeconds(int memory, int images) {
  std::vector<int> open(static_cast<size_t>(images));
  const auto begin = Clock::now();
  for (int& fd : open) {
    fd = fcntl(memory, F_DUPFD_CLOEXEC, 0);
    benchmark::DoNotOptimize(ASharedMemory_getSize(fd));
  }
  for (const int fd : open) close(fd);
  return Seconds(Clock::now() - begin).count();
}

void measureDescriptors(benchmark::State& state, int images) {
  const int memory = ASharedMemory_create("bench", 4096);
  std::vector<double> times(1000);
  for (double& time : times) time = descriptorSeconds(memory, images);
  close(memory);
  const double descriptors = median(times) * 1e6;
  state.counters["descriptors_us"] = descriptors;
  state.counters["ratio_descriptors"] =
      state.counters["request_us"] / (state.counters["floor_us"] + descriptors);
}

}  // namespace

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
  if (!runner.plan().hardwareBuffers) measureDescriptors(state, runner.plan().images());
}

}  // namespace orlu::bench
