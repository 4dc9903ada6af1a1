#include "platform/text/decimal_digits.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>

#include "platform/text/byte_words.h"
#include "platform/text/wide_product.h"

namespace quiverion {
namespace {

using words::Word;

constexpr int kAllDigits = 15;

// In this range a number times the power of ten that leaves 15 digits before the point is an exact product of two
// 64-bit integers, shifted right by 1 to 62 bits.
constexpr int kSmallestExponent = -10;
constexpr double kPowersOfTen[] = {1E-10, 1E-9, 1E-8, 1E-7, 1E-6, 1E-5, 1E-4, 1E-3, 1E-2, 1E-1, 1E0,  1E1,  1E2,
                                   1E3,   1E4,  1E5,  1E6,  1E7,  1E8,  1E9,  1E10, 1E11, 1E12, 1E13, 1E14, 1E15};

constexpr std::array<std::uint64_t, 25> PowersOfFive() {
  std::array<std::uint64_t, 25> powers{1};
  for (std::size_t k = 1; k < powers.size(); ++k) powers[k] = 5 * powers[k - 1];
  return powers;
}
constexpr auto kPowersOfFive = PowersOfFive();

// The eight digits of a number below 10^8 as values 0 to 9, the first in the lowest byte. The number is split into two
// numbers of four digits, these into four of two digits, and these into digits. Each step handles all parts at once.
constexpr Word EightDigits(std::uint64_t value) {
  const Word fours = value / 10000 | value % 10000 << 32;
  const Word hundreds = (fours * 10486 >> 20) & 0x0000007F0000007F;
  const Word twos = hundreds | (fours - 100 * hundreds) << 16;
  const Word tens = (twos * 103 >> 10) & 0x000F000F000F000F;
  return tens | (twos - 10 * tens) << 8;
}

DecimalDigits FastDigits(double magnitude) {
  const auto bits = std::bit_cast<std::uint64_t>(magnitude);
  const int binaryExponent = static_cast<int>(bits >> 52) - 1023;
  // floor(log10(2^binaryExponent)); the number itself may have one more digit.
  int exponent = (binaryExponent * 1233) >> 12;
  // A power of ten that is not a double; the next smaller double rounds up to it anyway.
  if (magnitude >= kPowersOfTen[exponent + 1 - kSmallestExponent]) ++exponent;
  const int scale = kAllDigits - 1 - exponent;
  const std::uint64_t significand = (bits & ((std::uint64_t{1} << 52) - 1)) | std::uint64_t{1} << 52;
  const WideProduct product = Multiply(significand, kPowersOfFive[static_cast<std::size_t>(scale)]);
  const int shift = 52 - binaryExponent - scale;
  std::uint64_t number = product.high << (64 - shift) | product.low >> shift;
  const std::uint64_t rest = product.low << (64 - shift);  // the bits cut off, left-aligned
  constexpr std::uint64_t half = std::uint64_t{1} << 63;
  number += static_cast<std::uint64_t>(rest > half) | (static_cast<std::uint64_t>(rest == half) & number);
  constexpr std::uint64_t limit = 1000000000000000;
  if (number == limit) {
    number = limit / 10;
    ++exponent;
  }

  DecimalDigits result;
  result.exponent = exponent;
  const Word first = EightDigits(number / 10000000);
  const Word second = EightDigits(number % 10000000 * 10);
  constexpr Word zeros = words::kOnes * '0';
  const Word characters[] = {first | zeros, second | zeros, zeros, zeros};
  std::memcpy(result.digits.data(), characters, sizeof characters);
  const Word last = second != 0 ? second : first;
  result.count = (second != 0 ? 8 : 0) + (71 - std::countl_zero(last)) / 8;
  return result;
}

DecimalDigits LibraryDigits(double magnitude, int digits) {
  char text[32];
  char* const end = std::to_chars(text, text + sizeof text, magnitude, std::chars_format::scientific, digits - 1).ptr;
  char* const mark = std::find(text, end, 'e');
  DecimalDigits result;
  std::from_chars(mark + (mark[1] == '+' ? 2 : 1), end, result.exponent);
  result.digits.fill('0');
  char* const last = std::remove_copy(text, mark, result.digits.data(), '.');
  result.count = static_cast<int>(last - result.digits.data());
  while (result.count > 1 && result.digits[static_cast<std::size_t>(result.count - 1)] == '0') --result.count;
  return result;
}

}  // namespace

DecimalDigits DigitsOf(double magnitude, int digits) {
  const bool fast = digits == kAllDigits && magnitude >= 1E-10 && magnitude < 1E15;
  return fast ? FastDigits(magnitude) : LibraryDigits(magnitude, digits);
}

}  // namespace quiverion
