// The option --perf: measures the time, memory and threads of requests.
#pragma once

#include <string>
#include <vector>

namespace orlu::conform {

struct PerfRow {
  std::string algorithm;  // "copy" for requests without an algorithm
  int32_t format = 0;
  int32_t width = 0;
  int32_t height = 0;
  double milliseconds = 0;    // from process() to the callback: the median of the repeated requests
  double noise = 0;           // median absolute deviation of the times
  int64_t peakKilobytes = 0;  // peak memory of the process, less its memory before the requests
  int64_t threads = 0;        // highest number of threads, less the number before the client was created
};

// Measures the library that the options name, in a child process, and prints a table or JSON. `algorithms`
// is a comma-separated list of names; if it is empty, all are measured. `baseline` is the JSON file of an
// earlier run, or empty; the table shows the changes since that run.
// Returns 2 if an algorithm is unknown, or the baseline is unreadable or invalid. Returns 1 if the library
// fails, or if a row is slower than the baseline by several times the noise of both runs and by more than a
// few percent. Otherwise returns 0.
int runPerf(const std::string& algorithms, bool isJson, const std::string& baseline);

}  // namespace orlu::conform
