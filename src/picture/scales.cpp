#include "picture/scales.h"

#include <algorithm>
#include <cmath>

#include "platform/text/numbers.h"

namespace quiverion {
namespace {

double PowerBelow(double value) {
  return std::pow(10.0, std::floor(std::log10(value)));
}

constexpr double kLargest = 1E300;  // sums and differences of a few of these are finite

Limits Apart(double lower, double upper) {
  lower = std::clamp(lower, -kLargest, kLargest);
  upper = std::clamp(upper, -kLargest, kLargest);
  if (lower < upper) return {lower, upper};
  const double size = std::max(std::fabs(lower), 1.0);
  return lower == 0.0 ? Limits{0.0, 1.0} : Limits{lower - size / 10.0, lower + size / 10.0};
}

}  // namespace

double Quantile(std::vector<double>& values, double part) {
  if (values.empty()) return 0.0;
  const auto place = static_cast<std::ptrdiff_t>(part * static_cast<double>(values.size() - 1));
  std::ranges::nth_element(values, values.begin() + place);
  return values[static_cast<std::size_t>(place)];
}

double RoundDown125(double value) {
  const double power = PowerBelow(value);
  const double first = value / power;  // 1 to 10, but for rounding
  const double slack = 1.0 + 1E-12;
  for (const double round : {10.0, 5.0, 2.0}) {
    if (first * slack >= round) return round * power;
  }
  return power;
}

Ticks TicksBetween(double lower, double upper, int atMost) {
  Ticks ticks;
  const double wanted = (upper - lower) / atMost;
  if (!(wanted > 0.0) || !std::isfinite(wanted)) return ticks;
  const double power = PowerBelow(wanted);
  const double first = wanted / power * (1.0 - 1E-9);
  ticks.step = power * (first <= 1.0 ? 1.0 : first <= 2.0 ? 2.0 : first <= 5.0 ? 5.0 : 10.0);
  const double begin = std::ceil(lower / ticks.step - 1E-9);
  const double end = std::floor(upper / ticks.step + 1E-9);
  if (!(std::fabs(begin) < 1E15) || !(std::fabs(end) < 1E15)) return ticks;  // the step is lost in rounding
  const auto last = static_cast<std::int64_t>(end);
  for (auto k = static_cast<std::int64_t>(begin); k <= last; ++k) {
    ticks.values.push_back(static_cast<double>(k) * ticks.step);
  }
  return ticks;
}

std::string TickText(double value, double step) {
  const double size = std::max(std::fabs(value), step);
  if (size >= 1E6 || step < 1E-4) {
    const double digits = std::ceil(std::log10(size) - std::log10(step)) + 1.0;
    return NumberText(value, static_cast<int>(std::clamp(digits, 6.0, 15.0)));
  }
  const int places = std::clamp(static_cast<int>(std::ceil(-std::log10(step) - 1E-9)), 0, 6);
  const double scale = std::pow(10.0, places);
  return NumberText(std::round(value * scale) / scale, 12);
}

std::string NumberText(double value, int digits) {
  if (!std::isfinite(value)) return "–";
  char buffer[kMaxNumberLength];
  return std::string(buffer, FormatNumberTo(buffer, value, digits, ','));
}

Limits RobustLimits(std::vector<double>& values, bool isSigned) {
  if (isSigned) {
    for (double& value : values) value = std::fabs(value);
    const double side = Quantile(values, 0.99);
    return side > 0.0 ? Apart(-side, side) : Limits{-1.0, 1.0};
  }
  const double lower = Quantile(values, 0.01);
  return Apart(std::min(lower, 0.0), Quantile(values, 0.99));
}

}  // namespace quiverion
