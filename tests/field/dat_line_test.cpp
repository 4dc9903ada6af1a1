#include "field/dat_line.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "field/dat_fields.h"

namespace quiverion::test {
namespace {

// A text with the padding that the quick parser may read, and not a byte more.
class PaddedText {
 public:
  explicit PaddedText(const std::string& text) : size_(text.size()), bytes_(new char[size_ + DatFields::kPadding]) {
    std::copy(text.begin(), text.end(), bytes_.get());
    std::fill_n(bytes_.get() + size_, DatFields::kPadding, '\0');
  }
  std::string_view Get() const { return {bytes_.get(), size_}; }

 private:
  std::size_t size_;
  std::unique_ptr<char[]> bytes_;
};

std::array<std::uint64_t, 4> BitsOf(const DatVector& vector) {
  return std::bit_cast<std::array<std::uint64_t, 4>>(vector);
}

// Takes one line off the text. True where the quick parser took it; it must then agree with the definition.
bool Agree(std::string_view text) {
  DatVector quick;
  const std::size_t taken = ParseUsualDatLine(text, quick);
  if (taken == 0) return false;
  const std::size_t length = std::min(text.find_first_of("\r\n"), text.size());
  const std::string_view line = text.substr(0, length);
  EXPECT_EQ(taken, length + (text.substr(length).starts_with("\r\n") ? 2 : 1)) << line;
  EXPECT_LE(taken, text.size()) << line;
  EXPECT_NE(line.substr(std::min(line.find_first_not_of(' '), line.size())).substr(0, 1), "\"") << line;
  EXPECT_EQ(BitsOf(quick), BitsOf(ParseDatLine(line))) << line;
  return true;
}

// clang-format off
constexpr std::string_view kOddNumbers[] = {
    "", ".", "-", "+1", "-.", "--1", "1.2.3", "1e5", "1E-3", "e", "x", "-0", "-0.0", "0", "12a", "nan", "\xFC", "1\xB2",
    "\"1", "0x1", "1.", "-.5", ".5", "1-", "1:2", "1/2", "00000000000000001", "999999999999999", "9999999999999999",
    "-999999999999999", "0.00000000000001", "1.0E"};
// clang-format on

class LineSource {
 public:
  // `odd`: how many of a hundred numbers and blanks have an unusual shape.
  explicit LineSource(std::uint64_t odd) : odd_(odd) {}

  std::string Line() {
    std::string line(Odd() ? Below(4) : 0, ' ');
    const std::size_t columns = Odd() ? Below(12) : 8 + Below(3);
    for (std::size_t k = 0; k < columns; ++k) {
      if (k > 0) line += Odd() ? Pick({"  ", "   ", "\t", " \t ", "         "}) : " ";
      line += Number();
    }
    if (Odd()) line += Pick({" ", "   ", "\t", "\x0B", "x"});
    return line.append(Odd() ? Pick({"\n", "\r", "\r\n", "\n\r", "\r\r\n"}) : "\r\n");
  }

 private:
  std::uint64_t Below(std::uint64_t limit) { return random_() % limit; }
  bool Odd() { return Below(100) < odd_; }
  std::string_view Pick(std::initializer_list<std::string_view> choices) {
    return choices.begin()[Below(choices.size())];
  }

  std::string Number() {
    if (Odd() && Below(3) == 0) {
      return std::string(kOddNumbers[Below(std::size(kOddNumbers))]);
    }
    std::string digits;
    const std::size_t count = 1 + Below(Odd() ? 18 : 7);
    for (std::size_t k = 0; k < count; ++k) digits.push_back(static_cast<char>('0' + Below(10)));
    if (Below(4) != 0) digits.insert(Below(count + 1), ".");
    if (digits == ".") digits = "1.";
    return (Below(3) == 0 ? "-" : "") + digits;
  }

  std::mt19937_64 random_{20031124};
  std::uint64_t odd_;
};

TEST(DatLine, TheQuickParserGivesTheBitsOfTheDefinition) {
  for (const std::uint64_t odd : {0u, 2u, 15u, 60u}) {
    LineSource source(odd);
    int taken = 0;
    std::string next;
    constexpr int count = 40000;
    for (int turn = 0; turn < count; ++turn) {
      const std::string line = source.Line();
      const PaddedText text(turn % 3 == 0 ? line : line + next);
      next = line;
      taken += Agree(text.Get()) ? 1 : 0;
      if (testing::Test::HasFailure()) return;
    }
    if (odd == 0) {
      EXPECT_EQ(taken, count) << "the usual shape must take the quick way";
    }
    if (odd == 15) {
      EXPECT_GT(taken, 500);
    }
  }
}

TEST(DatLine, TheQuickParserStopsAtEveryEndOfTheText) {
  const std::string line = "16 48.0000 0.8 -0.4 0.894 2.10 -12.34567 1234.5678 2.236068\r\n";
  for (std::size_t length = 0; length < line.size() - 1; ++length) {
    const PaddedText text(line.substr(0, length));
    DatVector vector;
    EXPECT_EQ(ParseUsualDatLine(text.Get(), vector), 0u) << length;
  }
  for (std::size_t shift = 0; shift < 160; ++shift) {  // across the ends of words and of what is looked at at once
    std::string shifted = line;
    shifted.insert(shift < 80 ? 0 : shifted.find(" -12"), shift % 80, ' ');
    EXPECT_TRUE(Agree(PaddedText(shifted).Get()) || shifted.size() > 120) << shift;
    EXPECT_TRUE(Agree(PaddedText(shifted + shifted).Get()) || shifted.size() > 120) << shift;
    Agree(PaddedText(std::string(shift, '0') + line).Get());
  }
}

TEST(DatLine, EveryByteInANumberIsSeen) {
  for (int byte = 0; byte < 256; ++byte) {
    for (std::size_t at = 0; at < 15; ++at) {
      std::string number = "123456.78901234";
      number[at] = static_cast<char>(byte);
      const PaddedText text("16 48 0 0 0 0 " + number + " 1\r\n");
      Agree(text.Get());
    }
  }
}

TEST(DatLine, OnlyBlanksSeparateColumns) {
  const DatVector vector = ParseDatLine("  1\t9  2 3 4 5 6 7.5x  -8E1 9");
  EXPECT_EQ(BitsOf(vector), BitsOf({1, 2, 7.5, -80}));
  EXPECT_EQ(BitsOf(ParseDatLine("")), BitsOf({}));
  EXPECT_EQ(BitsOf(ParseDatLine("1")), BitsOf({1, 0, 0, 0}));
}

}  // namespace
}  // namespace quiverion::test
