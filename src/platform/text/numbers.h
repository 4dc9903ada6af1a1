#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Conversion between numbers and text, independent of any locale.
namespace quiverion {

/// The longest prefix of `text` that forms a decimal number: optional sign, digits with at most one ".", optional
/// exponent ("1E5"). `length` and `value` are 0 if the text does not begin with a number.
struct NumberPrefix {
  double value = 0.0;
  std::size_t length = 0;
};

/// Correctly rounded; a number too small for a double is 0. Throws SystemError 6 for one that is too large.
NumberPrefix ReadNumberPrefix(std::string_view text);

/// The reader of parameter texts: blanks, tabs and line breaks are ignored anywhere in the text, then the longest
/// prefix that forms a number counts; 0 if there is none. Throws SystemError 6 for a number too large.
double ReadParameterNumber(std::string_view text);

/// 1.5 * 2^52: a double of this magnitude has no fraction bits, so adding and subtracting it rounds a number below 2^51
/// to an integer, halves to even.
inline constexpr double kNoFraction = 6755399441055744.0;

/// Nearest integer, halves to the even neighbour. Throws SystemError 6 if it does not fit (or is NaN).
std::int32_t RoundToInt32(double value);

/// `value` as a 32-bit integer; throws SystemError 6 if it does not fit.
std::int32_t CheckedInt32(std::int64_t value);

/// At most 15 significant digits, correctly rounded, no trailing zeros; fixed notation for 1E-4 <= |x| < 1E15
/// and for 0, else an exponent with sign and at least two digits (1.5E-05). Negative zero is "0"; "NaN",
/// "Inf", "-Inf".
std::string FormatNumber(double value, char decimalSeparator = '.');

/// The same with at most 7 significant digits, the precision of a float.
std::string FormatNumber(float value, char decimalSeparator = '.');

/// Bytes that FormatNumberTo and PrintNumberTo may write to; bytes after the returned text are unspecified.
inline constexpr std::size_t kMaxNumberLength = 40;

/// FormatNumber with at most `digits` (1 to 15) significant digits into `buffer` (at least kMaxNumberLength bytes),
/// without allocating. Returns the end of the text.
char* FormatNumberTo(char* buffer, double value, int digits, char decimalSeparator);

/// A number in print style into such a buffer: a blank if FormatNumber gives no minus sign, the text of FormatNumber, a
/// blank.
char* PrintNumberTo(char* buffer, double value, char decimalSeparator);

/// Appends a number in print style.
void AppendPrintNumber(std::string& text, double value, char decimalSeparator);

}  // namespace quiverion
