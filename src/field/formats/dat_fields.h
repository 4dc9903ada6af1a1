#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "field/formats/dat_line.h"
#include "platform/files/file_system.h"

namespace quiverion {

/// The whole text of a DAT file, cut into fields one after the other. A field begins after leading blanks and ends at
/// the next comma or line end (CR LF, LF or CR); one that begins with a double quote ends at the closing quote.
class DatFields {
 public:
  /// Bytes after `Rest` that may be read (zeros), because parsers look at a whole chunk of text at once.
  static constexpr std::size_t kPadding = DatLines::kAfter;

  /// Reads the file. Throws SystemError.
  explicit DatFields(InputFile& file);

  bool AtEnd() const { return at_ == end_; }

  /// The next field. Throws SystemError 62 at the end of the file.
  std::string_view Next();

  /// The text that has not been taken yet.
  std::string_view Rest() const { return {text_.get() + at_, end_ - at_}; }

  /// Takes the next `count` bytes, which end after a line end or at the end of the file.
  void Take(std::size_t count) { at_ += count; }

 private:
  std::string_view NextQuoted();
  void TakeSeparator();

  std::unique_ptr<char[]> text_;
  std::size_t at_ = 0;
  std::size_t end_ = 0;
};

}  // namespace quiverion
