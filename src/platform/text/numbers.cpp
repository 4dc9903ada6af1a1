#include "platform/text/numbers.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "messages/system_error.h"
#include "platform/numeric/multi_target.h"
#include "platform/text/byte_words.h"
#include "platform/text/decimal_digits.h"
#include "platform/text/decimal_value.h"

namespace quiverion {
namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

constexpr std::uint64_t kWholePowers[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000};
constexpr double kPowersOfTen[] = {1E0,  1E1,  1E2,  1E3,  1E4,  1E5,  1E6,  1E7,  1E8,  1E9,  1E10, 1E11,
                                   1E12, 1E13, 1E14, 1E15, 1E16, 1E17, 1E18, 1E19, 1E20, 1E21, 1E22};

// The number that a text begins with: `digits` times 10^`exponent`.
struct ScannedNumber {
  std::size_t length = 0;  // 0 if there is none
  bool negative = false;
  std::uint64_t digits = 0;
  std::int64_t exponent = 0;
  bool isWhole = true;  // false if digits or exponent are too long for their variables
};

// Appends the digits at `at` to `value` (modulo 2^64) and returns how many there are. One at a time: for few digits.
QUIVERION_ALWAYS_INLINE std::ptrdiff_t TakeDigits(const char*& at, const char* end, std::uint64_t& value) {
  const char* const first = at;
  for (; at != end && IsDigit(*at); ++at) value = 10 * value + static_cast<std::uint64_t>(*at - '0');
  return at - first;
}

// Eight characters at a time, however many of them are digits.
QUIVERION_ALWAYS_INLINE std::ptrdiff_t TakeManyDigits(const char*& at, const char* end, std::uint64_t& value) {
  const char* const first = at;
  for (; end - at >= 8; at += 8) {
    const words::Word characters = words::Load(at) ^ words::kOnes * '0';
    const words::Word others = words::BytesFrom<10>(characters);
    if (others != 0) {
      const int count = std::countr_zero(others) / 8;
      value = value * kWholePowers[count] + words::NumberOfEightDigits(characters << 8 << (56 - 8 * count));
      at += count;
      return at - first;
    }
    value = value * 100000000 + words::NumberOfEightDigits(characters);
  }
  TakeDigits(at, end, value);
  return at - first;
}

QUIVERION_ALWAYS_INLINE ScannedNumber ScanNumber(std::string_view text) {
  const char* at = text.data();
  const char* const end = at + text.size();
  const auto takeSign = [&] {
    const bool negative = at != end && *at == '-';
    if (negative || (at != end && *at == '+')) ++at;
    return negative;
  };
  ScannedNumber number;
  number.negative = takeSign();
  std::ptrdiff_t count = TakeDigits(at, end, number.digits);
  if (at != end && *at == '.') {
    ++at;
    const std::ptrdiff_t places = TakeManyDigits(at, end, number.digits);
    number.exponent = -places;
    count += places;
  }
  if (count == 0) return {};
  number.isWhole = count <= 19;
  number.length = static_cast<std::size_t>(at - text.data());
  if (at != end && (*at == 'e' || *at == 'E')) {
    ++at;
    const bool negative = takeSign();
    std::uint64_t exponent = 0;
    const std::ptrdiff_t exponentDigits = TakeDigits(at, end, exponent);
    if (exponentDigits == 0) return number;
    number.length = static_cast<std::size_t>(at - text.data());
    number.isWhole = number.isWhole && exponentDigits <= 6;
    number.exponent += static_cast<std::int64_t>(negative ? 0 - exponent : exponent);
  }
  return number;
}

// True if digits and power of ten are exact as doubles, so that one operation gives the correctly rounded value.
bool IsExact(const ScannedNumber& number) {
  return number.digits <= std::uint64_t{1} << 53 && number.exponent >= -22 && number.exponent <= 22;
}

double ExactValue(const ScannedNumber& number) {
  const auto digits = static_cast<double>(number.digits);
  return number.exponent < 0 ? digits / kPowersOfTen[-number.exponent] : digits * kPowersOfTen[number.exponent];
}

// from_chars does not distinguish "too large" from "too small". The decimal exponent of the first non-zero digit does.
bool IsTooLarge(std::string_view number) {
  long long scale = 0;  // decimal places of the first non-zero digit before (> 0) or after (<= 0) the point
  bool pointSeen = false;
  bool significant = false;
  std::size_t at = 0;
  for (; at < number.size() && (number[at] == '.' || number[at] == '-' || IsDigit(number[at])); ++at) {
    if (number[at] == '.') pointSeen = true;
    if (!IsDigit(number[at])) continue;
    significant = significant || number[at] != '0';
    if (significant && !pointSeen) ++scale;
    if (!significant && pointSeen) --scale;
  }
  long long exponent = 0;
  if (at < number.size()) {
    const bool negative = number[at + 1] == '-';
    const char* first = number.data() + at + 1 + (negative || number[at + 1] == '+' ? 1 : 0);
    const auto read = std::from_chars(first, number.data() + number.size(), exponent);
    if (read.ec != std::errc()) exponent = std::numeric_limits<int>::max();
    if (negative) exponent = -exponent;
  }
  return significant && exponent + scale > 0;
}

// For numbers that are too long for anything quicker.
QUIVERION_NO_INLINE double LibraryValue(std::string_view number) {
  if (number.front() == '+') number.remove_prefix(1);  // from_chars does not accept a plus sign
  double value = 0.0;
  const auto read = std::from_chars(number.data(), number.data() + number.size(), value);
  if (read.ec != std::errc::result_out_of_range) return value;
  if (IsTooLarge(number)) throw SystemError(ErrorNumber::overflow);
  return 0.0;
}

template <class Real>
std::string Format(Real value, int digits, char decimalSeparator) {
  char buffer[kMaxNumberLength];
  return std::string(buffer, FormatNumberTo(buffer, static_cast<double>(value), digits, decimalSeparator));
}

char* Copy(char* buffer, std::string_view text) {
  return std::copy(text.begin(), text.end(), buffer);
}

// All digits are copied, in blocks of a fixed size. The length determines how many of them count.
constexpr std::size_t kDigitBlock = 16;

char* WriteFixed(char* buffer, const DecimalDigits& number, char decimalSeparator) {
  const char* const digits = number.digits.data();
  if (number.exponent < 0) {
    const char zeros[] = {'0', decimalSeparator, '0', '0', '0'};
    std::memcpy(buffer, zeros, sizeof zeros);
    std::memcpy(buffer + 1 - number.exponent, digits, kDigitBlock);
    return buffer + 1 - number.exponent + number.count;
  }
  const int whole = number.exponent + 1;
  std::memcpy(buffer, digits, kDigitBlock);
  if (number.count <= whole) return buffer + whole;
  buffer[whole] = decimalSeparator;
  std::memcpy(buffer + whole + 1, digits + whole, kDigitBlock);
  return buffer + number.count + 1;
}

char* WriteScientific(char* buffer, const DecimalDigits& number, char decimalSeparator) {
  *buffer++ = number.digits[0];
  if (number.count > 1) {
    *buffer++ = decimalSeparator;
    buffer = std::copy_n(number.digits.data() + 1, number.count - 1, buffer);
  }
  *buffer++ = 'E';
  *buffer++ = number.exponent < 0 ? '-' : '+';
  const int exponent = std::abs(number.exponent);
  if (exponent < 10) *buffer++ = '0';
  return std::to_chars(buffer, buffer + 3, exponent).ptr;
}

}  // namespace

