#include "field/dat_line.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#include "platform/byte_words.h"
#include "platform/numbers.h"

namespace quiverion {
namespace {

using words::Load;
using words::Word;

// A set of positions in a line. One word holds 64 characters; longer lines take two.
struct Positions64 {
  Word low = 0;

  bool Empty() const { return low == 0; }
  int First() const { return std::countr_zero(low); }
  int TakeFirst() {
    const int first = First();
    low &= low - 1;
    return first;
  }
  Positions64 Before(int end) const { return {end >= 64 ? low : low & ((Word{1} << end) - 1)}; }
  Positions64 ShiftedUp() const { return {low << 1}; }
  Positions64 Without(Positions64 other) const { return {low & ~other.low}; }
  Positions64 Complement() const { return {~low}; }
};

struct Positions128 {
  Word low = 0;
  Word high = 0;

  bool Empty() const { return (low | high) == 0; }
  int First() const { return low != 0 ? std::countr_zero(low) : 64 + std::countr_zero(high); }
  int TakeFirst() {
    const int first = First();
    high &= low != 0 ? ~Word{0} : high - 1;
    low &= low - 1;
    return first;
  }
  Positions128 Before(int end) const {
    return {Positions64{low}.Before(end).low, end < 64 ? 0 : Positions64{high}.Before(end - 64).low};
  }
  Positions128 ShiftedUp() const { return {low << 1, high << 1 | low >> 63}; }
  Positions128 Without(Positions128 other) const { return {low & ~other.low, high & ~other.high}; }
  Positions128 Complement() const { return {~low, ~high}; }
};

// The characters below `limit` among 64, one bit each. The comparison becomes vector instructions, and a
// multiplication gathers eight of its bytes.
template <unsigned char limit>
Word FindBelow(const char* text) {
  char below[64];
  for (int k = 0; k < 64; ++k) below[k] = static_cast<unsigned char>(text[k]) < limit ? 1 : 0;
  Word found = 0;
  for (int k = 0; k < 8; ++k) found |= (Load(below + 8 * k) * 0x0102040810204080) >> 56 << (8 * k);
  return found;
}

// The number of eight digits with the first in the lowest byte, each as value 0 to 9.
std::uint64_t EightDigits(Word word) {
  word = word * 10 + (word >> 8);  // pairs
  return ((word & 0x000000FF000000FF) * 0x000F424000000064 + (word >> 16 & 0x000000FF000000FF) * 0x0000271000000001) >>
         32;
}

bool AllDigits(Word word) {
  return (((word + words::kOnes * 0x76) | word) & words::kHighs) == 0;
}

// The first `count` (0 to 8) characters of the word as digit values that end in the highest byte, zeros
// before them.
Word Digits(Word characters, int count) {
  const Word values = characters ^ (words::kOnes * '0');
  return values << (32 - 4 * count) << (32 - 4 * count);  // a single shift could be one of 64 bits
}

constexpr double kPowersOfTen[] = {1E0, 1E1, 1E2, 1E3, 1E4, 1E5, 1E6, 1E7, 1E8};
constexpr std::uint64_t kIntegerPowersOfTen[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};

// The columns of a line one after the other.
template <class Positions>
class Columns {
 public:
  Columns(const char* text, Positions columns)
      : text_(text), starts_(columns.Without(columns.ShiftedUp())), ends_(columns.ShiftedUp().Without(columns)) {}

  bool Empty() const { return ends_.Empty(); }
  void Skip() {
    starts_.TakeFirst();
    ends_.TakeFirst();
  }
  std::string_view Take() {
    const char* const first = text_ + starts_.TakeFirst();
    return {first, text_ + ends_.TakeFirst()};
  }

