// What a request costs in counts, which are the same on every run.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "request_runner.h"

namespace orlu::bench {

// By name: "jni:FindClass" and so on for the calls of each JNI function, "jni" for all of them,
// "local_references" for the most that are alive at once, "allocations" and "allocated_bytes" on the C++
// heap, "debug_lines" and "error_lines" for the lines of the log while all are asked for.
using Counts = std::map<std::string, int64_t>;

// Carries the shot through the library a few times. A full-async request counts as both of its calls.
Counts countsOf(RequestRunner& runner);

}  // namespace orlu::bench