NumberPrefix ReadNumberPrefix(std::string_view text) {
  const ScannedNumber number = ScanNumber(text);
  if (!number.isWhole || std::abs(number.exponent) > kLargestPower) {
    return {LibraryValue(text.substr(0, number.length)), number.length};
  }
  const double magnitude = IsExact(number) ? ExactValue(number) : DecimalValue(number.digits, number.exponent);
  return {number.negative ? -magnitude : magnitude, number.length};
}

double ReadParameterNumber(std::string_view text) {
  std::string compact;
  compact.reserve(text.size());
  for (const char c : text) {
    if (c != ' ' && c != '\t' && c != '\n' && c != '\r') compact.push_back(c);
  }
  return ReadNumberPrefix(compact).value;
}

std::int32_t RoundToInt32(double value) {
  if (!(value >= -2147483648.5 && value < 2147483647.5)) throw SystemError(ErrorNumber::overflow);
  return static_cast<std::int32_t>((value + kNoFraction) - kNoFraction);
}

std::int32_t CheckedInt32(std::int64_t value) {
  if (value < std::numeric_limits<std::int32_t>::min() || value > std::numeric_limits<std::int32_t>::max()) {
    throw SystemError(ErrorNumber::overflow);
  }
  return static_cast<std::int32_t>(value);
}

char* FormatNumberTo(char* buffer, double value, int digits, char decimalSeparator) {
  if (std::isnan(value)) return Copy(buffer, "NaN");
  if (std::isinf(value)) return Copy(buffer, value < 0 ? "-Inf" : "Inf");
  if (value == 0.0) return Copy(buffer, "0");

  const double magnitude = std::fabs(value);
  const DecimalDigits number = DigitsOf(magnitude, digits);
  if (value < 0) *buffer++ = '-';
  // The magnitude itself determines the notation, not its rounded digits: 999999999999999.9 stays in fixed notation.
  const bool fixedNotation = magnitude >= 1E-4 && magnitude < 1E15;
  return fixedNotation ? WriteFixed(buffer, number, decimalSeparator)
                       : WriteScientific(buffer, number, decimalSeparator);
}

std::string FormatNumber(double value, char decimalSeparator) {
  return Format(value, 15, decimalSeparator);
}

std::string FormatNumber(float value, char decimalSeparator) {
  return Format(value, 7, decimalSeparator);
}

char* PrintNumberTo(char* buffer, double value, char decimalSeparator) {
  *buffer = ' ';
  // A minus sign replaces the blank. -0 and NaN have no minus sign.
  char* const begin = buffer + (value < 0 ? 0 : 1);
  char* const end = FormatNumberTo(begin, value, 15, decimalSeparator);
  *end = ' ';
  return end + 1;
}

void AppendPrintNumber(std::string& text, double value, char decimalSeparator) {
  char buffer[kMaxNumberLength];
  text.append(buffer, PrintNumberTo(buffer, value, decimalSeparator));
}

}  // namespace quiverion
