#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

/// Eight characters at a time in a 64-bit word, the first in the lowest byte. In results, the high bit of each matching
/// byte is set.
namespace quiverion::words {

static_assert(std::endian::native == std::endian::little, "the first character is the lowest byte");

using Word = std::uint64_t;

inline constexpr Word kOnes = 0x0101010101010101;
inline constexpr Word kHighs = 0x8080808080808080;

/// Eight bytes from `text`, which must be readable.
inline Word Load(const void* text) {
  Word word = 0;
  std::memcpy(&word, text, sizeof word);
  return word;
}

/// Packs eight bytes that are 0 or 1 into the bits of one byte, the first byte as the lowest bit.
constexpr unsigned char GatherBits(Word word) {
  return static_cast<unsigned char>(word * 0x0102040810204080 >> 56);
}

/// Bytes below `limit` (at most 0x80), exactly.
template <Word limit>
constexpr Word BytesBelow(Word word) {
  return ~(((word & ~kHighs) + kOnes * (0x80 - limit)) | word) & kHighs;
}

/// Bytes that are `limit` (at most 0x80) or more, exactly.
template <Word limit>
constexpr Word BytesFrom(Word word) {
  return BytesBelow<limit>(word) ^ kHighs;
}

/// Bytes equal to `character`. Only the first match is exact; bytes after it may match by mistake.
template <Word character>
constexpr Word FirstBytesEqual(Word word) {
  const Word difference = word ^ (kOnes * character);
  return (difference - kOnes) & ~difference & kHighs;
}

/// The number of eight digits, each as value 0 to 9.
constexpr Word NumberOfEightDigits(Word word) {
  word = word * 10 + (word >> 8);  // pairs
  return ((word & 0x000000FF000000FF) * 0x000F424000000064 + (word >> 16 & 0x000000FF000000FF) * 0x0000271000000001) >>
         32;
}

}  // namespace quiverion::words
