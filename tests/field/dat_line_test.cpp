#include "field/formats/dat_line.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <random>
#include <string>

#include "support/dat_lines_check.h"

namespace quiverion::test {
namespace {

// Compares with the definition. Returns how many lines are taken.
int TakeAndCompare(std::string_view text) {
  const DatLinesCheck check = CheckDatLines(text);
  EXPECT_EQ(check.wrong, "");
  return check.taken;
}

// clang-format off
constexpr std::string_view kOddNumbers[] = {
    "", ".", "-", "+1", "-.", "--1", "1.2.3", "1e5", "1E-3", "e", "x", "-0", "-0.0", "0", "12a", "nan", "\xFC", "1\xB2",
    "\"1", "0x1", "1.", "-.5", ".5", "1-", "1:2", "1/2", "00000000000000001", "999999999999999", "9999999999999999",
    "-999999999999999", "0.00000000000001", "1.0E", "1234567.", "-1234567.", "-123456.7654321", ".1234567", "1.12345678",
    "1e999", "+0.5", "-+1", "+", "1E-400", "2.2250738585072011e-308", "9007199254740993", "12345678.5",
    "x.5", "-x.5", "1,5", "3.5.", "0.0000001", "1.5e+0:", "1.5E-:1", "1.5e-22", "1.5E+024", "1.5e+25", "1.5ee01", "1.5e+1"};
// clang-format on

TEST(DatLine, ManyLinesAtOnceGiveTheBitsOfTheDefinition) {
  const char* const ends[] = {"\r\n", "\n", "\r", " \r\n", " 9.5\r\n", "\r\r\n", "x\n", "\t\n", ",\n"};
  const std::string usual = "16 48.0000 0.8 -0.4 0.894 2.10 -12.34567 1234.5678 2.236068\r\n";
  for (std::size_t column = 0; column < 8; ++column) {
    for (const std::string_view odd : kOddNumbers) {
      for (const auto& [blank, others] : {std::pair(" ", "-12.3456"), {"  ", "-1.23456e+00"}, {"\t", "12.3456"}}) {
        std::string text;
        for (const char* const end : ends) {
          std::string line;
          for (std::size_t k = 0; k < 8; ++k) {
            line += (k == 0 ? "" : k == column ? blank : " ") + (k == column ? std::string(odd) : others);
          }
          text += line + end + line + end + usual;
        }
        TakeAndCompare(text);
      }
    }
  }
}

struct NumberShape {
  std::chars_format format;
  int decimals;
  std::size_t width = 0;
  const char* plus = "";

  std::string Write(double value) const {
    char buffer[100];
    std::string text = value >= 0 ? plus : "";
    text.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, value, format, decimals).ptr);
    return std::string(width - std::min(width, text.size()), ' ') + text;
  }
};

// What printf, Fortran, numpy and others write. Three chunks and more of each, so that lines lie across their borders.
TEST(DatLine, LinesOfEveryUsualShapeAreTakenTogether) {
  struct Shape {
    NumberShape position, value;
    int columns;
  };
  constexpr auto fixed = std::chars_format::fixed, scientific = std::chars_format::scientific,
                 general = std::chars_format::general;
  const Shape shapes[] = {{{fixed, 0}, {fixed, 6}, 9},
                          {{fixed, 4, 10}, {fixed, 4, 10}, 8},
                          {{fixed, 1, 8}, {fixed, 6, 12}, 20},
                          {{fixed, 1, 0, "+"}, {fixed, 3, 0, "+"}, 9},
                          {{scientific, 18}, {scientific, 18}, 9},
                          {{scientific, 7, 15, "+"}, {scientific, 7, 15}, 9},
                          {{fixed, 0}, {scientific, 6}, 9},
                          {{general, 6}, {general, 6}, 12},
                          {{general, 17}, {general, 17}, 8},
                          {{fixed, 0}, {fixed, 0}, 8},
                          {{fixed, 3, 40}, {fixed, 3, 40}, 9},
                          {{fixed, 0}, {fixed, 4}, 7},
                          {{fixed, 2, 9}, {fixed, 2, 9}, 2},
                          {{fixed, 60}, {fixed, 60}, 8}};
  std::mt19937 random(3);
  std::normal_distribution<double> velocity(0.0, 3.0);
  for (const Shape& shape : shapes) {
    for (const char* const end : {"\r\n", "\n", "\r", "  \n"}) {
      std::string text;
      int count = 0;
      for (; text.size() < 3 * DatLines::kChunk; ++count) {
        for (int column = 1; column <= shape.columns; ++column) {
          const int power = static_cast<int>(shape.value.format == scientific ? random() % 60 : random() % 5) - 4;
          const double value = column <= 2 ? 16.0 * (count % 100) : velocity(random) / std::pow(10, power);
          text.append(column == 1 ? "" : " ").append((column <= 2 ? shape.position : shape.value).Write(value));
        }
        text += end;
      }
      EXPECT_EQ(TakeAndCompare(text), count) << text.substr(0, 300);
    }
  }
}

