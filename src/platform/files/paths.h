#pragma once

#include <string>
#include <string_view>

/// Both "\" and "/" separate path parts, on every system: macros and collections move between machines. Paths
/// of macros get the system's separators when they are read; the file layer converts every path when it opens it.
namespace quiverion {

/// The separator that the program itself adds to paths.
#ifdef _WIN32
inline constexpr char kPathSeparator = '\\';
#else
inline constexpr char kPathSeparator = '/';
#endif

constexpr bool IsPathSeparator(char c) {
  return c == '\\' || c == '/';
}

/// The part after the last separator (the whole path if there is none).
std::string_view FileNameOf(std::string_view path);

/// The part before the last separator (empty if there is none).
std::string_view DirectoryOf(std::string_view path);

/// The part up to and including the last separator (empty if there is none).
std::string DirectoryPrefixOf(std::string_view path);

/// The file name without its last "." and what follows (the whole name if there is none).
std::string_view BaseNameOf(std::string_view fileName);

/// What follows the last "." of a file name, ASCII letters in upper case (the whole name if there is no ".").
std::string ExtensionOf(std::string_view fileName);

/// True if a part of the path may lead to the parent directory: it consists of points and blanks only, with at least
/// two points. Some systems drop blanks and points at the end of a part.
bool LeadsUpwards(std::string_view path);

/// `directory` with the system's separator appended, unless it already ends in a separator.
std::string WithSeparator(std::string directory);

/// A path from a macro, which may come from another system: every separator becomes the system's, for the file and the
/// log alike.
std::string WithOwnSeparators(std::string path);

/// A path that was typed here: on Windows every separator is "\". Elsewhere "\" may be a character of a name, and
/// stays.
std::string TypedPath(std::string path);

}  // namespace quiverion
