#include "exchange/units.h"

#include <array>
#include <utility>

#include "platform/text/text.h"

namespace quiverion::exchange {
namespace {

// Powers of ten of a metre and of a second.
constexpr std::pair<std::string_view, int> kLengths[] = {{"nm", -9}, {"um", -6}, {"\xC2\xB5m", -6}, {"mm", -3},
                                                         {"cm", -2}, {"dm", -1}, {"m", 0}};
constexpr std::pair<std::string_view, int> kTimes[] = {{"s", 0}, {"ms", -3}, {"us", -6}, {"\xC2\xB5s", -6}};

constexpr std::array kPowers = {1E-9, 1E-8, 1E-7, 1E-6, 1E-5, 1E-4, 1E-3, 1E-2, 1E-1, 1E0,
                                1E1,  1E2,  1E3,  1E4,  1E5,  1E6,  1E7,  1E8,  1E9};

double PowerOfTen(int exponent) {
  return kPowers[static_cast<std::size_t>(exponent) + 9];
}

template <std::size_t size>
std::optional<int> ExponentOf(const std::pair<std::string_view, int> (&units)[size], std::string_view unit) {
  for (const auto& [name, exponent] : units) {
    if (name == unit) return exponent;
  }
  return std::nullopt;
}

// The unit of length and the unit of time of "m/s", "m s-1", "m s^-1", "m*s-1", "m.s-1".
std::pair<std::string_view, std::string_view> SplitVelocity(std::string_view unit) {
  const std::size_t cut = unit.find_first_of("/ *.");
  if (cut == std::string_view::npos) return {};
  std::string_view time = TrimBlanks(unit.substr(cut + 1));
  if (unit[cut] == '/') return {TrimBlanks(unit.substr(0, cut)), time};
  if (!time.ends_with("-1")) return {};
  time.remove_suffix(2);
  if (time.ends_with('^')) time.remove_suffix(1);
  return {unit.substr(0, cut), time};
}

bool IsBracketed(std::string_view text) {
  return text.size() >= 2 &&
         ((text.front() == '[' && text.back() == ']') || (text.front() == '(' && text.back() == ')'));
}

}  // namespace

std::optional<double> LengthFactor(std::string_view unit) {
  const auto exponent = ExponentOf(kLengths, unit);
  if (!exponent) return std::nullopt;
  return PowerOfTen(*exponent + 3);
}

std::optional<double> VelocityFactor(std::string_view unit) {
  const auto [length, time] = SplitVelocity(unit);
  const auto lengthExponent = ExponentOf(kLengths, length);
  const auto timeExponent = ExponentOf(kTimes, time);
  if (!lengthExponent || !timeExponent) return std::nullopt;
  return PowerOfTen(*lengthExponent - *timeExponent);
}

std::string CleanUnit(std::string_view unit) {
  unit = TrimBlanks(unit);
  while (IsBracketed(unit)) unit = TrimBlanks(unit.substr(1, unit.size() - 2));
  std::string clean;
  for (std::size_t k = 0; k < unit.size(); ++k) {
    const auto next = static_cast<unsigned char>(k + 1 < unit.size() ? unit[k + 1] : 0);
    const auto here = static_cast<unsigned char>(unit[k]);
    if ((here == 0xC2 && next == 0xB5) || (here == 0xCE && next == 0xBC)) {  // micro sign, Greek mu
      clean += "\xC2\xB5";
      ++k;
    } else if (here == 0xB5) {
      clean += "\xC2\xB5";
    } else {
      clean += unit[k];
    }
  }
  if (clean == "-") clean.clear();
  ReplaceControls(clean, "");
  return clean;
}

}  // namespace quiverion::exchange
