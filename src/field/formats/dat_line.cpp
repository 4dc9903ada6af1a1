#include "field/formats/dat_line.h"

#include <algorithm>
#include <bit>

#include "platform/numeric/multi_target.h"
#include "platform/text/byte_words.h"
#include "platform/text/numbers.h"

namespace quiverion {
namespace {

using words::Load;
using words::Word;

// One bit for each of the characters that `isMeant` holds for, 64 to a word. The comparison becomes vector
// instructions; eight of its bytes at a time become bits.
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

// Stops end a field, or a line of the usual shape (control characters); separators end a column.
QUIVERION_ALWAYS_INLINE void FindBothEnds(const char* text, Word* separators, Word* stops) {
  FindCharacters<DatLines::kChunk>(text, stops, [](unsigned char c) { return (c < ' ') | (c == ','); });
  FindCharacters<DatLines::kChunk>(text, separators, [](unsigned char c) { return (c <= ' ') | (c == ','); });
}

QUIVERION_MULTI_TARGET_CALL(FindEnds, (const char* text, Word* separators, Word* stops), (text, separators, stops),
                            FindBothEnds(text, separators, stops))

// The bits from position `at`: kWindow of them, or some more.
constexpr int kWindow = 57;
QUIVERION_ALWAYS_INLINE Word Window(const Word* bits, std::size_t at) {
  return Load(reinterpret_cast<const char*>(bits) + at / 8) >> at % 8;
}

// The last `count` (1 to 8) characters that end at `end`, in the highest bytes.
QUIVERION_ALWAYS_INLINE Word LastCharacters(const char* end, std::size_t count) {
  return Load(end - count) << (64 - 8 * count);
}

// The number of eight digits with the first in the lowest byte, each as value 0 to 9.
QUIVERION_ALWAYS_INLINE Word EightDigits(Word word) {
  word = word * 10 + (word >> 8);  // pairs
  return ((word & 0x000000FF000000FF) * 0x000F424000000064 + (word >> 16 & 0x000000FF000000FF) * 0x0000271000000001) >>
         32;
}

// Ten to the power of `exponent` (0 to 7), exactly. A table would have to be gathered from, which is slower.
QUIVERION_ALWAYS_INLINE double PowerOfTen(Word exponent) {
  return ((exponent & 1) != 0 ? 1E1 : 1E0) * ((exponent & 2) != 0 ? 1E2 : 1E0) * ((exponent & 4) != 0 ? 1E4 : 1E0);
}

// How many bytes above the highest one meant: 7 where none is.
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

// A number that ends with the sixteen characters `head`, `tail`, in front of it a blank. Nonzero where it is of another
// shape than DatLines::IsPlain says. Branches would stand in the way of vector instructions.
QUIVERION_ALWAYS_INLINE Word ReadNumber(Word head, Word tail, double& value) {
  const Word places = BytesAbove(words::BytesBelow<1>(tail ^ words::kOnes * '.'));
  const Word placeDigits = HighestBytes(tail ^ words::kOnes * '0', places);
  const Word beforePoint = tail << 8 * places << 8 | head >> (56 - 8 * places);
  const Word whole = BytesAbove(words::BytesFrom<10>(beforePoint ^ words::kOnes * '0'));
  const Word wholeDigits = HighestBytes(beforePoint ^ words::kOnes * '0', whole);
  const Word beforeDigits = beforePoint << 8 * whole;
  const Word negative = ((beforeDigits >> 56 ^ '-') - 1) >> 63;
  const Word refused = (ByteBelow(tail, places) ^ '.') | words::BytesFrom<10>(placeDigits) |
                       (whole + places - 1) >> 63 | (ByteBelow(beforeDigits, negative) ^ ' ');

  // At most fourteen digits: all of this is exact up to the division, which rounds once, to the correctly rounded
  // value.
  const auto wholeValue = static_cast<double>(static_cast<std::int64_t>(EightDigits(wholeDigits)));
  const auto placesValue = static_cast<double>(static_cast<std::int64_t>(EightDigits(placeDigits)));
  const double power = PowerOfTen(places);
  const double magnitude = (wholeValue * power + placesValue) / power;
  value = std::bit_cast<double>(std::bit_cast<Word>(magnitude) | negative << 63);
  return refused;
}

QUIVERION_ALWAYS_INLINE void ReadNumbers(std::size_t count, const Word* heads, const Word* tails, double* values,
                                         Word* refused) {
  for (std::size_t k = 0; k < count; ++k) refused[k] = ReadNumber(heads[k], tails[k], values[k]);
}

QUIVERION_MULTI_TARGET_CALL(ReadAll,
                            (std::size_t count, const Word* heads, const Word* tails, double* values, Word* refused),
                            (count, heads, tails, values, refused), ReadNumbers(count, heads, tails, values, refused))

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
  constexpr std::size_t scannedLines = kChunk - kLongestLine;
  if (chunk_ == nullptr || static_cast<std::size_t>(text.data() - chunk_) >= scannedLines) {
    FindEnds(text.data(), separators_.data(), stops_.data());
    chunk_ = text.data();
  }
  const auto begin = static_cast<std::size_t>(text.data() - chunk_);
  const std::size_t end = CutSimilarLines(begin, std::min(begin + text.size(), scannedLines));
  ReadAll(2 * static_cast<std::size_t>(count_), heads_.data(), tails_.data(), values_.data(), refused_.data());
  return end - begin;
}

// Up to the next stop, or the length of two windows.
std::size_t DatLines::LengthOfLine(std::size_t at) const {
  const Word near = Window(stops_.data(), at);
  if (near != 0) return static_cast<std::size_t>(std::countr_zero(near));
  return kWindow + static_cast<std::size_t>(std::countr_zero(Window(stops_.data(), at + kWindow)));
}

// Takes the first position out of a set. 64 where it is empty.
QUIVERION_ALWAYS_INLINE std::size_t TakeFirst(Word& positions) {
  const int first = std::countr_zero(positions);
  positions &= positions - 1;
  return static_cast<std::size_t>(first);
}

// Lines are found one after the other, so the way to the next line is kept short: its end is looked for where the first
// line's length lets expect it, without a look at what is between. The first two columns lie within one window, and all
// that is of interest behind them within the next.
QUIVERION_MULTI_TARGET std::size_t DatLines::CutSimilarLines(std::size_t at, std::size_t end) {
  constexpr std::size_t margin = 32;
  const std::size_t firstLength = LengthOfLine(at);
  const std::size_t skipped = firstLength < margin ? 0 : std::min<std::size_t>(firstLength - margin, kWindow);
  std::size_t count = 0;
  while (at < end) {
    const char* const line = chunk_ + at;
    const Word stops = Window(stops_.data(), at + skipped);
    const Word earlierStops = Window(stops_.data(), at) & ~(~Word{0} << skipped);
    const std::size_t lineEnd = skipped + static_cast<std::size_t>(std::countr_zero(stops));
    if (stops == 0 || earlierStops != 0 || (line[lineEnd] != '\r' && line[lineEnd] != '\n')) break;

    const Word separators = Window(separators_.data(), at);
    Word starts = ~separators & (separators << 1 | 1);
    Word ends = separators & ~(separators << 1 | 1);  // behind something else
    const std::size_t xStart = TakeFirst(starts);
    const std::size_t xEnd = TakeFirst(ends);
    const std::size_t yStart = TakeFirst(starts);
    const std::size_t yEnd = TakeFirst(ends);
    if (yEnd > 63) break;
    const Word restSeparators = Window(separators_.data(), at + yEnd);
    Word restEnds = restSeparators & ~(restSeparators << 1 | 1);
    for (int column = 3; column <= 6; ++column) restEnds &= restEnds - 1;
    if (restEnds == 0) break;
    const std::size_t uEnd = yEnd + TakeFirst(restEnds);
    if (restEnds == 0) break;
    const std::size_t vEnd = yEnd + TakeFirst(restEnds);
    if (vEnd > lineEnd || xEnd - xStart > 8 || yEnd - yStart > 8 || line[xStart] == '"') break;

    begins_[count] = line;
    x_[count] = LastCharacters(line + xEnd, xEnd - xStart);
    y_[count] = LastCharacters(line + yEnd, yEnd - yStart);
    heads_[2 * count] = Load(line + uEnd - 16);
    tails_[2 * count] = Load(line + uEnd - 8);
    heads_[2 * count + 1] = Load(line + vEnd - 16);
    tails_[2 * count + 1] = Load(line + vEnd - 8);
    ++count;
    at += lineEnd + 1;
    if (line[lineEnd] == '\r' && line[lineEnd + 1] == '\n') ++at;
  }
  count_ = static_cast<int>(count);
  return at;
}

}  // namespace quiverion
