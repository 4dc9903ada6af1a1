#include <algorithm>
#include <array>

#include "macro/run_table.h"
#include "platform/text/numbers.h"

namespace quiverion {
namespace {

constexpr std::array<std::string_view, kTableColumns> kCaptions = {
    "Datei",          "Ergebnis",  "Fehler",  "Erste Meldung", "Gültig vorher",
    "Gültig nachher", "Verworfen", "Ergänzt", "Wirbel",        "Sekunden"};

std::string NumberText(const std::optional<std::int64_t>& number) {
  return number ? std::to_string(*number) : std::string();
}

void AppendQuoted(std::string& line, std::string_view cell) {
  if (cell.find_first_of(";\"\r\n") == std::string_view::npos) {
    line.append(cell);
    return;
  }
  line.push_back('"');
  for (const char c : cell) line.append(c == '"' ? 2 : 1, c);
  line.push_back('"');
}

}  // namespace

std::span<const std::string_view> TableCaptions() {
  return kCaptions;
}

std::string TableCell(const FileRow& row, std::size_t column, char decimalSeparator) {
  const bool counted = row.validBefore.has_value();
  switch (column) {
    case 0:
      return row.name;
    case 1:
      return std::string(WordOf(row.result));
    case 2:
      return row.result == FileResult::notRun ? std::string() : std::to_string(row.errors);
    case 3:
      return row.message;
    case 4:
      return NumberText(row.validBefore);
    case 5:
      return NumberText(row.validAfter);
    case 6:
      return counted ? std::to_string(row.rejected) : std::string();
    case 7:
      return counted ? std::to_string(row.filled) : std::string();
    case 8:
      return NumberText(row.vortices);
    default:
      break;
  }
  if (row.result == FileResult::notRun) return {};
  return FormatNumber(static_cast<double>(RoundToInt32(row.seconds * 1000.0)) / 1000.0, decimalSeparator);
}

std::string ErrorCountText(std::span<const FileRow> rows) {
  return std::to_string(rows.size()) + (rows.size() == 1 ? " Datei, " : " Dateien, ") +
         std::to_string(std::ranges::count_if(rows, &FileRow::HasErrors)) + " mit Fehlern";
}

void WriteTable(std::span<const FileRow> rows, char decimalSeparator,
                const std::function<void(std::string_view)>& write) {
  constexpr std::size_t block = 64 * 1024;
  std::string text = "\xEF\xBB\xBF";
  const auto append = [&](std::size_t column, std::string_view cell) {
    AppendQuoted(text, cell);
    text.append(column + 1 < kTableColumns ? ";" : "\r\n");
  };
  for (std::size_t k = 0; k < kTableColumns; ++k) append(k, kCaptions[k]);
  for (const FileRow& row : rows) {
    for (std::size_t k = 0; k < kTableColumns; ++k) append(k, TableCell(row, k, decimalSeparator));
    if (text.size() < block) continue;
    write(text);
    text.clear();
  }
  write(text);
}

}  // namespace quiverion
