// Checks that a destroyed client leaves nothing behind, calls back no more and writes to no output, and that
// uninit affects only its own client, which works again after init.
#include <algorithm>
#include <atomic>

#include "checks.h"
#include "holdings.h"
#include "scene.h"

namespace orlu::conform {
namespace {

constexpr int kClients = 50;
constexpr int kAtOnce = 10;
constexpr std::chrono::seconds kEnding{3};  // limit for destroyed clients to release resources
constexpr size_t kBytesOfClient = 512;      // this much growth per client is a leak

// Creates a client, submits two requests and destroys the client. If `waits`, waits for each request's
// callback after submitting the request.
void live(Inbox& inbox, bool waits) {
  const Image input;
  const Image output({}, 2);
  Block parameters[2];
  Client client;
  for (const uint64_t id : {uint64_t{1}, uint64_t{2}}) {
    Request request;
    request.nativeReq = id;
    request.inputs = {&input};
    request.outputs = {&output};
    submit(client, inbox, parameters[static_cast<size_t>(id - 1)], request);
    const bool came = !waits || inbox.waitFor(id);
    HOLDS(came) << kNoCallback << "request " << id << " of a new client";
  }
  inbox.forget();
}

void liveAtOnce(Inbox& inbox) {
  std::vector<std::thread> threads;
  threads.reserve(kAtOnce);
  for (int i = 0; i < kAtOnce; ++i) threads.emplace_back([&inbox] { live(inbox, false); });
  for (std::thread& thread : threads) thread.join();
  inbox.forget();
}

// Waits at most kEnding until the numbers of threads and descriptors are back at `before`. Returns the
// remaining growth.
Holdings settledGrowth(const Holdings& before) {
  const auto end = std::chrono::steady_clock::now() + kEnding;
  Holdings least = Holdings::now() - before;
  while (std::chrono::steady_clock::now() < end && (least.threads > 0 || least.descriptors > 0)) {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    least = Holdings::now() - before;
  }
  return least;
}

void judgeGrowth(const std::string& what, int clients, const Holdings& growth) {
  const std::string whole =
      what + " must leave nothing behind within " + std::to_string(kEnding.count()) + " s: ";
  HOLDS(growth.threads < clients / 2)
      << whole << growth.threads << " threads are left; usual cause: destroyClient "
      << "does not end and join the workers of its client";
  HOLDS(growth.descriptors < clients / 2) << whole << growth.descriptors << " descriptors are left";
  HOLDS(growth.bytes < clients * static_cast<int64_t>(kBytesOfClient))
      << whole << growth.bytes << " bytes are left, " << growth.bytes / clients
      << " for each client; usual cause: entries are never removed from a map of clients, or a client is not "
      << "deleted";
}

void tryManyClients() {
  Inbox inbox;
  step("warm-up: five clients in turn, and ten at once");
  for (int i = 0; i < 5; ++i) live(inbox, true);
  liveAtOnce(inbox);
  settledGrowth(Holdings::now());
  Holdings before = Holdings::now();
  step("fifty clients in turn");
  for (int i = 0; i < kClients; ++i) live(inbox, true);
  Holdings growth = settledGrowth(before);
  judgeGrowth("fifty clients in turn", kClients, growth);
  note("after 50 clients: " + growth.text());
  before = Holdings::now();
  step("ten clients at once, five times");
  for (int i = 0; i < 5; ++i) liveAtOnce(inbox);
  growth = settledGrowth(before);
  judgeGrowth("ten clients at once, five times", 5 * kAtOnce, growth);
}

// Calls destroyClient while workers are busy. Freed memory is poisoned, so that its use is detected.
void endBusyClients() {
  poison(0x5A);
  Inbox inbox;
  std::atomic<int> alive{1};
  std::atomic<int> late{0};
  inbox.onCallback([&](const Message&) {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    if (alive == 0) ++late;
  });
  step("destroying a client with requests in flight, ten times");
  // Each output, with a copy of its bytes made after its client was destroyed.
  std::vector<std::pair<std::unique_ptr<Image>, std::vector<uint8_t>>> outputs;
  for (int round = 0; round < 10; ++round) {
    const Image input({kFormatNv21, 640, 480, 0, 0, false}, 3);
    auto output = std::make_unique<Image>(ImageShape{kFormatNv21, 640, 480, 0, 0, false}, 4);
    std::vector<std::unique_ptr<Block>> blocks;
    alive = 1;
    {
      Client client;
      for (uint64_t id = 0; id < 4; ++id) {
        blocks.push_back(std::make_unique<Block>());
        Request request;
        request.nativeReq = id;
        request.inputs = {&input};
        request.outputs = {output.get()};
        submit(client, inbox, *blocks.back(), request);
      }
    }
    alive = 0;
    std::vector<uint8_t> then = output->bytes();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    outputs.emplace_back(std::move(output), std::move(then));
  }
  // A late write may take longer than the pause of its round.
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  const auto written = std::count_if(outputs.begin(), outputs.end(),
                                     [](const auto& one) { return one.first->bytes() != one.second; });
  HOLDS(written == 0) << written << " of " << outputs.size()
                      << " outputs were written after destroyClient had returned; usual cause: it does not "
                      << "wait for the workers of its client";
  poison(0);
  HOLDS(late == 0) << late << " callbacks came after destroyClient had returned";
}

void init(const Client& client) {
  AlgoInitRecord record;
  record.client = client.handle();
  call(-1, Library::open()->table().init, record);
}

void releaseAndComeBack() {
  Scene first;
  Scene second;
  if (!first.run(1) || !second.run(1)) return;
  for (int mode : {1, 2}) {
    step("uninit with mode " + std::to_string(mode) + ", and a request of another client");
    first.client.uninit(mode);
    HOLDS(second.run(static_cast<uint64_t>(mode) + 10))
        << "a client must work after another was uninitialised; usual cause: a flag shared by all clients is "
           "cleared";
    step("init after uninit with mode " + std::to_string(mode) + ", and a request");
    init(first.client);
    HOLDS(first.run(static_cast<uint64_t>(mode) + 20))
        << "a client must work after uninit with mode " << mode
        << " and init; usual cause: uninit sets a flag that init does not clear";
  }
}

}  // namespace

void checkLives() {
  OPEN_LIBRARY(library);
  tryManyClients();
  releaseAndComeBack();
  endBusyClients();
}

}  // namespace orlu::conform
