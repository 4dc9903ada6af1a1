#include "platform/process/clock.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

namespace quiverion {
namespace {

// Asked of the system in another way; the clock may go on between the two.
TEST(SystemClock, TellsTheLocalTime) {
  ::setenv("TZ", "EST5", 1);
  ::tzset();
  const auto expected = [] {
    const std::time_t shifted = std::time(nullptr) - 5 * 3600;
    char text[32];
    return std::string(text, std::strftime(text, sizeof text, "%d.%m.%Y %H:%M:%S", std::gmtime(&shifted)));
  };
  const SystemClock clock;
  std::string before, told, after;
  float seconds = 0.0F;
  do {
    before = expected();
    told = clock.DateAndTime();
    seconds = clock.SecondsSinceMidnight();
    after = expected();
  } while (before != after);
  EXPECT_EQ(told, before);
  const int hour = std::stoi(told.substr(11, 2)), minute = std::stoi(told.substr(14, 2));
  EXPECT_NEAR(seconds, static_cast<float>(hour * 3600 + minute * 60 + std::stoi(told.substr(17))), 1.1F);
}

}  // namespace
}  // namespace quiverion
