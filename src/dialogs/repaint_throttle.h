#pragma once

#include <map>
#include <string_view>

namespace quiverion {

/// Decides which changes of the progress are worth painting: a run of quick commands would spend more time on its
/// progress window than on its fields. A step that took long in the previous file is always shown, so that the window
/// shows what the run is waiting for. Quick steps are shown now and then, preferably one of those that take the most
/// time.
class RepaintThrottle {
 public:
  /// A step begins at `now` (seconds); true if it is to be painted. `step` must live as long as the program.
  bool IsDue(std::string_view step, double now);

 private:
  static constexpr double kSlow = 0.01;      // a step that takes so many seconds is always painted
  static constexpr double kInterval = 0.04;  // between two paintings of quick ones

  double LongestStep() const;

  std::map<std::string_view, double> durations_;  // of each step, when it last ran
  std::string_view running_;
  double begun_ = 0.0;
  double painted_ = 0.0;
};

}  // namespace quiverion
