// Measures the wake-up: the time from the start of the callback to the return of processImage(). The floor is
// the same time without the library: the same thread waits with only a mutex and a condition variable, then
// replays the request's JNI calls.

#include "algo_native_client.h"
#include "algo_native_request_map.h"
#include "answering_algo.h"
#include "benches.h"
#include "jvm.h"
#include "kinds.h"
#include "measured.h"
#include "worker.h"

namespace orlu::bench {
namespace {

Worker* gWorker = nullptr;

// While this object lives, the worker answers requests.
class AnsweredByWorker {
public:
  AnsweredByWorker() {
    gWorker = &mWorker;
    setProcessHandler([](const AlgoProcessRecord& record) {
      gWorker->post([cookie = record.callbackCookie, id = record.nativeReq] { callBack(cookie, id); });
    });
  }
  AnsweredByWorker(const AnsweredByWorker&) = delete;
  AnsweredByWorker& operator=(const AnsweredByWorker&) = delete;
  ~AnsweredByWorker() { setProcessHandler(nullptr); }

  Worker& worker() { return mWorker; }

private:
  Worker mWorker;
};

// Asks the worker and waits for its answer, without the library.
void waitBare(Worker& worker) {
  std::mutex mutex;
  std::condition_variable condition;
  bool answered = false;
  worker.post([&] {
    const std::lock_guard<std::mutex> lock(mutex);
    answered = true;
    condition.notify_all();
  });
  std::unique_lock<std::mutex> lock(mutex);
  condition.wait(lock, [&] { return answered; });
}

double sinceAnswer(const Worker& worker, const RequestRunner& runner) {
  return Seconds(runner.returned() - worker.answered()).count();
}

// Measures request and floor in each iteration, in alternating order.
template <typename Request, typename Floor>
void compare(benchmark::State& state, Request&& request, Floor&& floor, int warmUp) {
  for (int i = 0; i < warmUp; ++i) request(), floor();
  std::vector<double> requests;
  std::vector<double> floors;
  bool floorFirst = false;
  for (auto _ : state) {
    if (floorFirst) floors.push_back(floor());
    requests.push_back(request());
    if (!floorFirst) floors.push_back(floor());
    floorFirst = !floorFirst;
    state.SetIterationTime(requests.back());
  }
  state.counters["request_us"] = median(requests) * 1e6;
  state.counters["floor_us"] = median(floors) * 1e6;
  state.counters["ratio"] = median(requests) / median(floors);
}

// Measures the wait alone: from the callback to the end of waitForCallback(). Neither request nor floor has
// results.
void waitBench(benchmark::State& state, int warmUp) {
  AnsweredByWorker answered;
  AlgoNativeClient client(nullptr, 0, 0);
  AlgoNativeRequestMap& map = *AlgoNativeRequestMap::getInstance();
  const auto seconds = [&] { return Seconds(Clock::now() - answered.worker().answered()).count(); };
  const auto request = [&] {
    const uint64_t id = map.create(1, nullptr, false);
    answered.worker().post([&client, id] { callBack(client.callbackCookie(), id); });
    map.waitForCallback(id);
    const double elapsed = seconds();
    map.remove(id);
    return elapsed;
  };
  const auto floor = [&] {
    waitBare(answered.worker());
    return seconds();
  };
  compare(state, request, floor, warmUp);
}

void wakeupBench(benchmark::State& state, const ShotPlan& plan, int warmUp) {
  Shot shot(plan);
  RequestRunner runner(shot);
  runner.record();
  AnsweredByWorker answered;
  const auto request = [&] {
    runner.run();
    return sinceAnswer(answered.worker(), runner);
  };
  const auto floor = [&] {
    runner.replay([&] { waitBare(answered.worker()); });
    return sinceAnswer(answered.worker(), runner);
  };
  compare(state, request, floor, warmUp);
}

}  // namespace

void registerWakeupBenches(const BenchSize& size) {
  // A request without frames and compositions has no results, so only the wake-up is measured.
  ShotPlan bare;
  bare.frames = 0;
  const auto add = [&size](const std::string& name, const ShotPlan& plan) {
    benchmark::RegisterBenchmark(("wakeup/" + name).c_str(), wakeupBench, plan, size.warmUp() / 2)
        ->UseManualTime()
        ->Iterations(size.requests());
  };
  benchmark::RegisterBenchmark("wakeup/wait", waitBench, size.warmUp() / 2)
      ->UseManualTime()
      ->Iterations(size.requests());
  add("no_results", bare);
  for (const Kind& kind : kinds()) add(kind.name, kind.plan);
}

}  // namespace orlu::bench
