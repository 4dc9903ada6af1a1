#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "platform/files/file_system.h"

namespace quiverion::exchange {

/// True for "\n" and "\r".
constexpr bool IsLineEnd(char c) {
  return c == '\n' || c == '\r';
}

/// The whole content of a text file. Lines end with CR LF, LF or CR; a byte order mark is left out.
class TextFile {
 public:
  /// Reads the file. Throws SystemError.
  explicit TextFile(InputFile& file);

  const char* Begin() const { return begin_; }
  /// A zero byte is there, so that loops over characters end.
  const char* End() const { return end_; }

  /// The line that begins at `at`, without its end.
  std::string_view LineAt(const char* at) const;
  /// The beginning of the next line.
  const char* AfterLine(const char* at) const;

  /// False if the last line has no end, as in a file that was cut off.
  bool EndsWithLine() const { return begin_ == end_ || IsLineEnd(end_[-1]); }

  /// "Zeile 12".
  std::string PlaceOf(const char* at) const;
  /// Throws FormatError with the line.
  [[noreturn]] void RefuseAt(const char* at, const std::string& reason) const;

  /// Replaces commas by points from `at` on: decimal commas. Throws FormatError if there are points, too.
  void ReplaceDecimalCommas(const char* at);

 private:
  std::unique_ptr<char[]> text_;
  const char* begin_;
  const char* end_;
};

/// What separates numbers. Blanks and tabs may surround each.
enum class Separator { blanks, comma, semicolon };

struct NumberStyle {
  Separator separator = Separator::blanks;
  bool decimalComma = false;
};

/// The style of a table of numbers, from its first 50 lines (and from more if these have neither a point nor a comma).
NumberStyle StyleOf(std::string_view table);

constexpr bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

inline const char* SkipBlanks(const char* at) {
  while (IsBlank(*at)) ++at;
  return at;
}

/// A number in one of the forms that programs write besides plain decimals: "nan", "-inf", "1D+03", "1.#QNAN". Returns
/// its end, or null if there is no number at `at`. Text up to `end` may be read.
const char* ReadAnyNumber(const char* at, const char* end, double& value);

/// True for a character that may follow a number.
constexpr bool EndsNumber(char c) {
  return IsBlank(c) || IsLineEnd(c) || c == ',' || c == ';' || c == '\0';
}

/// How many numbers there are in a line; 0 if it contains anything else. Stops at `most`.
std::size_t CountNumbers(std::string_view line, const NumberStyle& style, std::size_t most);

}  // namespace quiverion::exchange
