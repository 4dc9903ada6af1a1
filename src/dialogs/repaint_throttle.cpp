#include "dialogs/repaint_throttle.h"

namespace quiverion {

bool RepaintThrottle::IsDue(std::string_view step, double now) {
  if (!running_.empty()) isSlow_[running_] = now - begun_ >= kInterval;
  running_ = step;
  begun_ = now;
  const auto known = isSlow_.find(step);
  const bool quick = known != isSlow_.end() && !known->second;
  if (quick && now - painted_ < kInterval) return false;
  painted_ = now;
  return true;
}

}  // namespace quiverion
