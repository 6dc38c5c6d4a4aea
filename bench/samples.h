// Statistics of measured times.
#pragma once

#include <chrono>
#include <vector>

namespace orlu::bench {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

// Returns the median, the upper one for an even number of values; 0 if there are no values.
double median(std::vector<double> values);

// Returns a[i] / b[i] for each index of both lists. Callers measure a[i] and b[i] in succession, so that a
// disturbance of the machine affects both.
std::vector<double> ratios(const std::vector<double>& a, const std::vector<double>& b);

}  // namespace orlu::bench
