#include "platform/numbers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>

#include "platform/decimal_digits.h"
#include "support/error_of.h"

namespace quiverion::test {
namespace {

using Limits = std::numeric_limits<double>;

std::string Zeros(std::size_t count) {
  return std::string(count, '0');
}

struct NumberCase {
  std::string text;
  double value;
  std::size_t length;
};

TEST(NumberPrefix, TakesTheLongestNumber) {
  const NumberCase cases[] = {{"12.5px", 12.5, 4}, {".5", 0.5, 2},    {"5.", 5, 2},     {"-.5e1", -5, 5},
                              {"+4", 4, 2},        {"3E", 3, 1},      {"3e+", 3, 1},    {"3E-2x", 0.03, 4},
                              {"1e+2", 100, 4},    {"1.2.3", 1.2, 3}, {"1,5", 1, 1},    {"0x10", 0, 1},
                              {"1e5.5", 1e5, 3},   {"-0", -0.0, 2},   {"5.e2", 500, 4}, {"+1.5E+01", 15, 8}};
  for (const NumberCase& c : cases) {
    const NumberPrefix found = ReadNumberPrefix(c.text);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(found.value), std::bit_cast<std::uint64_t>(c.value)) << c.text;
    EXPECT_EQ(found.length, c.length) << c.text;
  }
}

TEST(NumberPrefix, IsNothingWhereNoNumberBegins) {
  for (const char* text : {"", "-", ".", "+.e3", "--4", " 5", "\t5", "e5", "inf", "nan", "\xD9\xA1", ",5"}) {
    const NumberPrefix found = ReadNumberPrefix(text);
    EXPECT_EQ(found.value, 0.0) << text;
    EXPECT_EQ(found.length, 0u) << text;
  }
}

TEST(NumberPrefix, RoundsCorrectlyAtTheLimitsOfADouble) {
  const double smallest = Limits::denorm_min();
  const std::pair<std::string, double> cases[] = {{"1.7976931348623158e308", Limits::max()},
                                                  {"3e-324", smallest},
                                                  {"2e-324", 0},
                                                  {"1e-99999999999999999999", 0},
                                                  {"0." + Zeros(400) + "1e50", 0},
                                                  {"0." + Zeros(400) + "1e401", 1},
                                                  {"9007199254740993.00000000000000000000000001", 9007199254740994.0},
                                                  {"0.1000000000000000055511151231257827", 0.1}};
  for (const auto& [text, value] : cases) {
    const NumberPrefix found = ReadNumberPrefix(text);
    EXPECT_EQ(found.value, value) << text;
    EXPECT_EQ(found.length, text.size()) << text;
  }
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

TEST(NumberPrefix, OverflowsWhereTheNumberIsTooLarge) {
  for (const std::string& text :
       {std::string("1e309"), std::string("-1e309x"), std::string("+1E309"), std::string("1.7976931348623159e308"),
        std::string("1e99999999999999999999"), "1" + Zeros(400), "1" + Zeros(400) + ".5", ".0001e400" + std::string(),
        "0." + Zeros(300) + "1e700"}) {
    EXPECT_EQ(ErrorOf([&] { ReadNumberPrefix(text); }), 6) << text;
  }
}

TEST(ParameterNumber, IgnoresBlanksTabsAndLineBreaksAnywhere) {
  const std::pair<std::string_view, double> cases[] = {{" 1 2 . 5 ", 12.5}, {"\t-\r\n3", -3}, {"1e 3", 1000},
                                                       {"1,5", 1},          {"", 0},          {"2 m/s", 2},
                                                       {"1 . . 5", 1},      {".5", 0.5},      {"- -1", 0}};
  for (const auto& [text, value] : cases) EXPECT_EQ(ReadParameterNumber(text), value) << text;
  EXPECT_EQ(ErrorOf([] { ReadParameterNumber("1 e 3 0 9"); }), 6);
}

TEST(RoundToInt32, TakesTheEvenNeighbourOfAHalf) {
  const std::pair<double, std::int32_t> cases[] = {{0.5, 0},
                                                   {2.5, 2},
                                                   {-2.5, -2},
                                                   {0.49999999999999994, 0},
                                                   {-0.5000000000000001, -1},
                                                   {2147483647.4999998, 2147483647},
                                                   {-2147483648.5, std::numeric_limits<int>::min()}};
  for (const auto& [value, rounded] : cases) EXPECT_EQ(RoundToInt32(value), rounded) << value;
}

TEST(RoundToInt32, OverflowsBeyondTheRange) {
  for (const double value : {2147483647.5, std::nextafter(-2147483648.5, -1e10), 1e300, -1e300, Limits::infinity(),
                             -Limits::infinity(), Limits::quiet_NaN()}) {
    EXPECT_EQ(ErrorOf([&] { RoundToInt32(value); }), 6) << value;
  }
  EXPECT_EQ(CheckedInt32(-2147483648LL), std::numeric_limits<int>::min());
  EXPECT_EQ(ErrorOf([] { CheckedInt32(2147483648LL); }), 6);
  EXPECT_EQ(ErrorOf([] { CheckedInt32(-2147483649LL); }), 6);
}

TEST(FormatNumber, WritesFixedAndExponentNotation) {
  const std::pair<double, std::string_view> cases[] = {
      {0, "0"},
      {-0.0, "0"},
      {-0.25, "-0.25"},
      {0.1 + 0.2, "0.3"},
      {1.0 / 3, "0.333333333333333"},
      {1E-4, "0.0001"},
      {0.000123456789012345678, "0.000123456789012346"},
      {std::nextafter(1E-4, 0), "1E-04"},  // below the border, whatever its digits round to
      {-9.99999999999999E-5, "-9.99999999999999E-05"},
      {123456789012345.6, "123456789012346"},
      {std::nextafter(1E15, 0), "1000000000000000"},  // below the border likewise
      {1E15, "1E+15"},
      {1234567890123456.0, "1.23456789012346E+15"},
      {Limits::max(), "1.79769313486232E+308"},
      {Limits::denorm_min(), "4.94065645841247E-324"},
      {0.99999999999999989, "1"},
      {Limits::quiet_NaN(), "NaN"},
      {-Limits::infinity(), "-Inf"}};
  for (const auto& [value, text] : cases) EXPECT_EQ(FormatNumber(value), text);
  EXPECT_EQ(FormatNumber(-1234.5, ','), "-1234,5");
  EXPECT_EQ(FormatNumber(1.5E-5, ','), "1,5E-05");
}

// Every exponent, ties between two 15-digit numbers, powers of ten and their neighbours: digits as the C library has
// them.
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
