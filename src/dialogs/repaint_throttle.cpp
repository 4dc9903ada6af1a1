#include "dialogs/repaint_throttle.h"

#include <algorithm>

namespace quiverion {

double RepaintThrottle::LongestStep() const {
  double longest = 0.0;
  for (const auto& [step, duration] : durations_) longest = std::max(longest, duration);
  return longest;
}

bool RepaintThrottle::IsDue(std::string_view step, double now) {
  if (!running_.empty()) durations_[running_] = now - begun_;
  running_ = step;
  begun_ = now;
  const auto known = durations_.find(step);
  const double waited = now - painted_;
  const bool due = known == durations_.end() || known->second >= kSlow || waited >= 2 * kInterval ||
                   (waited >= kInterval && 2 * known->second >= LongestStep());
  if (due) painted_ = now;
  return due;
}

}  // namespace quiverion
