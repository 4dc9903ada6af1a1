#pragma once

#include <map>
#include <string_view>

namespace quiverion {

/// Decides which changes of the progress are worth painting: a run of quick commands would spend more time on its progress
/// window than on its fields. A step that took long in the file before is always shown, so that what holds up the run
/// stands in the window meanwhile.
class RepaintThrottle {
 public:
  /// A step begins at `now` (seconds); true where it is to be painted. `step` lives as long as the program.
  bool IsDue(std::string_view step, double now);

 private:
  static constexpr double kInterval = 0.04;

  std::map<std::string_view, bool> isSlow_;  // of every step that has run
  std::string_view running_;
  double begun_ = 0.0;
  double painted_ = 0.0;
};

}  // namespace quiverion
