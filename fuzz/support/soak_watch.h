// Shows the soak's progress and prints the final figures.
#pragma once

#include <malloc.h>

#include <atomic>
#include <chrono>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <thread>
#include <vector>

#include "algo.h"
#include "figures.h"

namespace orlu::fuzz {

inline bool same(const char* what, int before, int after) {
  std::printf("%-22s %d, then %d\n", what, before, after);
  return before == after;
}

// Prints the stand-in's resources and the request map's entries. Returns true if the resources equal `before`
// and the map contains no request with an id of `firstId` or above.
inline bool nothingIsLeft(const standin::AlgoCounts& before, uint64_t firstId) {
  const standin::AlgoCounts after = test::Algo::counts();
  bool sound = same("parameter blocks", before.parameterBlocks, after.parameterBlocks);
  sound &= same("camera blocks", before.cameraBlocks, after.cameraBlocks);
  sound &= same("clients", before.clients, after.clients);
  sound &= same("pending requests", before.pendingRequests, after.pendingRequests);
  return same("request map entries", 0, entriesBetween(firstId, nextRequestId())) && sound;
}

// Counts requests. Samples memory at the start and whenever another 10 % of the requests are done.
class SoakWatch {
public:
  explicit SoakWatch(uint64_t requests) : mRequests(requests) {}

  // Called by the soak's threads. Returns the next request's number; none after the last one.
  std::optional<uint64_t> next() {
    const uint64_t request = mStarted.fetch_add(1);
    return request < mRequests ? std::optional(request) : std::nullopt;
  }
  void done() { mDone.fetch_add(1); }

  // Shows progress until all requests are done.
  void watch() {
    for (uint64_t tenth = 0; tenth <= 10; ++tenth) {
      while (mDone.load() < mRequests * tenth / 10) std::this_thread::sleep_for(std::chrono::milliseconds(5));
      const Point p = {mDone.load(), residentBytes(), static_cast<int64_t>(mallinfo2().uordblks)};
      std::printf("%8" PRIu64 " requests  resident %7" PRId64 " kB  allocated %7" PRId64 " kB\n", p.requests,
                  p.resident / 1024, p.allocated / 1024);
      mPoints.push_back(p);
    }
  }

  // Prints how much memory grew per request in the second half of the run, when all one-time allocations are
  // done. Returns false if allocated memory grew by more than kNoise plus kBytesForEach per request.
  bool memoryStoodStill() const {
    const Point& first = mPoints[mPoints.size() / 2];
    const Point& last = mPoints.back();
    const auto requests = static_cast<double>(last.requests - first.requests);
    const auto grown = static_cast<double>(last.allocated - first.allocated);
    std::printf("slope of the second half: resident %.2f, allocated %.2f bytes for each request\n",
                static_cast<double>(last.resident - first.resident) / requests, grown / requests);
    // Variation of the VM's own buffers, in bytes.
    constexpr double kNoise = 1024.0 * 1024.0;
    constexpr double kBytesForEach = 4.0;
    return grown <= kNoise + kBytesForEach * requests;
  }

private:
  struct Point {
    uint64_t requests;
    int64_t resident;
    int64_t allocated;
  };

  const uint64_t mRequests;
  std::atomic<uint64_t> mStarted{0};
  std::atomic<uint64_t> mDone{0};
  std::vector<Point> mPoints;
};

}  // namespace orlu::fuzz
