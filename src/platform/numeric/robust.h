#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

namespace quiverion {

/// The middle of the values, the mean of the two middle ones of an even number; 0 without values.
inline double MedianOf(std::vector<double> values) {
  if (values.empty()) return 0.0;
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  if (values.size() % 2 == 1) return *middle;
  return (*std::max_element(values.begin(), middle) + *middle) / 2.0;
}

/// How far each value lies from the median in robust standard deviations: |x - median| / (1.4826 MAD), where MAD is the
/// median of |x - median| (Hampel, J. Am. Stat. Assoc. 69 (1974) 383). `floor` is the least standard deviation that
/// counts: without it, nearly equal values would all be far away. All values must be finite.
inline std::vector<double> RobustDistances(const std::vector<double>& values, double floor) {
  const double median = MedianOf(values);
  std::vector<double> distances;
  for (const double value : values) distances.push_back(std::fabs(value - median));
  const double deviation = std::max(1.4826 * MedianOf(distances), floor);
  for (double& distance : distances) distance /= deviation;
  return distances;
}

}  // namespace quiverion
