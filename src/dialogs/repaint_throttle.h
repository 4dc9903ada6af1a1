#pragma once

#include <map>
#include <string_view>

namespace quiverion {

/// Decides which changes of the progress are worth painting: a run of quick commands would spend more time on its progress
/// window than on its fields. A step that took long in the file before is always shown, so that what holds up the run
/// stands in the window meanwhile; of quick ones now and then, and rather one of those that take the most time.
class RepaintThrottle {
 public:
  /// A step begins at `now` (seconds); true where it is to be painted. `step` lives as long as the program.
  bool IsDue(std::string_view step, double now);

 private:
  static constexpr double kSlow = 0.01;      // seconds that a step must take to be painted always
  static constexpr double kInterval = 0.04;  // between two paintings of quick ones

  double LongestStep() const;

  std::map<std::string_view, double> durations_;  // of every step that has run, in the file where it ran last
  std::string_view running_;
  double begun_ = 0.0;
  double painted_ = 0.0;
};

}  // namespace quiverion
