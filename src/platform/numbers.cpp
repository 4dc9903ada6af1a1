#include "platform/numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "platform/system_error.h"

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

  // The magnitude itself decides on the notation, not its rounded digits: 999999999999999.9 stays fixed.
  const double magnitude = std::fabs(value);
  const bool fixedNotation = magnitude >= 1E-4 && magnitude < 1E15;
  char scientific[48];
  char* const end =
      std::to_chars(scientific, scientific + sizeof scientific, value, std::chars_format::scientific, digits - 1).ptr;
  const char* const exponentMark = std::find(scientific, end, 'e');
  int exponent = 0;
  std::from_chars(exponentMark + (exponentMark[1] == '+' ? 2 : 1), end, exponent);

  char digitText[20] = {};
  int count = 0;
  for (const char* p = scientific; p < exponentMark; ++p) {
    if (IsDigit(*p)) digitText[count++] = *p;
  }
  while (count > 1 && digitText[count - 1] == '0') --count;

  if (value < 0) *buffer++ = '-';
  if (!fixedNotation) {
    *buffer++ = digitText[0];
    if (count > 1) {
      *buffer++ = decimalSeparator;
      buffer = std::copy(digitText + 1, digitText + count, buffer);
    }
    *buffer++ = 'E';
    return std::copy(exponentMark + 1, static_cast<const char*>(end), buffer);
  }
  if (exponent < 0) {
    *buffer++ = '0';
    *buffer++ = decimalSeparator;
    buffer = std::fill_n(buffer, -exponent - 1, '0');
    return std::copy(digitText, digitText + count, buffer);
  }
  for (int k = 0; k < std::max(count, exponent + 1); ++k) {
    if (k == exponent + 1) *buffer++ = decimalSeparator;
    *buffer++ = k < count ? digitText[k] : '0';
  }
  return buffer;
}

std::string FormatNumber(double value, char decimalSeparator) {
  return Format(value, 15, decimalSeparator);
}

std::string FormatNumber(float value, char decimalSeparator) {
  return Format(value, 7, decimalSeparator);
}

void AppendPrintNumber(std::string& text, double value, char decimalSeparator) {
  char buffer[kMaxNumberLength + 2] = {' '};
  char* end = FormatNumberTo(buffer + 1, value, 15, decimalSeparator);
  *end++ = ' ';
  text.append(buffer[1] == '-' ? buffer + 1 : buffer, end);
}

}  // namespace quiverion
