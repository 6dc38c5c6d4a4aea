// Measures requests and their lower bounds alternately.
#pragma once

#include <benchmark/benchmark.h>

#include "request_runner.h"

namespace orlu::bench {

// Warms up until the VM has compiled the code, records the JNI calls, and measures. Sets the counters
// request_us, floor_us and ratio, all medians. For images in shared memory also sets descriptors_us, the
// system's time for their descriptors, and ratio_descriptors, the ratio of the request to the sum of floor
// and descriptors.
void measure(benchmark::State& state, RequestRunner& runner, int warmUp);

}  // namespace orlu::bench
