#include "platform/text/text.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace quiverion {
namespace {

// Code points of the bytes 80 to 9F; every other byte is its own code point.
constexpr std::array<char16_t, 32> kWindows1252High = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                       0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                       0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                       0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr char32_t kReplacement = 0xFFFD;

bool IsContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

char32_t Bits(char byte, unsigned mask) {
  return static_cast<unsigned char>(byte) & mask;
}

// Length of the sequence that begins with the lead byte; 0 if it is not a lead byte.
std::size_t SequenceLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead < 0xE0) return 2;
  if (lead >= 0xE0 && lead < 0xF0) return 3;
  if (lead >= 0xF0 && lead < 0xF5) return 4;
  return 0;
}

char32_t Decode(std::string_view sequence) {
  switch (sequence.size()) {
    case 2:
      return Bits(sequence[0], 0x1F) << 6 | Bits(sequence[1], 0x3F);
    case 3:
      return Bits(sequence[0], 0x0F) << 12 | Bits(sequence[1], 0x3F) << 6 | Bits(sequence[2], 0x3F);
    default:
      return Bits(sequence[0], 0x07) << 18 | Bits(sequence[1], 0x3F) << 12 | Bits(sequence[2], 0x3F) << 6 |
             Bits(sequence[3], 0x3F);
  }
}

bool IsValidDecoding(char32_t codePoint, std::size_t length) {
  if (length == 3) return codePoint >= 0x800 && !(codePoint >= 0xD800 && codePoint < 0xE000);
  return length != 4 || (codePoint >= 0x10000 && codePoint < 0x110000);
}

// Simple lower case of the letters in Windows-1252 only.
char32_t LowerCase(char32_t c) {
  if ((c >= U'A' && c <= U'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7)) return c + 0x20;
  if (c == 0x0152 || c == 0x0160 || c == 0x017D) return c + 1;
  return c == 0x0178 ? 0xFF : c;
}

char AsciiUpperCase(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

char32_t TakeCodePoint(std::string_view& text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t length = SequenceLength(lead);
  char32_t codePoint = length == 1 ? lead : kReplacement;
  std::size_t taken = 1;
  if (length > 1 && text.size() >= length &&
      std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(length), IsContinuation)) {
    const char32_t decoded = Decode(text.substr(0, length));
    if (IsValidDecoding(decoded, length)) {
      codePoint = decoded;
      taken = length;
    }
  }
  text.remove_prefix(taken);
  return codePoint;
}

int Windows1252Byte(char32_t codePoint) {
  if (codePoint < 0x80 || (codePoint >= 0xA0 && codePoint < 0x100)) return static_cast<int>(codePoint);
  for (std::size_t k = 0; k < kWindows1252High.size(); ++k) {
    if (kWindows1252High[k] == codePoint) return static_cast<int>(0x80 + k);
  }
  return -1;
}

void AppendUtf8(std::string& text, char32_t c) {
  const auto put = [&text](char32_t byte) { text.push_back(static_cast<char>(static_cast<unsigned char>(byte))); };
  if (c < 0x80) {
    put(c);
  } else if (c < 0x800) {
    put(0xC0 | c >> 6);
    put(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    put(0xE0 | c >> 12);
    put(0x80 | (c >> 6 & 0x3F));
    put(0x80 | (c & 0x3F));
  } else {
    put(0xF0 | c >> 18);
    put(0x80 | (c >> 12 & 0x3F));
    put(0x80 | (c >> 6 & 0x3F));
    put(0x80 | (c & 0x3F));
  }
}

std::string Utf8FromWindows1252(std::string_view bytes) {
  if (IsAscii(bytes)) return std::string(bytes);
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 8);
  for (const char raw : bytes) {
    const auto byte = static_cast<unsigned char>(raw);
    AppendUtf8(text, byte >= 0x80 && byte < 0xA0 ? kWindows1252High[byte - 0x80u] : byte);
  }
  return text;
}

Windows1252Text Windows1252FromUtf8(std::string_view text) {
  Windows1252Text result;
  if (IsAscii(text)) {
    result.bytes = text;
    return result;
  }
  result.bytes.reserve(text.size());
  while (!text.empty()) {
    const int byte = Windows1252Byte(TakeCodePoint(text));
    result.complete = result.complete && byte >= 0;
    result.bytes.push_back(byte < 0 ? '?' : static_cast<char>(static_cast<unsigned char>(byte)));
  }
  return result;
}

bool FitsWindows1252(std::string_view text) {
  return Windows1252FromUtf8(text).complete;
}

std::size_t CharacterCount(std::string_view text) {
  std::size_t count = 0;
  for (; !text.empty(); ++count) TakeCodePoint(text);
  return count;
}

std::string_view TrimBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

void ReplaceControls(std::string& text, std::string_view kept, std::size_t start) {
  const auto isControl = [kept](char c) {
    return (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) && kept.find(c) == std::string_view::npos;
  };
  std::replace_if(text.begin() + static_cast<std::ptrdiff_t>(start), text.end(), isControl, '?');
  // U+0080 to U+009F are control characters, too.
  for (std::size_t at = text.find('\xC2', start); at != std::string::npos; at = text.find('\xC2', at + 1)) {
    const bool control = at + 1 < text.size() && (static_cast<unsigned char>(text[at + 1]) & 0xE0) == 0x80;
    if (control) text.replace(at, 2, "?");
  }
}

std::string AsciiUpper(std::string_view text) {
  std::string upper(text);
  std::transform(upper.begin(), upper.end(), upper.begin(), AsciiUpperCase);
  return upper;
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return AsciiUpperCase(x) == AsciiUpperCase(y); });
}

bool FileNameLess(std::string_view a, std::string_view b) {
  std::string_view restA = a;
  std::string_view restB = b;
  while (!restA.empty() && !restB.empty()) {
    const char32_t x = LowerCase(TakeCodePoint(restA));
    const char32_t y = LowerCase(TakeCodePoint(restB));
    if (x != y) return x < y;
  }
  if (restA.empty() != restB.empty()) return restA.empty();
  return a < b;  // UTF-8 bytes have the order of the code points
}

}  // namespace quiverion
