#include "platform/text/numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "messages/system_error.h"
#include "platform/text/decimal_digits.h"

namespace quiverion {
namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// Length of the number that `text` begins with, its sign included; 0 where there is none.
std::size_t NumberLength(std::string_view text) {
  std::size_t at = 0;
  const auto skipDigits = [&] {
    const std::size_t first = at;
    while (at < text.size() && IsDigit(text[at])) ++at;
    return at - first;
  };
  if (at < text.size() && (text[at] == '+' || text[at] == '-')) ++at;
  std::size_t digits = skipDigits();
  if (at < text.size() && text[at] == '.') {
    ++at;
    digits += skipDigits();
  }
  if (digits == 0) return 0;
  const std::size_t mantissaEnd = at;
  if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
    ++at;
    if (at < text.size() && (text[at] == '+' || text[at] == '-')) ++at;
    if (skipDigits() == 0) at = mantissaEnd;
  }
  return at;
}

// from_chars tells "too large" and "too small" alike. The decimal exponent of the first non-zero digit
// decides.
bool IsTooLarge(std::string_view number) {
  long long scale = 0;  // decimal places of the first non-zero digit before (> 0) or behind (<= 0) the point
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

template <class Real>
std::string Format(Real value, int digits, char decimalSeparator) {
  char buffer[kMaxNumberLength];
  return std::string(buffer, FormatNumberTo(buffer, static_cast<double>(value), digits, decimalSeparator));
}

char* Copy(char* buffer, std::string_view text) {
  return std::copy(text.begin(), text.end(), buffer);
}

// All digits are copied, in blocks of a fixed size; the length says how many of them count.
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
  NumberPrefix result;
  result.length = NumberLength(text);
  std::string_view number = text.substr(0, result.length);
  if (!number.empty() && number.front() == '+') number.remove_prefix(1);  // from_chars knows no plus sign
  const auto read = std::from_chars(number.data(), number.data() + number.size(), result.value);
  if (read.ec == std::errc::result_out_of_range) {
    if (IsTooLarge(number)) throw SystemError(ErrorNumber::overflow);
    result.value = 0.0;
  }
  return result;
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
  // The magnitude itself decides on the notation, not its rounded digits: 999999999999999.9 stays fixed.
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
  // A minus sign takes the place of the blank. -0 has none, and neither has NaN.
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