 private:
  const char* text_;
  Positions starts_;
  Positions ends_;
};

// The position behind the line end (CR LF, LF or CR) at `end`; 0 where none is there.
inline std::size_t BehindLineEnd(std::string_view text, std::size_t end) {
  if (end >= text.size() || (text[end] != '\r' && text[end] != '\n')) return 0;
  const bool pair = text[end] == '\r' && end + 1 < text.size() && text[end + 1] == '\n';
  return end + (pair ? 2 : 1);
}

template <class Positions>
std::size_t CutColumns(std::string_view text, Positions blanks, Positions controls, DatColumns& result) {
  const auto end = static_cast<std::size_t>(controls.First());
  const std::size_t behindLine = BehindLineEnd(text, end);
  if (behindLine == 0) return 0;
  Columns<Positions> columns(text.data(), blanks.Complement().Before(static_cast<int>(end)));
  result.x = columns.Take();
  result.y = columns.Take();
  for (int ignored = 3; ignored <= 6; ++ignored) columns.Skip();
  result.u = columns.Take();
  if (columns.Empty()) return 0;
  result.v = columns.Take();
  return behindLine;
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

// The most usual line: nothing before the first column, single blanks between columns, at most 64 characters. Then
// every blank ends a column and begins the next. 0 where the line has another shape.
inline std::size_t CutSingleBlanks(std::string_view text, Word blanks, DatColumns& result) {
  const Word pairs = blanks & blanks << 1;
  Positions64 ends{blanks};
  std::size_t start = 0;
  bool allBlanks = (blanks & 1) == 0;
  const auto take = [&] {
    const auto end = static_cast<std::size_t>(ends.TakeFirst());
    const std::string_view column(text.data() + start, end - start);
    allBlanks = allBlanks && end < 64 && text.data()[end] == ' ';
    start = end + 1;
    return column;
  };
  result.x = take();
  result.y = take();
  for (int ignored = 3; ignored <= 6; ++ignored) take();
  result.u = take();
  if (!allBlanks) return 0;
  result.v = take();
  while (allBlanks && start < 64) take();
  const std::size_t end = start - 1;  // behind the last column: what ends the line, or what has another shape
  const std::size_t behindLine = end < 64 ? BehindLineEnd(text, end) : 0;
  if (behindLine == 0) return 0;
  if ((pairs & ((Word{1} << end) - 1)) != 0 || pairs >> end & 1) return 0;
  return behindLine;
}

std::size_t CutUsualDatLine(std::string_view text, DatColumns& columns) {
  Positions128 blanks;
  Positions128 controls;
  blanks.low = FindBelow<0x21>(text.data());
  if (const std::size_t taken = CutSingleBlanks(text, blanks.low, columns); taken > 0) return taken;
  controls.low = FindBelow<0x20>(text.data());
  if (controls.low != 0) return CutColumns(text, Positions64{blanks.low}, Positions64{controls.low}, columns);
  blanks.high = FindBelow<0x21>(text.data() + 64);
  controls.high = FindBelow<0x20>(text.data() + 64);
  return controls.Empty() ? 0 : CutColumns(text, blanks, controls, columns);
}

// Without branches that depend on the digits: what a file holds cannot be predicted.
bool ReadPlainNumber(std::string_view number, double& value) {
  const bool negative = number.data()[0] == '-';
  const char* const text = number.data() + negative;
  const int length = static_cast<int>(number.size()) - negative;
  const Word first = Load(text);
  const int pointAt = words::FirstByte(words::FirstBytesEqual<'.'>(first));  // 8 where there is none
  const int whole = std::min(pointAt, length);
  const int places = std::max(length - whole - 1, 0);
  if (places > 8 || whole + places < 1 || (pointAt == 8 && length > 8)) return false;
  const Word placesText = Load(text + whole + 1);
  std::uint64_t digits = 0;
  if (whole + places <= 8) {
    const Word all = Digits(first, whole) >> (8 * places % 64) | Digits(placesText, places);
    if (!AllDigits(all)) return false;
    digits = EightDigits(all);
  } else {
    const Word wholeDigits = Digits(first, whole);
    const Word placeDigits = Digits(placesText, places);
    if (!AllDigits(wholeDigits) || !AllDigits(placeDigits)) return false;
    digits = EightDigits(wholeDigits) * kIntegerPowersOfTen[places] + EightDigits(placeDigits);
  }
  // At most fifteen digits (a point leaves room for seven before it): both are exact and the division rounds once, to
  // the correctly rounded value.
  const double magnitude = static_cast<double>(static_cast<std::int64_t>(digits)) / kPowersOfTen[places];
  value = std::bit_cast<double>(std::bit_cast<Word>(magnitude) | Word{negative} << 63);
  return true;
}

std::size_t ParseUsualDatLine(std::string_view text, DatVector& vector) {
  DatColumns columns;
  const std::size_t taken = CutUsualDatLine(text, columns);
  const bool plain = taken > 0 && ReadPlainNumber(columns.x, vector.x) && ReadPlainNumber(columns.y, vector.y) &&
                     ReadPlainNumber(columns.u, vector.u) && ReadPlainNumber(columns.v, vector.v);
  return plain ? taken : 0;
}

}  // namespace quiverion
