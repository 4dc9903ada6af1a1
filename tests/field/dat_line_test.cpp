#include "field/dat_line.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <memory>
#include <string>

#include "platform/numbers.h"

namespace quiverion::test {
namespace {

// A text with what may be read around it, and not a byte more.
class PaddedText {
 public:
  explicit PaddedText(std::string_view text)
      : size_(text.size()), bytes_(new char[DatLines::kBefore + size_ + DatLines::kBehind]()) {
    std::copy(text.begin(), text.end(), bytes_.get() + DatLines::kBefore);
  }
  std::string_view Get() const { return {bytes_.get() + DatLines::kBefore, size_}; }

 private:
  std::size_t size_;
  std::unique_ptr<char[]> bytes_;
};

std::array<std::uint64_t, 4> BitsOf(const DatVector& vector) {
  return std::bit_cast<std::array<std::uint64_t, 4>>(vector);
}

double ValueOf(std::uint64_t text) {
  const auto characters = std::bit_cast<std::array<char, 8>>(text);
  const std::string_view all(characters.data(), characters.size());
  return ReadNumberPrefix(all.substr(std::min(all.find_first_not_of('\0'), all.size()))).value;
}

// Takes lines off the text, each a whole line with the numbers of the definition. Returns how many are of the usual
// shape.
int TakeAndCompare(std::string_view text) {
  const auto lines = std::make_unique<DatLines>();
  const PaddedText padded(text);
  const std::size_t taken = lines->Take(padded.Get());
  int plain = 0;
  std::size_t at = 0;
  for (int k = 0; k < lines->Count(); ++k) {
    EXPECT_EQ(lines->Begin(k) - padded.Get().data(), static_cast<std::ptrdiff_t>(at));
    const std::size_t end = text.find_first_of(",\r\n", at);
    if (end == std::string_view::npos || text[end] == ',') {
      ADD_FAILURE() << "took what is no line: " << text.substr(at);
      return plain;
    }
    const std::string_view line = text.substr(at, end - at);
    EXPECT_NE(line.substr(std::min(line.find_first_not_of(' '), line.size())).substr(0, 1), "\"") << line;
    DatVector expected = ParseDatLine(line);
    DatVector actual{ValueOf(lines->XText(k)), ValueOf(lines->YText(k)), expected.u, expected.v};
    if (lines->IsPlain(k)) {
      ++plain;
      actual.u = lines->Vx(k);
      actual.v = lines->Vy(k);
    }
    EXPECT_EQ(BitsOf(actual), BitsOf(expected)) << line;
    at = end + (text.substr(end).starts_with("\r\n") ? 2 : 1);
  }
  EXPECT_EQ(at, taken);
  return plain;
}

// clang-format off
constexpr std::string_view kOddNumbers[] = {
    "", ".", "-", "+1", "-.", "--1", "1.2.3", "1e5", "1E-3", "e", "x", "-0", "-0.0", "0", "12a", "nan", "\xFC", "1\xB2",
    "\"1", "0x1", "1.", "-.5", ".5", "1-", "1:2", "1/2", "00000000000000001", "999999999999999", "9999999999999999",
    "-999999999999999", "0.00000000000001", "1.0E", "1234567.", "-1234567.", "-123456.7654321", ".1234567", "1.12345678",
    "12345678.5", "x.5", "-x.5", "1,5", "3.5.", "0.0000001"};
// clang-format on

TEST(DatLine, ManyLinesAtOnceGiveTheBitsOfTheDefinition) {
  const char* const ends[] = {"\r\n", "\n", "\r", " \r\n", " 9.5\r\n", "\r\r\n", "x\n", "\t\n", ",\n"};
  const std::string usual = "16 48.0000 0.8 -0.4 0.894 2.10 -12.34567 1234.5678 2.236068\r\n";
  int plain = 0;
  for (std::size_t column = 0; column < 8; ++column) {
    for (const std::string_view odd : kOddNumbers) {
      for (const char* const blank : {" ", "  ", "\t"}) {
        for (const char* const end : ends) {
          std::string line;
          for (std::size_t k = 0; k < 8; ++k) {
            line += (k == 0 ? "" : k == column ? blank : " ") + (k == column ? std::string(odd) : "-12.3456");
          }
          TakeAndCompare(line + end);
          TakeAndCompare(line.append(end) + line);
          plain += TakeAndCompare(usual + line + usual);
        }
      }
    }
  }
  EXPECT_GT(plain, 15000) << "what is usual is taken quickly";
}

}  // namespace
}  // namespace quiverion::test
