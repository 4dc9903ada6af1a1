#include "field/dat_line.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <memory>
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

TEST(DatLine, TheQuickParserGivesTheBitsOfTheDefinition) {
  const char* const ends[] = {"\r\n", "\n", "\r", " \r\n", " 9.5\r\n", "\r\r\n", "x\n"};
  for (std::size_t column = 0; column < 8; ++column) {
    for (const std::string_view odd : kOddNumbers) {
      for (const char* const blank : {" ", "  ", "\t"}) {
        for (const char* const end : ends) {
          std::string line;
          for (std::size_t k = 0; k < 8; ++k) {
            line += (k == 0 ? "" : k == column ? blank : " ") + (k == column ? std::string(odd) : "-12.3456");
          }
          Agree(PaddedText(line + end).Get());
          Agree(PaddedText(line + end + line).Get());
        }
      }
    }
  }
  EXPECT_TRUE(Agree(PaddedText("16 48.0000 0.8 -0.4 0.894 2.10 -12.34567 1234.5678 2.236068\r\n16 4").Get()));
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
