#include "samples.h"

#include <algorithm>

namespace orlu::bench {

double median(std::vector<double> values) {
  if (values.empty()) return 0;
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

std::vector<double> ratios(const std::vector<double>& a, const std::vector<double>& b) {
  std::vector<double> all(std::min(a.size(), b.size()));
  for (size_t i = 0; i < all.size(); ++i) all[i] = a[i] / b[i];
  return all;
}

}  // namespace orlu::bench
