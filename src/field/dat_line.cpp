#include "field/dat_line.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#include "platform/numbers.h"

namespace quiverion {
namespace {

using Word = std::uint64_t;  // eight characters, the first in the lowest byte

constexpr Word kOnes = 0x0101010101010101;
constexpr Word kHighs = 0x8080808080808080;

Word Load(const char* text) {
  Word word;
  std::memcpy(&word, text, sizeof word);
  return word;
}

// The high bit of the first byte that is a blank or a control character is the lowest one set (exact for that
// one).
Word BlankOrControl(Word word) {
  return (word - kOnes * 0x21) & ~word & kHighs;
}

int FirstByte(Word highBits) {
  return std::countr_zero(highBits) / 8;
}

// Length of the run of characters up to the next blank or control character, at most `limit`.
const char* EndOfColumn(const char* text) {
  for (;; text += 8) {
    const Word found = BlankOrControl(Load(text));
    if (found != 0) return text + FirstByte(found);
  }
}

// The number of eight digits with the first in the lowest byte, each as value 0 to 9.
std::uint64_t EightDigits(Word word) {
  word = word * 10 + (word >> 8);  // pairs
  return (((word & 0x000000FF000000FF) * 0x000F424000000064 +
           ((word >> 16) & 0x000000FF000000FF) * 0x0000271000000001) >>
          32);
}

// Up to eight characters ending at `end`, as digit values; characters before them are 0.
Word LastCharacters(const char* end, int count) {
  const Word word = Load(end - count);
  return count == 0 ? 0 : (word ^ kOnes * '0') << (64 - 8 * count);
}

constexpr double kPowersOfTen[] = {1E0, 1E1, 1E2,  1E3,  1E4,  1E5,  1E6,  1E7,
                                   1E8, 1E9, 1E10, 1E11, 1E12, 1E13, 1E14, 1E15};

// Takes the point out of eight characters of digit values: what stands before it moves up by one byte.
// Returns the digits behind the point, -1 where there is no point.
int TakePoint(Word& word) {
  constexpr Word point = kOnes * ('.' ^ '0');
  const Word difference = word ^ point;
  const Word found = (difference - kOnes) & ~difference & kHighs;
  if (found == 0) return -1;
  const int position = FirstByte(found);
  const Word before = (Word{1} << (8 * position)) - 1;
  word = ((word & before) << 8) | (word & ~before & ~(Word{0xFF} << (8 * position)));
  return 7 - position;
}

bool AllDigits(Word word) {
  return (((word + kOnes * 0x76) | word) & kHighs) == 0;
}

// A plain decimal number between `text` and `end`: digits and point fit two words and 15 digits.
bool ParsePlainNumber(const char* text, const char* end, double& value) {
  const bool negative = *text == '-';
  text += negative;
  const auto length = static_cast<int>(end - text);
  if (length < 1 || length > 15) return false;
  const int lowCount = length < 8 ? length : 8;
  Word low = LastCharacters(end, lowCount);
  int places = TakePoint(low);
  std::uint64_t digits = 0;
  if (length > 8) {
    Word high = LastCharacters(end - 8, length - 8);
    const bool pointInLow = places >= 0;
    if (!pointInLow) {
      const int highPlaces = TakePoint(high);
      if (highPlaces >= 0) places = highPlaces + 8;
    }
    if (!AllDigits(high)) return false;
    digits = EightDigits(high) * (pointInLow ? 10000000 : 100000000);
  }
  if (!AllDigits(low)) return false;
  digits += EightDigits(low);
  if (length == 1 && places >= 0) return false;  // a point alone
  // Both are exact and the division rounds once: the correctly rounded value.
  const double magnitude =
      places > 0 ? static_cast<double>(digits) / kPowersOfTen[places] : static_cast<double>(digits);
  value = negative ? -magnitude : magnitude;
  return true;
}

}  // namespace

DatVector ParseDatLine(std::string_view line) {
  double columns[9] = {};
  for (int column = 1; column <= 8; ++column) {
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    const std::string_view text = line.substr(0, line.find(' '));
    if (column <= 2 || column >= 7) columns[column] = ReadNumberPrefix(text).value;
    line.remove_prefix(text.size());
  }
  return {columns[1], columns[2], columns[7], columns[8]};
}

std::size_t ParseUsualDatLine(std::string_view text, DatVector& vector) {
  const char* at = text.data();
  const char* const limit = text.data() + text.size();
  double* const targets[8] = {&vector.x, &vector.y, nullptr, nullptr, nullptr, nullptr, &vector.u, &vector.v};
  for (double* const target : targets) {
    while (*at == ' ') ++at;
    const char* const end = EndOfColumn(at);
    if (end == at || end >= limit) return 0;
    if (target != nullptr && !ParsePlainNumber(at, end, *target)) return 0;
    at = end;
  }
  while (at < limit && static_cast<unsigned char>(*at) >= ' ') at = *at == ' ' ? at + 1 : EndOfColumn(at);
  if (at >= limit || (*at != '\r' && *at != '\n')) return 0;
  const bool pair = *at == '\r' && at + 1 < limit && at[1] == '\n';
  return static_cast<std::size_t>(at - text.data()) + (pair ? 2 : 1);
}

}  // namespace quiverion
