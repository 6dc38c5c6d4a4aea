// request_bench [--quick] [--memory=REQUESTS] [options of Google Benchmark]

#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "benches.h"
#include "jvm.h"
#include "kinds.h"
#include "log_capture.h"
#include "request_runner.h"

namespace {

constexpr char kQuick[] = "--quick";
constexpr char kMemory[] = "--memory=";

int64_t numberOf(const char* text) {
  int64_t number = 0;
  const char* const end = text + std::strlen(text);
  const auto [read, error] = std::from_chars(text, end, number);
  if (error == std::errc() && read == end && number >= 0) return number;
  std::fprintf(stderr, "request_bench: --memory: expected a non-negative number, found \"%s\"\n", text);
  std::exit(2);
}

// Parses and removes this program's own options.
orlu::bench::BenchSize readSize(int& argc, char** argv) {
  orlu::bench::BenchSize size;
  int kept = 1;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], kQuick) == 0) {
      size.quick = true;
    } else if (std::strncmp(argv[i], kMemory, sizeof kMemory - 1) == 0) {
      size.memoryRequests = numberOf(argv[i] + sizeof kMemory - 1);
    } else {
      argv[kept++] = argv[i];
    }
  }
  argc = kept;
  return size;
}

// The Java heap has a fixed size and is touched at start, so that it does not count as growth of the process.
bool startVm() {
  return orlu::test::startJvm(
      {"orlu-service", "orlu-host-framework", "/usr/share/java/jackson-core.jar"},
      {"-Xms256m", "-Xmx256m", "-XX:+AlwaysPreTouch", "-XX:+UseSerialGC", "-XX:-UsePerfData"});
}

// Runs enough requests for the VM to compile the code that every request uses.
void warmUp(const orlu::bench::BenchSize& size) {
  orlu::bench::Shot shot(orlu::bench::kinds()[1].plan);
  orlu::bench::RequestRunner runner(shot);
  for (int i = 0; i < 5 * size.warmUp(); ++i) runner.run();
}

}  // namespace

int main(int argc, char** argv) {
  const orlu::bench::BenchSize size = readSize(argc, argv);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  if (!startVm()) return 2;
  orlu::bench::silenceLog();
  orlu::bench::registerRequestBenches(size);
  orlu::bench::registerWakeupBenches(size);
  orlu::bench::registerGrowthBenches(size);
  orlu::bench::registerFlightBenches(size);
  orlu::bench::registerClientsBenches(size);
  orlu::bench::registerProbeBenches(size);
  orlu::bench::registerRecorderBenches(size);
  if (size.memoryRequests > 0) orlu::bench::registerMemoryBenches(size);
  warmUp(size);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
