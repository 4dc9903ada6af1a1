#pragma once

#include <string>

namespace quiverion {

class Clock {
 public:
  virtual ~Clock() = default;

  /// Seconds since local midnight, in single precision, like every duration in the log.
  virtual float SecondsSinceMidnight() const = 0;

  /// Local date and time as written into results, "23.11.2026 14:05:09"; on Windows in the format that the user has
  /// set.
  virtual std::string DateAndTime() const = 0;
};

class SystemClock : public Clock {
 public:
  float SecondsSinceMidnight() const override;
  std::string DateAndTime() const override;
};

}  // namespace quiverion
