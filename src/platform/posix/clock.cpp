#include "platform/process/clock.h"

#include <chrono>
#include <ctime>

namespace quiverion {

namespace {

std::tm LocalTime(std::time_t seconds) {
  std::tm local{};
  localtime_r(&seconds, &local);
  return local;
}

}  // namespace

float SystemClock::SecondsSinceMidnight() const {
  const auto now = std::chrono::system_clock::now();
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  const std::chrono::duration<double> fraction = now - std::chrono::system_clock::from_time_t(seconds);
  const std::tm local = LocalTime(seconds);
  return static_cast<float>(local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec + fraction.count());
}

std::string SystemClock::DateAndTime() const {
  const std::tm local = LocalTime(std::time(nullptr));
  char text[32];
  return std::string(text, std::strftime(text, sizeof text, "%d.%m.%Y %H:%M:%S", &local));
}

}  // namespace quiverion
