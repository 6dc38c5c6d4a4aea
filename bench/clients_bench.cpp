// Benchmark of concurrent clients, each on its own thread.

#include <atomic>
#include <thread>

#include "benches.h"
#include "jvm.h"
#include "kinds.h"
#include "measured.h"

namespace orlu::bench {
namespace {

// A barrier that releases all threads at the same time.
class StartLine {
public:
  explicit StartLine(int threads) : mMissing(threads) {}
  void wait() {
    --mMissing;
    while (mMissing > 0) std::this_thread::yield();
  }

private:
  std::atomic<int> mMissing;
};

void client(const ShotPlan& plan, StartLine& line, int warmUp, int requests, Seconds& latency) {
  const test::AttachedThread attached;
  Shot shot(plan);
  RequestRunner runner(shot);
  for (int i = 0; i < warmUp; ++i) runner.run();
  line.wait();
  std::vector<double> times;
  for (int i = 0; i < requests; ++i) times.push_back(runner.run().count());
  latency = Seconds(median(times));
}

// Runs one round, in which every client sends `requests` requests after its warm-up. Returns the time from
// the common start until the last client ends, and appends each client's median latency to `latencies`.
Seconds together(const ShotPlan& plan, size_t clients, int warmUp, int requests,
                 std::vector<double>& latencies) {
  StartLine line(static_cast<int>(clients) + 1);
  std::vector<Seconds> medians(clients);
  std::vector<std::thread> threads;
  for (Seconds& latency : medians) {
    threads.emplace_back(client, std::cref(plan), std::ref(line), warmUp, requests, std::ref(latency));
  }
  line.wait();
  const auto begin = Clock::now();
  for (std::thread& thread : threads) thread.join();
  const Seconds all = Clock::now() - begin;
  for (const Seconds& latency : medians) latencies.push_back(latency.count());
  return all;
}

void clientsBench(benchmark::State& state, const ShotPlan& plan, size_t clients, int warmUp, int requests) {
  std::vector<double> latencies;
  std::vector<double> rates;
  for (auto _ : state) {
    const Seconds all = together(plan, clients, warmUp, requests, latencies);
    rates.push_back(static_cast<double>(clients) * requests / all.count());
    state.SetIterationTime(all.count());
  }
  state.counters["request_us"] = median(latencies) * 1e6;
  state.counters["requests_per_s"] = median(rates);
}

}  // namespace

void registerClientsBenches(const BenchSize& size) {
  for (const size_t clients : {1, 2, 3, 4, 6, 8}) {
    benchmark::RegisterBenchmark(("clients/" + std::to_string(clients)).c_str(), clientsBench,
                                 kinds()[0].plan, clients, size.warmUp() / 4, size.requests())
        ->UseManualTime()
        ->Iterations(size.quick ? 3 : 9);
  }
}

}  // namespace orlu::bench
