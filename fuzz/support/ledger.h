// Records each request's ending as seen by the algorithm library, Java, the log and the sending thread.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "soak_plan.h"

namespace orlu::fuzz {

class Ledger {
public:
  // Creates a ledger for the requests 0 to `requests` - 1.
  Ledger(uint64_t seed, uint64_t requests);

  SoakPlan plan(uint64_t request) const { return soakPlan(mSeed, request); }
  const SoakWay& way(uint64_t request) const { return kSoakWays[plan(request).way]; }

  // The saw...() functions record an observation. Thread-safe. `block` is a request's parameter block.
  void sawBlock(uint64_t request, void* block);
  void sawBlockDestroyed(void* block);
  void sawProcess(uint64_t request) {
    ++mSeen[request].processed;
    mSeen[request].isInProcess = true;
  }
  void sawProcessReturn(uint64_t request) { mSeen[request].isInProcess = false; }
  void sawTimeout(uint64_t request) { ++mSeen[request].timedOut; }
  void sawReturn(uint64_t request) { ++mSeen[request].returned; }
  void sawAnnouncement(uint64_t request) { mSeen[request].announced = true; }

  // Prints a table row for each way (SoakWay), and the first few requests with an unplanned ending. Returns
  // true if all requests ended as planned.
  bool print() const;

private:
  struct Seen {
    std::atomic<uint8_t> processed{0};
    std::atomic<uint8_t> timedOut{0};
    std::atomic<uint8_t> returned{0};
    std::atomic<uint8_t> ended{0};
    std::atomic<bool> isInProcess{false};
    std::atomic<bool> lostBlock{false};  // block destroyed while process() used it
    std::atomic<bool> announced{false};  // Java received at least one announcement
  };
  using Counts = std::array<uint64_t, kEndings>;

  Ending ending(uint64_t request) const;
  bool isExpected(uint64_t request) const;

  const uint64_t mSeed;
  const uint64_t mRequests;
  const std::unique_ptr<Seen[]> mSeen;
  std::mutex mMutex;  // guards the members below
  std::unordered_map<void*, uint64_t> mBlocks;
};

}  // namespace orlu::fuzz
