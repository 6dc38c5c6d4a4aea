// Counts the requests of a soak, tells of its memory at each tenth, and whether memory stood still.
#pragma once

#include <malloc.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <thread>
#include <vector>

#include "figures.h"

namespace orlu::fuzz {

class SoakWatch {
public:
  explicit SoakWatch(uint64_t requests) : mRequests(requests) {}

  // Called by the soak's threads. False when enough were asked for.
  bool next() { return mStarted.fetch_add(1) < mRequests; }
  void done() { mDone.fetch_add(1); }
  uint64_t index() const { return mDone.load(); }

  // Until all are done.
  void watch() {
    for (uint64_t tenth = 0; tenth <= 10; ++tenth) {
      while (mDone.load() < mRequests * tenth / 10) std::this_thread::sleep_for(std::chrono::milliseconds(5));
      mPoints.push_back({mDone.load(), residentBytes(), static_cast<int64_t>(mallinfo2().uordblks)});
      const Point& p = mPoints.back();
      std::printf("%8llu requests  resident %7lld kB  allocated %7lld kB\n",
                  static_cast<unsigned long long>(p.requests), static_cast<long long>(p.resident / 1024),
                  static_cast<long long>(p.allocated / 1024));
    }
  }

  // Prints the slopes over the second half, when everything that is made once was made. False when memory
  // that was allocated did not stand still.
  bool memoryStoodStill() const {
    const Point& first = mPoints[mPoints.size() / 2];
    const Point& last = mPoints.back();
    const auto requests = static_cast<double>(last.requests - first.requests);
    const auto grown = static_cast<double>(last.allocated - first.allocated);
    std::printf("slope of the second half: resident %.2f, allocated %.2f bytes for each request\n",
                static_cast<double>(last.resident - first.resident) / requests, grown / requests);
    // The VM's own buffers come and go.
    constexpr double kNoise = 256.0 * 1024.0;
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
