#include "dialogs/widgets/time_text.h"

#include <cmath>

namespace quiverion {

std::string RemainingTimeText(double remaining) {
  const auto number = [](long long count, const char* unit) { return std::to_string(count) + unit; };
  const long long seconds = std::llround(remaining), minutes = seconds / 60;
  const std::string text = "noch etwa ";
  if (seconds < 60) return text + number(seconds, " s");
  if (minutes < 10) return text + number(minutes, " min ") + number(seconds % 60, " s");
  if (minutes < 60) return text + number(minutes, " min");
  return text + number(minutes / 60, " h ") + number(minutes % 60, " min");
}

}  // namespace quiverion
