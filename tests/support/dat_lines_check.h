#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "field/formats/dat_line.h"
#include "messages/system_error.h"
#include "platform/text/numbers.h"

namespace quiverion::test {

/// A text with exactly the bytes around it that may be read.
class PaddedText {
 public:
  explicit PaddedText(std::string_view text)
      : size_(text.size()), bytes_(new char[DatLines::kBefore + size_ + DatLines::kAfter]()) {
    std::copy(text.begin(), text.end(), bytes_.get() + DatLines::kBefore);
  }
  std::string_view Get() const { return {bytes_.get() + DatLines::kBefore, size_}; }

 private:
  std::size_t size_;
  std::unique_ptr<char[]> bytes_;
};

/// The bits of four numbers; nothing where reading them is an error.
template <class Read>
std::optional<std::array<std::uint64_t, 4>> BitsOrError(Read read) {
  try {
    return std::bit_cast<std::array<std::uint64_t, 4>>(DatVector{read()});
  } catch (const SystemError&) {
    return std::nullopt;
  }
}

struct DatLinesCheck {
  int taken = 0;
  std::string wrong;  ///< the first line that is none, or has other numbers than the definition
};

/// Takes all lines off a text; what is refused, up to a separator of fields or a quotation mark, is left out.
inline DatLinesCheck CheckDatLines(std::string_view text) {
  const auto lines = std::make_unique<DatLines>();
  const PaddedText padded(text);
  DatLinesCheck check;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = at + lines->Take(padded.Get().substr(at));
    for (int k = 0; k < lines->Count(); ++k, ++check.taken) {
      const std::string_view rest = text.substr(at);
      const std::string_view line = rest.substr(0, rest.find_first_of(",\r\n\""));
      const std::string_view behind = rest.substr(line.size());
      const auto take = [&]() -> DatVector {
        return {ReadNumberPrefix(lines->X(k)).value, ReadNumberPrefix(lines->Y(k)).value, lines->U(k), lines->V(k)};
      };
      if ((!behind.starts_with('\r') && !behind.starts_with('\n')) ||
          BitsOrError(take) != BitsOrError([&] { return ParseDatLine(line); }) ||
          lines->X(k).data() + lines->X(k).size() != lines->XEnd(k) ||
          lines->Y(k).data() + lines->Y(k).size() != lines->YEnd(k)) {
        check.wrong = rest.substr(0, 200);
        return check;
      }
      at += line.size() + (behind.starts_with("\r\n") ? 2 : 1);
    }
    if (at != end) {
      check.wrong = "bytes taken before: " + std::string(text.substr(at, 200));
      return check;
    }
    if (lines->Count() == 0) at = std::min(text.find_first_of(",\r\n\"", at), text.size() - 1) + 1;
  }
  return check;
}

/// A tab behind the last column of every line: it leaves the line to the definition and changes nothing.
inline std::string WithTabs(std::string_view lines) {
  std::string text;
  for (std::size_t k = 0; k < lines.size(); ++k) {
    if (lines[k] == '\r' || (lines[k] == '\n' && (k == 0 || lines[k - 1] != '\r'))) text += '\t';
    text += lines[k];
  }
  return text;
}

}  // namespace quiverion::test
