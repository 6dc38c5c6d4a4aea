// Soak test: soak [--requests N] [--seed S]. Clients on several threads of a Java VM send synchronous,
// full-async, aborted, skipped and timed-out requests. The algorithm library drops, repeats, delays and
// reorders callbacks, sends them on unattached threads, throws C++ exceptions and leaves Java exceptions
// pending. Clients are destroyed with requests in flight.
//
// Each request ends in one of five ways. The ledger compares each request's ending with its plan. At the end
// nothing may be leaked, and memory must have stopped growing.

#include <cstdlib>

#include "algo.h"
#include "figures.h"
#include "fixtures.h"
#include "jvm.h"
#include "options.h"
#include "soak_client.h"
#include "soak_log.h"
#include "soak_watch.h"

namespace orlu::fuzz {
namespace {

constexpr size_t kClients = 4;
constexpr uint64_t kRequestsOfAClient = 200;
constexpr uint64_t kWarmUp = 2'000;

// Runs one client after another until all requests are sent. After each request, tries to finish two requests
// that callbacks announced to Java.
void sendAll(SoakShared& shared, const SoakArguments& arguments, SoakWatch& watch, uint64_t seed) {
  const test::AttachedThread attached;
  bool isMore = true;
  for (uint64_t i = 0; isMore; ++i) {
    const test::LocalFrame frame;
    SoakClient client(shared, arguments, mixed(seed) + i);
    for (uint64_t sent = 0; isMore && sent < kRequestsOfAClient; ++sent) {
      const std::optional<uint64_t> request = watch.next();
      isMore = request.has_value();
      if (!isMore) break;
      client.send(*request);
      watch.done();
      for (int ended = 0; ended < 2 && client.endOne(); ++ended) continue;
    }
  }
}

// Runs all requests until each has ended. Returns true if all ended as planned.
bool soakClients(uint64_t seed, uint64_t requests, const std::vector<SoakArguments>& arguments,
                 SoakWatch& watch) {
  Ledger ledger(seed, requests);
  const standin::AlgoScript script = plainSoakScript(ledger);
  // A test::Algo would record every call, and the records of a long run would exceed the memory.
  test::setScript(&script);
  {
    SoakShared shared(ledger, seed);
    std::vector<std::thread> threads;
    for (size_t i = 0; i < kClients; ++i) {
      threads.emplace_back([&, i] { sendAll(shared, arguments[i], watch, seed + i); });
    }
    watch.watch();
    for (std::thread& thread : threads) thread.join();
  }
  test::Algo::waitIdle(15'000);
  {
    SoakShared shared(ledger, seed);
    SoakClient last(shared, arguments[0], seed);
    while (last.endOne()) continue;
  }
  test::setScript(nullptr);
  return ledger.print();
}

int globalReferences() {
  test::LocalFrame frame;
  jclass figures = test::findClass("com/orlu/fuzz/Figures");
  const jint count = test::env()->CallStaticIntMethod(
      figures, test::env()->GetStaticMethodID(figures, "globalReferences", "()I"));
  test::expectNoException("globalReferences");
  return count;
}

int soak(uint64_t seed, uint64_t requests) {
  test::LocalFrame frame;
  test::newObject("com/orlu/fuzz/Callbacks", "(Z)V", JNI_FALSE);
  std::vector<SoakArguments> arguments;
  for (size_t i = 0; i < kClients; ++i) arguments.push_back(makeSoakArguments());
  // The warm-up makes all one-time allocations, so that they do not count as leaks.
  std::printf("warm-up, for one-time allocations:\n");
  SoakWatch warmUp(kWarmUp);
  bool sound = soakClients(seed + 1, kWarmUp, arguments, warmUp);
  sound &= printLogged();
  globalReferences();

  const int references = globalReferences();
  const int descriptors = openDescriptors();
  const standin::AlgoCounts counts = test::Algo::counts();
  const uint64_t firstId = nextRequestId();
  std::printf("%" PRIu64 " requests, seed %" PRIu64 ":\n", requests, seed);
  SoakWatch watch(requests);
  sound &= soakClients(seed, requests, arguments, watch);
  sound &= printLogged();
  sound &= same("descriptors", descriptors, openDescriptors());
  sound &= same("global references", references, globalReferences());
  sound &= nothingIsLeft(counts, firstId);
  sound &= watch.memoryStoodStill();
  return sound ? 0 : 1;
}

}  // namespace
}  // namespace orlu::fuzz

int main(int argc, char** argv) {
  uint64_t requests = 200'000;
  uint64_t seed = 1;
  const std::vector<orlu::fuzz::NumberOption> options = {
      {"requests", &requests, 1},
      {"seed",     &seed,     0}
  };
  orlu::fuzz::readNumbers(argc, argv, options);
  if (!orlu::test::startCheckedJvm({"orlu-fuzz", "orlu-service", "orlu-host-framework"})) return 2;
  orlu::fuzz::watchLog();
  const int result = orlu::fuzz::soak(seed, requests);
  // jvmIsQuiet() also returns false if a callback thread leaked local references.
  return orlu::test::jvmIsQuiet() ? result : 3;
}
