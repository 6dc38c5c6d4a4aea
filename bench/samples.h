// Statistics of measured times.
#pragma once

#include <chrono>
#include <vector>

namespace orlu::bench {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

// Returns the (upper) median; 0 if there are no values.
double median(std::vector<double> values);

// Returns a / b for each pair. The two times of a pair are measured in succession, so that a disturbance of
// the machine affects both.
std::vector<double> ratios(const std::vector<double>& a, const std::vector<double>& b);

}  // namespace orlu::bench
