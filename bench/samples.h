// Small statistics over times.
#pragma once

#include <chrono>
#include <vector>

namespace orlu::bench {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

// The middle one; 0 when there is none.
double median(std::vector<double> values);

// What belongs together pair by pair, so that a disturbance of the machine meets both: a / b.
std::vector<double> ratios(const std::vector<double>& a, const std::vector<double>& b);

}  // namespace orlu::bench
