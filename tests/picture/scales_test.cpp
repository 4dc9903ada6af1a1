#include "picture/scales.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace quiverion::test {
namespace {

TEST(Scales, RoundDownTo125) {
  const std::pair<double, double> cases[] = {
      {1, 1},     {1.99, 1},    {2, 2},       {4.9, 2},     {5, 5},           {9.99, 5},          {10, 10},
      {0.3, 0.2}, {0.05, 0.05}, {7e-9, 5e-9}, {1e21, 1e21}, {123456, 100000}, {2.5e-300, 2e-300}, {1000, 1000}};
  for (const auto& [value, expected] : cases) EXPECT_NEAR(RoundDown125(value) / expected, 1.0, 1e-12) << value;
}

TEST(Scales, TicksAndTheirTexts) {
  struct Case {
    double lower, upper;
    int atMost;
    const char* expected;
  };
  const Case cases[] = {{0, 10, 5, "0 2 4 6 8 10"},
                        {-3.2, 3.9, 4, "-2 0 2"},
                        {0.13, 0.17, 4, "0,13 0,14 0,15 0,16 0,17"},
                        {-250, -50, 4, "-250 -200 -150 -100 -50"},
                        {0, 1, 1, "0 1"},
                        {2e6, 6e6, 4, "2000000 3000000 4000000 5000000 6000000"},
                        {-4e-7, 4e-7, 4, "-4E-07 -2E-07 0 2E-07 4E-07"},
                        {7, 7, 5, ""},
                        {9, 3, 5, ""},
                        {0, std::numeric_limits<double>::infinity(), 5, ""},
                        {1e17, 1e17 + 64, 5, ""}};
  for (const Case& each : cases) {
    const Ticks ticks = TicksBetween(each.lower, each.upper, each.atMost);
    std::string text;
    for (const double value : ticks.values) text += (text.empty() ? "" : " ") + TickText(value, ticks.step);
    EXPECT_EQ(text, each.expected) << each.lower << " " << each.upper;
  }
}

TEST(Scales, NumbersHaveAComma) {
  EXPECT_EQ(NumberText(-1234.5678, 6), "-1234,57");
  EXPECT_EQ(NumberText(1e30, 4), "1E+30");
  EXPECT_EQ(NumberText(std::nan(""), 4), "–");
  EXPECT_EQ(NumberText(-0.0, 4), "0");
}

TEST(Scales, OneOutlierNeverCounts) {
  const double outlier = 1e30;
  for (const int count : {2, 10, 19, 21, 400}) {
    std::vector<double> values(static_cast<std::size_t>(count), 3.0);
    values[static_cast<std::size_t>(count) / 2] = outlier;
    EXPECT_EQ(Quantile(values, 0.95), 3.0) << count;
    for (const bool isSigned : {false, true}) {
      const Limits limits = RobustLimits(values, isSigned);
      EXPECT_EQ(limits, (isSigned ? Limits{-3.0, 3.0} : Limits{0.0, 3.0})) << count;
    }
  }
  std::vector<double> none, one = {4.0}, zeros(9, 0.0), negative(9, -2.0);
  EXPECT_EQ(Quantile(none, 0.95), 0.0);
  EXPECT_EQ(Quantile(one, 0.95), 4.0);
  EXPECT_EQ(RobustLimits(none, false), (Limits{0.0, 1.0}));
  EXPECT_EQ(RobustLimits(zeros, true), (Limits{-1.0, 1.0}));
  const Limits flat = RobustLimits(negative, false);
  EXPECT_TRUE(flat.lower < -2.0 && flat.upper > -2.0);
  std::vector<double> huge(9, -std::numeric_limits<double>::max());
  const Limits large = RobustLimits(huge, true);
  EXPECT_TRUE(std::isfinite(large.upper - large.lower));
}

}  // namespace
}  // namespace quiverion::test
