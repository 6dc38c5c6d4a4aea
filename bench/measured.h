// Measures a request and its floor alternately. The floor is the time of the request's JNI calls alone.
#pragma once

#include <benchmark/benchmark.h>

#include "request_runner.h"

namespace orlu::bench {

// Records the JNI calls, warms up with `warmUp` requests so that the VM compiles the code, then measures.
// Sets the counters request_us, floor_us and ratio to medians. For images in shared memory also sets
// descriptors_us, the time that the system spends on their descriptors, and ratio_descriptors, which is
// request_us / (floor_us + descriptors_us).
void measure(benchmark::State& state, RequestRunner& runner, int warmUp);

}  // namespace orlu::bench
