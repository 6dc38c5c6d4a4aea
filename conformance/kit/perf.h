// How long requests take: --perf.
#pragma once

#include <string>
#include <vector>

namespace orlu::conform {

// One algorithm with one format and size.
struct PerfRow {
  std::string algorithm;  // "copy" without one
  int32_t format = 0;
  int32_t width = 0;
  int32_t height = 0;
  double milliseconds = 0;    // from process to the callback: the median of the repeated requests
  double noise = 0;           // of those, the median distance from it
  int64_t peakKilobytes = 0;  // memory that the process had at most, more than before the request
  int64_t threads = 0;        // that the process had at most, more than before the client was created
};

// Measures the library of the options in a process of its own: the algorithms, names between commas, or all
// if there are none. Prints a table, or JSON; with a baseline, a file that an earlier run printed as JSON,
// the table also has the change. The status is 1 if the library fails, or if a row is slower than in the
// baseline by more than the noise of both; 2 if an algorithm is unknown or the baseline can't be read.
int runPerf(const std::string& algorithms, bool isJson, const std::string& baseline);

}  // namespace orlu::conform