// Line ends and commas where a line is expected to continue, missing columns, blanks anywhere; after lines whose
// velocities are decimals, whole numbers, have exponents or are of no kind that is read together, since these decide
// how the others are read.
TEST(DatLine, RandomTextsGiveTheBitsOfTheDefinition) {
  std::mt19937 random(20);
  const std::string_view alphabet = "          0123456789....--+eE\r\n\t,x\"$*";
  const std::string_view usual[] = {"16 48 0.894 -0.411 0.984 2.10 -12.345678 0.234567 2.236068\r\n",
                                    "    16.0  1600.0    6.7241    0.0010    6.7241    2.4000   10.1234   -0.0012\n",
                                    "1.6E+01 4.8E+01 1 2 3 4 -1.234567E+019 1.234567e-16 5\r\n"};
  const std::string_view first[] = {usual[0], "1 2 3 4 5 6 +7 8\n", usual[2], "1 2 3 4 5 6 7e0 8e0\n"};
  int taken = 0;
  for (int round = 0; round < 6000; ++round) {
    std::string text;
    for (int line = 0; line < 8; ++line) text += first[round % 4];
    const std::size_t changed = text.size();
    for (int line = 0; line < 3; ++line) text += usual[round / 4 % 3];
    for (int change = 0; change < 6; ++change) {
      text[changed + random() % (text.size() - changed)] = alphabet[random() % alphabet.size()];
    }
    taken += TakeAndCompare(text);
  }
  EXPECT_GT(taken, 6000 * 9);
}

// Every length of a line, so that each of its characters is the last one of a chunk once.
TEST(DatLine, LinesEndAnywhereInAChunk) {
  for (std::size_t blanks = 0; blanks < 80; ++blanks) {
    std::string text(blanks, ' ');
    int count = 0;
    for (; text.size() < DatLines::kChunk + 200; ++count) text += "   16 1600.0 1 2 3 4 -12.345678 1e-05 5\r\n";
    EXPECT_EQ(TakeAndCompare(text), count);
    EXPECT_EQ(TakeAndCompare(text + "16 48 1 2 3 4 5 6"), count) << "without a line end";
  }
  const std::string lineEnds(2 * DatLines::kChunk, '\n');
  EXPECT_EQ(TakeAndCompare(lineEnds + "1 2\n"), 1);
  EXPECT_EQ(TakeAndCompare(std::string(2 * DatLines::kChunk, ' ') + "1 2\n1 2\n"), 1) << "the first one is too long";
}

TEST(DatLine, LinesAreTakenBehindWhatTheDefinitionRead) {
  for (const std::size_t length : {std::size_t{3}, DatLines::kChunk - 20, DatLines::kChunk, 3 * DatLines::kChunk}) {
    const std::string quoted = '"' + std::string(length, 'a') + "\n\"";
    const PaddedText text("1 2\n" + quoted + "3 4\n5 6\n");
    const auto lines = std::make_unique<DatLines>();
    EXPECT_EQ(lines->Take(text.Get()), 4u);
    EXPECT_EQ(lines->Take(text.Get().substr(4 + quoted.size(), 7)), 4u) << "the second one has no end";
    EXPECT_EQ(lines->X(0), "3");
    EXPECT_EQ(lines->Y(0), "4");
  }
}

}  // namespace
}  // namespace quiverion::test
