#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Texts are UTF-8 in memory and Windows-1252 in files. "Characters" are counted as in Windows-1252, one byte each.
/// Nothing here depends on a locale. A byte that is not valid UTF-8 counts as one character.
namespace quiverion {

/// Windows-1252 bytes as UTF-8. The five undefined bytes 81 8D 8F 90 9D become U+0081 ..., so that every
/// text read from a file is written back byte for byte.
std::string Utf8FromWindows1252(std::string_view bytes);

struct Windows1252Text {
  std::string bytes;
  bool complete = true;  // false: a character that is not in Windows-1252 was written as "?"
};

/// UTF-8 as Windows-1252 bytes, one per character.
Windows1252Text Windows1252FromUtf8(std::string_view text);

/// The Windows-1252 byte of a code point, -1 if there is none.
int Windows1252Byte(char32_t codePoint);

/// True if every character of the UTF-8 text is in Windows-1252.
bool FitsWindows1252(std::string_view text);

/// Number of characters of a UTF-8 text.
std::size_t CharacterCount(std::string_view text);

/// Removes the first character from `text` and returns its code point; a byte that is not valid UTF-8 is U+FFFD.
char32_t TakeCodePoint(std::string_view& text);

/// Appends a code point as UTF-8.
void AppendUtf8(std::string& text, char32_t codePoint);

/// The text without blanks (U+0020) at both ends.
std::string_view TrimBlanks(std::string_view text);

/// Replaces control characters from `start` on, except those in `kept`, by "?": the contents of a file must not control
/// a terminal.
void ReplaceControls(std::string& text, std::string_view kept, std::size_t start = 0);

/// ASCII letters in upper case, everything else as it is.
std::string AsciiUpper(std::string_view text);

/// True if both are equal without regard to the case of ASCII letters.
bool EqualsIgnoringCase(std::string_view a, std::string_view b);

/// Order of file lists: by name without regard to case, then by code points. True if `a` comes first.
bool FileNameLess(std::string_view a, std::string_view b);

}  // namespace quiverion
