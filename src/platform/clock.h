#pragma once

namespace quiverion {

class Clock {
 public:
  virtual ~Clock() = default;

  /// Seconds since local midnight, in single precision like every duration the log shows.
  virtual float SecondsSinceMidnight() const = 0;
};

class SystemClock : public Clock {
 public:
  float SecondsSinceMidnight() const override;
};

}  // namespace quiverion
