// Registration functions, one per group of benchmarks.
#pragma once

#include <cstdint>

namespace orlu::bench {

struct BenchSize {
  bool quick = false;          // fewer points and requests
  int64_t memoryRequests = 0;  // for the memory benchmark only
  int warmUp() const { return quick ? 300 : 2000; }
  int requests() const { return quick ? 150 : 1000; }
};

void registerRequestBenches(const BenchSize& size);
void registerWakeupBenches(const BenchSize& size);
void registerGrowthBenches(const BenchSize& size);
void registerFlightBenches(const BenchSize& size);
void registerClientsBenches(const BenchSize& size);
void registerProbeBenches(const BenchSize& size);
void registerRecorderBenches(const BenchSize& size);
void registerMemoryBenches(const BenchSize& size);

}  // namespace orlu::bench
