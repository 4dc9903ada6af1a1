#pragma once

#include <span>
#include <string>
#include <string_view>

#include "exchange/foreign_field.h"

namespace quiverion::exchange {

/// What a reader gets: a file opened at its beginning.
struct ForeignSource {
  InputFile& file;
  const ImportOptions& options;
  std::string_view format;  // the name of its row
};

/// A format of another program.
struct ForeignFormat {
  std::string_view name;  // for the option --format
  std::string_view title;
  bool (*recognises)(std::string_view head);  // the first kHeadSize bytes of a file, without a byte order mark
  ForeignFile (*read)(const ForeignSource& source);
  bool isForeign = true;  // false: a format that the program loads by itself
};

inline constexpr std::size_t kHeadSize = 64 * 1024;

/// One row per format, in the order in which they are tried.
std::span<const ForeignFormat> ForeignFormats();

/// The row with this name; null if there is none.
const ForeignFormat* FindFormat(std::string_view name);

/// The format of an open file by its content; null if it is not known. The next read begins at the first byte.
/// Throws SystemError.
const ForeignFormat* RecogniseFormat(InputFile& file);

/// Reads all fields of a file of another program. `path` is for the info text. Throws FormatError, with the line or the
/// byte in its message, if the file is not known or damaged, and SystemError. Memory is limited by the size of the file
/// or by what its compressed data really contain.
ForeignFile ReadForeignFile(InputFile& file, const std::string& path, const ImportOptions& options);

}  // namespace quiverion::exchange
