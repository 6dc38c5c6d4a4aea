// The cost of a request as counts, which are equal in every run.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "request_runner.h"

namespace orlu::bench {

// Counts by name: "jni:FindClass" and so on for each JNI function, "jni" for all JNI calls,
// "local_references" for the most local references at one time, "allocations" and "allocated_bytes" on the
// C++ heap, "debug_lines" and "error_lines" for the lines of the log at full verbosity.
using Counts = std::map<std::string, int64_t>;

// Runs the runner's shot a few times and returns the counts of one run. For a full-async request, the counts
// include processImageUpdateResult().
Counts countsOf(RequestRunner& runner);

}  // namespace orlu::bench
