// One benchmark: requests and their floors in turn.
#pragma once

#include <benchmark/benchmark.h>

#include "request_runner.h"

namespace orlu::bench {

// Runs until the VM has compiled what it wants to, notes the JNI calls, and measures. Sets the counters
// request_us, floor_us and ratio, medians all of them; for images in shared memory descriptors_us as well,
// what the system takes for their descriptors, and ratio_descriptors, the ratio to both.
void measure(benchmark::State& state, RequestRunner& runner, int warmUp);

}  // namespace orlu::bench
