#include "field/formats/dat_line.h"

#include <algorithm>
#include <bit>

#include "platform/numeric/bit_select.h"
#include "platform/numeric/multi_target.h"
#include "platform/text/byte_words.h"
#include "platform/text/numbers.h"

namespace quiverion {
namespace {

using words::Load;
using words::NumberOfEightDigits;
using words::Word;

// One bit for each character for which `isMeant` is true, 64 to a word. The comparison compiles to vector instructions;
// eight of its bytes at a time become bits.
template <std::size_t size, class IsMeant>
QUIVERION_ALWAYS_INLINE void FindCharacters(const char* text, Word* found, IsMeant isMeant) {
  constexpr std::size_t kPart = 1024;
  for (std::size_t part = 0; part < size; part += kPart) {
    char meant[kPart];
    for (std::size_t k = 0; k < kPart; ++k) meant[k] = isMeant(static_cast<unsigned char>(text[part + k])) ? 1 : 0;
    unsigned char bits[kPart / 8];
    for (std::size_t k = 0; k < kPart / 8; ++k) bits[k] = words::GatherBits(Load(meant + 8 * k));
    for (std::size_t k = 0; k < kPart / 64; ++k) found[part / 64 + k] = words::Load(bits + 8 * k);
  }
}

// Control characters, commas and quotation marks, found by one comparison: from several, the compiler makes a bit-set
// lookup, which it cannot vectorise. '$' and '*' also count as stops: excluding them would cost an operation, and lines
// with them are rare.
QUIVERION_ALWAYS_INLINE bool IsStop(unsigned char c) {
  return std::min(static_cast<unsigned char>(c & 0xE0), static_cast<unsigned char>((c - '"') & ~0x0A)) == 0;
}

// Takes the first position out of a set that has one.
QUIVERION_ALWAYS_INLINE std::size_t TakeFirst(Word& positions) {
  const int first = __builtin_ctzll(positions);  // std::countr_zero asks whether there is one
  positions &= positions - 1;
  return static_cast<std::size_t>(first);
}

constexpr std::size_t kWords = DatLines::kChunk / 64;

// The positions in the chunk, then kChunk twice. Most words have one line end or none, so two positions are written
// without a test.
QUIVERION_ALWAYS_INLINE void ListPositions(const Word* bits, std::uint16_t* list) {
  for (std::size_t k = 0; k < kWords; ++k) {
    Word rest = bits[k];
    const int count = std::popcount(rest);
    const std::size_t first = 64 * k;
    for (int n = 0; n < 2; ++n) {
      list[n] = static_cast<std::uint16_t>(first + static_cast<std::size_t>(std::countr_zero(rest)));
      rest &= rest - 1;
    }
    for (int n = 2; n < count; ++n) list[n] = static_cast<std::uint16_t>(first + TakeFirst(rest));
    list += count;
  }
  std::fill_n(list, 2, std::uint16_t{DatLines::kChunk});
}

// Stops end a field, or a line that is taken. Separators end a column: blanks, and stops.
QUIVERION_ALWAYS_INLINE void FindAll(const char* text, std::uint16_t* stopList, Word* separators, Word* columnEnds) {
  Word stops[kWords];
  FindCharacters<DatLines::kChunk>(text, stops, [](unsigned char c) { return IsStop(c); });
  FindCharacters<DatLines::kChunk>(text, separators + 1, [](unsigned char c) { return c == ' '; });
  separators[0] = ~Word{0};  // as if one preceded the chunk
  for (std::size_t k = 0; k < kWords; ++k) separators[k + 1] |= stops[k];
  for (std::size_t k = 0; k < kWords; ++k) {
    columnEnds[k] = separators[k + 1] & ~(separators[k + 1] << 1 | separators[k] >> 63);
  }
  ListPositions(stops, stopList);
}

QUIVERION_MULTI_TARGET_CALL(FindEnds, (const char* text, std::uint16_t* stops, Word* separators, Word* columnEnds),
                            (text, stops, separators, columnEnds), FindAll(text, stops, separators, columnEnds))

// The bits from position `at`: kWindow of them, and unspecified ones.
constexpr std::size_t kWindow = 57;
constexpr Word kUnspecified = ~Word{0} << kWindow;
QUIVERION_ALWAYS_INLINE Word Window(const Word* bits, std::size_t at) {
  return Load(reinterpret_cast<const char*>(bits) + at / 8) >> at % 8;
}

// Ten to the power of `exponent` (0 to 7), exactly. A table would have to be gathered from, which is slower.
QUIVERION_ALWAYS_INLINE double PowerOfTen(Word exponent) {
  return ((exponent & 1) != 0 ? 1E1 : 1E0) * ((exponent & 2) != 0 ? 1E2 : 1E0) * ((exponent & 4) != 0 ? 1E4 : 1E0);
}

// How many bytes are above the highest marked one: 7 if none is marked.
QUIVERION_ALWAYS_INLINE Word BytesAbove(Word highBits) {
  return static_cast<Word>(std::countl_zero(highBits | 1)) / 8;
}

// Keeps the `count` (0 to 7) highest bytes.
QUIVERION_ALWAYS_INLINE Word HighestBytes(Word word, Word count) {
  return word >> 8 >> (56 - 8 * count) << (56 - 8 * count) << 8;
}

// The byte below the `count` (0 to 7) highest ones, as the lowest byte.
QUIVERION_ALWAYS_INLINE Word ByteBelow(Word word, Word count) {
  return word << 8 * count >> 56;
}

// The numbers that are read together. Usual: digits, at most 7 on either side of a point, and maybe a minus. Wide: the
// point may be missing, and there may be a plus. Scientific: usual ones with an exponent of two or three digits.
enum class Kind { usual, wide, scientific };

// The value is (-1)^negative * digits / 10^places.
struct Decimal {
  double digits = 0.0;  // at most fourteen of them: exact
  Word places = 0;
  Word negative = 0;
  Word refused = 0;  // nonzero if the characters are of another kind
};

// A number that ends with the sixteen characters `head`, `tail` and is preceded by a blank. No branches here and below,
// because they would prevent vectorisation.
template <Kind kind>
QUIVERION_ALWAYS_INLINE Decimal ReadDecimal(Word head, Word tail) {
  const Word points = words::BytesBelow<1>(tail ^ words::kOnes * '.');
  const Word isWhole = kind == Kind::wide ? MaskOf(points == 0) : 0;
  const Word places = BytesAbove(points) & ~isWhole;
  const Word placeDigits = HighestBytes(tail ^ words::kOnes * '0', places);
  const Word beforePoint = (tail & isWhole) | ((tail << 8 * places << 8 | head >> (56 - 8 * places)) & ~isWhole);
  const Word whole = BytesAbove(words::BytesFrom<10>(beforePoint ^ words::kOnes * '0'));
  const Word wholeDigits = HighestBytes(beforePoint ^ words::kOnes * '0', whole);
  const Word beforeDigits = beforePoint << 8 * whole;
  const Word sign = beforeDigits >> 56;
  const Word negative = MaskOf(sign == '-') & 1;
  const Word hasSign = kind == Kind::wide ? negative | (MaskOf(sign == '+') & 1) : negative;
  const Word noPoint = kind == Kind::wide ? 0 : ByteBelow(tail, places) ^ '.';
  const Word refused = noPoint | words::BytesFrom<10>(placeDigits) | (whole + places - 1) >> 63 |
                       (ByteBelow(beforeDigits, hasSign) ^ ' ');
  const auto wholeValue = static_cast<double>(static_cast<std::int64_t>(NumberOfEightDigits(wholeDigits)));
  const auto placesValue = static_cast<double>(static_cast<std::int64_t>(NumberOfEightDigits(placeDigits)));
  return {wholeValue * PowerOfTen(places) + placesValue, places, negative, refused};
}

// All of this is exact up to the division or multiplication, which rounds once, to the correctly rounded value.
template <Kind kind>
QUIVERION_ALWAYS_INLINE Word ReadNumber(Word head, Word tail, double& value) {
  const Decimal decimal = ReadDecimal<kind>(head, tail);
  const double magnitude = decimal.digits / PowerOfTen(decimal.places);
  value = std::bit_cast<double>(std::bit_cast<Word>(magnitude) | decimal.negative << 63);
  return decimal.refused;
}

template <>
QUIVERION_ALWAYS_INLINE Word ReadNumber<Kind::scientific>(Word head, Word tail, double& value) {
  const Word isLong = MaskOf((tail >> 24 & 0xDF) == 'E');
  const Word bits = 32 + (isLong & 8);  // of "e-05" or "e-005"
  const Word letter = tail >> (64 - bits) & 0xDF;
  const Word sign = tail >> (72 - bits) & 0xFF;
  const Word digits = (tail >> 40 ^ 0x303030) & ~(~isLong & 0xFF);
  const Word power = (digits & 0xFF) * 100 + (digits >> 8 & 0xFF) * 10 + (digits >> 16);
  const Decimal decimal = ReadDecimal<Kind::usual>(head << bits, tail << bits | head >> (64 - bits));

  const Word minus = MaskOf(sign == '-');
  const Word exponent = ((power ^ minus) - minus) - decimal.places;
  const Word divides = MaskOf(static_cast<std::int64_t>(exponent) < 0);
  const Word scale = (exponent ^ divides) - divides;
  const double factor = PowerOfTen(scale) * ((scale & 8) != 0 ? 1E8 : 1E0) * ((scale & 16) != 0 ? 1E16 : 1E0);
  const double magnitude = Select(divides, decimal.digits / factor, decimal.digits * factor);
  value = std::bit_cast<double>(std::bit_cast<Word>(magnitude) | decimal.negative << 63);
  const Word otherSign = MaskOf(sign != '+') & ~minus;
  const Word inexact = MaskOf(scale > 22);  // the larger powers of ten are no doubles
  return decimal.refused | (letter ^ 'E') | otherSign | words::BytesFrom<10>(digits) | inexact;
}

template <Kind kind>
QUIVERION_ALWAYS_INLINE void ReadNumbers(std::size_t count, const Word* heads, const Word* tails, double* values,
                                         Word* refused) {
  for (std::size_t k = 0; k < count; ++k) refused[k] = ReadNumber<kind>(heads[k], tails[k], values[k]);
}

QUIVERION_MULTI_TARGET_CALL(ReadUsual,
                            (std::size_t count, const Word* heads, const Word* tails, double* values, Word* refused),
                            (count, heads, tails, values, refused),
                            ReadNumbers<Kind::usual>(count, heads, tails, values, refused))

QUIVERION_MULTI_TARGET_CALL(ReadWide,
                            (std::size_t count, const Word* heads, const Word* tails, double* values, Word* refused),
                            (count, heads, tails, values, refused),
                            ReadNumbers<Kind::wide>(count, heads, tails, values, refused))

QUIVERION_MULTI_TARGET_CALL(ReadScientific,
                            (std::size_t count, const Word* heads, const Word* tails, double* values, Word* refused),
                            (count, heads, tails, values, refused),
                            ReadNumbers<Kind::scientific>(count, heads, tails, values, refused))

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

std::size_t DatLines::Take(std::string_view text) {
  if (chunk_ == nullptr || !HasLine(text.data())) {
    FindEnds(text.data(), stops_.data(), separators_.data(), columnEnds_.data());
    nextStop_ = 0;
    chunk_ = text.data();
  }
  const auto begin = static_cast<std::size_t>(text.data() - chunk_);
  const std::size_t end = CutLines(begin, begin + text.size());
  ReadVelocities();
  return end - begin;
}

// The numbers of a file are mostly of one kind: the first ones decide how the rest is read.
void DatLines::ReadVelocities() {
  const std::size_t count = 2 * count_;
  const std::size_t sample = std::min<std::size_t>(count, 16);
  using Reader = void (*)(std::size_t, const Word*, const Word*, double*, Word*);
  const auto read = [&](Reader reader, std::size_t first, std::size_t end) {
    reader(end - first, heads_.data() + first, tails_.data() + first, values_.data() + first, refused_.data() + first);
  };
  Reader best = nullptr;
  std::ptrdiff_t bestCount = 0;
  for (const Reader reader : {ReadUsual, ReadWide, ReadScientific}) {
    read(reader, 0, sample);
    const std::ptrdiff_t known =
        std::count(refused_.begin(), refused_.begin() + static_cast<std::ptrdiff_t>(sample), 0);
    if (known > bestCount) {
      best = reader;
      bestCount = known;
    }
    if (known == static_cast<std::ptrdiff_t>(sample)) break;
  }
  if (best != nullptr) return read(best, 0, count);
  std::fill_n(refused_.begin(), count, Word{1});
}

// True if the chunk contains the end of the line that begins with `text`.
bool DatLines::HasLine(const char* text) {
  const auto begin = static_cast<std::size_t>(text - chunk_);
  if (begin >= kChunk) return false;
  while (stops_[nextStop_] < begin) ++nextStop_;
  return stops_[nextStop_] < kChunk;
}

double DatLines::ReadAlone(int line, std::size_t component) const {
  const std::size_t end = component == 0 ? EndsOf(line).u : EndsOf(line).v;
  if (end == kNoColumn) return 0.0;
  const std::size_t begin = BeginOfColumn(end);
  // The bytes after the column are not part of the number; with them it can be read eight characters at a time.
  return ReadNumberPrefix({chunk_ + begin, end - begin + 8}).value;
}

std::size_t DatLines::BeginOfColumn(std::size_t end) const {
  std::size_t width = 0;
  do {
    end -= width;
    const Word separators = Window(separators_.data(), 64 + end - kWindow) << (64 - kWindow);
    width = std::min(static_cast<std::size_t>(std::countl_zero(separators)), kWindow);
  } while (width == kWindow);
  return end - width;
}

// The end of the n-th column (`column`, from 1) from `at` on; kChunk if there are fewer.
std::size_t DatLines::EndOfColumn(std::size_t at, int column) const {
  for (; at < kChunk; at += kWindow) {
    for (Word ends = Window(columnEnds_.data(), at) & ~kUnspecified; ends != 0; ends &= ends - 1) {
      if (--column == 0) return at + static_cast<std::size_t>(std::countr_zero(ends));
    }
  }
  return kChunk;
}

// Read in place of a missing column.
constexpr std::string_view kMissing = "             0.0";

// Lines between `at` and `limit`. Returns the end of the last one.
QUIVERION_MULTI_TARGET std::size_t DatLines::CutLines(std::size_t at, std::size_t limit) {
  count_ = 0;
  while (count_ < kLines) {
    const std::size_t end = stops_[nextStop_];
    if (end >= std::min(limit, kChunk) || !CutLine(at, end)) break;
    const bool hasTwo = chunk_[end] == '\r' && chunk_[end + 1] == '\n';
    nextStop_ += hasTwo ? 2 : 1;
    at = end + (hasTwo ? 2 : 1);
  }
  return at;
}

// Mostly the first two columns lie within one word, and the next six within another.
QUIVERION_ALWAYS_INLINE bool DatLines::CutLine(std::size_t at, std::size_t end) {
  if (chunk_[end] != '\r' && chunk_[end] != '\n') return false;
  Word columns = Window(columnEnds_.data(), at) | kUnspecified;  // seven ends beyond the window at least
  std::size_t x = at + TakeFirst(columns);
  std::size_t y = at + TakeFirst(columns);
  if (y >= at + kWindow) {
    x = EndOfColumn(at, 1);
    y = EndOfColumn(x + 1, 1);
  }
  if (y > end) return false;
  const std::size_t rest = y + 1;
  columns = Window(columnEnds_.data(), rest) | kUnspecified;
  for (int column = 3; column <= 6; ++column) columns &= columns - 1;
  std::size_t u = rest + TakeFirst(columns);
  std::size_t v = rest + TakeFirst(columns);
  if (v >= rest + kWindow) {
    u = EndOfColumn(rest, 5);
    v = EndOfColumn(u + 1, 1);
  }
  ends_[count_] = {static_cast<std::uint16_t>(x), static_cast<std::uint16_t>(y), static_cast<std::uint16_t>(u),
                   static_cast<std::uint16_t>(v)};
  const char* uEnd = chunk_ + u;
  const char* vEnd = chunk_ + v;
  if (v > end) {
    vEnd = kMissing.data() + kMissing.size();
    ends_[count_].v = kNoColumn;
    if (u > end) {
      uEnd = vEnd;
      ends_[count_].u = kNoColumn;
    }
  }
  heads_[2 * count_] = Load(uEnd - 16);
  tails_[2 * count_] = Load(uEnd - 8);
  heads_[2 * count_ + 1] = Load(vEnd - 16);
  tails_[2 * count_ + 1] = Load(vEnd - 8);
  ++count_;
  return true;
}

}  // namespace quiverion
