#include "platform/text/numbers.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <sstream>

#include "platform/text/decimal_digits.h"
#include "support/approved.h"
#include "support/error_of.h"

namespace quiverion::test {
namespace {

using Limits = std::numeric_limits<double>;

std::string Zeros(std::size_t count) {
  return std::string(count, '0');
}

// A number with all its digits, in the same letters everywhere.
std::string Exactly(double value) {
  char text[32];
  return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

// What `read` makes of a text, or the number of its error.
template <class Read>
std::string Told(const std::string& text, Read read) {
  std::string result;
  const int error = ErrorOf([&] { result = read(); });
  return text + " = " + (error == 0 ? result : "error " + std::to_string(error)) + "\n";
}

TEST(NumberPrefix, IsTheLongestNumberRoundedCorrectly) {
  std::string told;
  const auto tell = [&](const std::string& text) {
    told += Told(text, [&] {
      const NumberPrefix found = ReadNumberPrefix(text);
      return Exactly(found.value) + " of " + std::to_string(found.length);
    });
  };
  std::istringstream texts(
      "12.5px|.5|5.|-.5e1|+4|3E|3e+|3E-2x|1e+2|1.2.3|1,5|0x10|1e5.5|-0|5.e2|+1.5E+01||-|.|+.e3|--4| 5|\t5|e5|inf|nan|"
      "\xD9\xA1|,5|1.7976931348623158e308|1.7976931348623159e308|1e309|-1e309x|1e99999999999999999999|"
      "1e-99999999999999999999|3e-324|2e-324|9007199254740993.00000000000000000000000001|"
      "0.1000000000000000055511151231257827");
  for (std::string text; std::getline(texts, text, '|');) tell(text);
  for (const char* end : {"1e50", "1e401", "1e700"}) tell("0." + Zeros(400) + end);
  for (const char* end : {"", ".5"}) tell("1" + Zeros(400) + end);
  ExpectApproved("number_prefixes.txt", told);
}

void ExpectTheLibrarysBits(const std::string& number) {
  double expected = 0.0;
  ASSERT_EQ(std::from_chars(number.data(), number.data() + number.size(), expected).ec, std::errc()) << number;
  // What stands behind the number changes how it is read, not what it is.
  for (const char* const rest : {"", " ", " 1234567.89", "e", "e-.5"}) {
    const NumberPrefix found = ReadNumberPrefix(number + rest);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(found.value), std::bit_cast<std::uint64_t>(expected)) << number << rest;
    EXPECT_EQ(found.length, number.size()) << number << rest;
  }
}

TEST(NumberPrefix, HasTheBitsOfTheLibrary) {
  std::mt19937_64 random(11);
  for (int round = 0; round < 30000; ++round) {
    std::string number = random() % 2 == 0 ? "-" : "";
    const std::size_t digits = 1 + random() % 24;
    const std::size_t point = random() % 40;
    for (std::size_t k = 0; k < digits; ++k) {
      if (k == point) number += '.';
      number += static_cast<char>('0' + (random() % 4 == 0 ? 0 : random() % 10));
    }
    if (round % 3 != 0) number += "e" + std::to_string(static_cast<int>(random() % 70) - 35);
    ExpectTheLibrarysBits(number);
  }
}

// Halves between two doubles, and their neighbours: an odd number of 54 bits times powers of ten.
TEST(NumberPrefix, RoundsHalvesToTheEvenNeighbour) {
  std::mt19937_64 random(12);
  for (int exponent = -4; exponent <= 22; ++exponent) {
    std::uint64_t five = 1;
    for (int k = 0; k < std::abs(exponent); ++k) five *= 5;
    for (int round = 0; round < 200; ++round) {
      const std::uint64_t wide = (std::uint64_t{1} << 53) + random() % (std::uint64_t{1} << 53);
      const std::uint64_t half = exponent < 0 ? (wide | 1) * five : (wide / five) | 1;
      for (const std::uint64_t digits : {half - 1, half, half + 1}) {
        ExpectTheLibrarysBits(std::to_string(digits) + "e" + std::to_string(exponent));
      }
    }
  }
}

TEST(ParameterNumber, IgnoresBlanksTabsAndLineBreaksAnywhere) {
  const std::pair<std::string_view, double> cases[] = {{" 1 2 . 5 ", 12.5}, {"\t-\r\n3", -3}, {"1e 3", 1000},
                                                       {"1,5", 1},          {"", 0},          {"2 m/s", 2},
                                                       {"1 . . 5", 1},      {".5", 0.5},      {"- -1", 0}};
  for (const auto& [text, value] : cases) EXPECT_EQ(ReadParameterNumber(text), value) << text;
  EXPECT_EQ(ErrorOf([] { ReadParameterNumber("1 e 3 0 9"); }), 6);
}

TEST(RoundToInt32, TakesTheEvenNeighbourOfAHalfAndOverflowsBeyondTheRange) {
  std::string told;
  for (const double value :
       {0.5, 2.5, -2.5, 0.49999999999999994, -0.5000000000000001, 2147483647.4999998, 2147483647.5, -2147483648.5,
        std::nextafter(-2147483648.5, -1e10), 1e300, Limits::infinity(), Limits::quiet_NaN()}) {
    told += Told(Exactly(value), [&] { return std::to_string(RoundToInt32(value)); });
  }
  for (const long long value : {-2147483648LL, 2147483648LL, -2147483649LL}) {
    told += Told(std::to_string(value), [&] { return std::to_string(CheckedInt32(value)); });
  }
  ExpectApproved("rounded_numbers.txt", told);
}

TEST(FormatNumber, WritesFixedAndExponentNotation) {
  std::string told;
  // At the borders what counts is the number, not the digits that it is rounded to.
  for (const double value :
       {0.0, -0.0, -0.25, 0.1 + 0.2, 1.0 / 3, 1E-4, 0.000123456789012345678, std::nextafter(1E-4, 0),
        -9.99999999999999E-5, 123456789012345.6, std::nextafter(1E15, 0), 1E15, 1234567890123456.0, Limits::max(),
        Limits::denorm_min(), 0.99999999999999989, Limits::quiet_NaN(), -Limits::infinity()}) {
    told += Exactly(value) + " = " + FormatNumber(value) + " = " + FormatNumber(value, ',') + "\n";
  }
  ExpectApproved("formatted_numbers.txt", told);
}

// Every exponent, ties between two 15-digit numbers, powers of ten and their neighbours: the same digits as from the C
// library.
TEST(FormatNumber, RoundsCorrectlyWhateverTheMagnitude) {
  std::mt19937_64 random(7);
  const auto digit = [&random](std::uint64_t below) { return static_cast<double>(random() % below); };
  for (int k = 0; k < 200000; ++k) {
    const double powerOfTen = std::pow(10.0, digit(26) - 10.0);
    const double candidates[] = {std::bit_cast<double>(random()),
                                 powerOfTen,
                                 std::nextafter(powerOfTen, k % 2 == 0 ? 0.0 : 1E300),
                                 digit(std::uint64_t{1} << 50) + 0.5,
                                 std::ldexp(digit(std::uint64_t{1} << 53), -static_cast<int>(random() % 90)),
                                 digit(2000000) / 1000.0};
    const double value = std::fabs(candidates[k % 6]);
    if (!std::isfinite(value) || value == 0.0) continue;
    char expected[40];
    std::snprintf(expected, sizeof expected, "%.14e", value);
    const DecimalDigits digits = DigitsOf(value, 15);
    std::string text(digits.digits.data(), 15);
    text.insert(1, ".");
    char exponent[8];
    std::snprintf(exponent, sizeof exponent, "e%+03d", digits.exponent);
    ASSERT_EQ(text + exponent, expected);
    ASSERT_TRUE(digits.count == 1 || digits.digits[static_cast<std::size_t>(digits.count - 1)] != '0') << expected;
    ASSERT_EQ(text.substr(1).find_first_not_of('0', static_cast<std::size_t>(digits.count)), std::string::npos);
  }
}

TEST(PrintNumber, HasAPlaceForTheSignAndABlankBehind) {
  std::string text = "|";
  for (const double value : {1.5, -1.5, 0.0, -0.0, -1.23456789012345E-300, Limits::quiet_NaN(), -Limits::infinity()}) {
    AppendPrintNumber(text, value, ',');
    text += '|';
  }
  EXPECT_EQ(text, "| 1,5 |-1,5 | 0 | 0 |-1,23456789012345E-300 | NaN |-Inf |");
}

}  // namespace
}  // namespace quiverion::test
