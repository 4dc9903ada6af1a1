// Text files of one table: OpenPIV, JPIV, CSV with a line of names.
#include <algorithm>

#include "exchange/readers.h"
#include "exchange/text_table.h"
#include "messages/failure.h"
#include "platform/text/text.h"

namespace quiverion::exchange {
namespace {

constexpr std::size_t kMostUnnamed = 6;

std::size_t NumbersIn(std::string_view head, std::string_view line) {
  if (line.empty()) return 0;
  const auto rest = static_cast<std::size_t>(head.data() + head.size() - line.data());
  return CountNumbers(line, StyleOf({line.data(), rest}), kMostUnnamed + 1);
}

bool IsNames(std::string_view line) {
  return line.size() < 10000 && HasVectors(ColumnsOf(line));
}

struct Table {
  std::vector<Column> columns;
  StatusDialect dialect;
  FileFacts facts;
};

// Everything after the line of names; `at` is where the numbers begin.
ForeignFile ReadTable(TextFile& file, const char* at, Table& table, const ImportOptions& options) {
  const NumberStyle style = StyleOf({at, static_cast<std::size_t>(file.End() - at)});
  if (style.decimalComma) file.ReplaceDecimalCommas(at);
  TableReader reader(file, table.columns, style.separator);
  TablePoints points;
  const char* const end = reader.Read(at, 0, points);
  if (end != file.End()) file.RefuseAt(end, "hier müssen Zahlen stehen");
  TakeUnits(table.columns, table.facts);
  table.dialect.column5 = options.column5;
  table.dialect.maskIsRejected = table.columns.size() == 5;
  if (style.decimalComma) table.facts.dialect += " mit Dezimalkomma";
  std::vector<RawField> raw;
  raw.push_back(FieldOfTable(file, table.columns, points, {}, table.dialect, table.facts));
  return BuildFields(std::move(raw), table.facts, options);
}

// Skips comments and empty lines in front of the first line of numbers; `names` gets the last comment with names.
const char* BeforeNumbers(const TextFile& file, std::string_view& names) {
  const char* at = file.Begin();
  for (; at != file.End(); at = file.AfterLine(at)) {
    const std::string_view line = file.LineAt(at);
    const char* const text = SkipBlanks(at);
    if (text == file.End() || IsLineEnd(*text)) continue;
    if (*text != '#') break;
    if (IsNames(line)) names = line;
  }
  return at;
}

std::vector<Column> ColumnsOfNumbers(const TextFile& file, const char* at) {
  const NumberStyle style = StyleOf({at, static_cast<std::size_t>(file.End() - at)});
  const std::size_t count = CountNumbers(file.LineAt(at), style, kMostUnnamed + 1);
  if (count < 4 || count > kMostUnnamed) {
    file.RefuseAt(at, "vier bis sechs Zahlen erwartet (x, y, u, v)");
  }
  if (count == kMostUnnamed) {
    auto columns = UnnamedColumns(count, {Role::flags, Role::mask});
    columns[4].name = "5";
    columns[5].name = "6";
    return columns;
  }
  return UnnamedColumns(count, {Role::column5});
}

}  // namespace

std::string_view FirstLine(std::string_view head) {
  for (std::size_t at = 0; at < head.size();) {
    const std::size_t end = std::min(head.find_first_of("\r\n", at), head.size());
    if (!TrimBlanks(head.substr(at, end - at)).empty()) return head.substr(at, end - at);
    at = end + 1;
  }
  return {};
}

bool IsOpenPiv(std::string_view head) {
  std::string_view line = FirstLine(head);
  while (TrimBlanks(line).starts_with('#')) {
    if (IsNames(line)) return true;
    head.remove_prefix(static_cast<std::size_t>(line.data() + line.size() - head.data()));
    line = FirstLine(head);
  }
  const std::size_t count = NumbersIn(head, line);
  return count >= 4 && count <= kMostUnnamed;
}

ForeignFile ReadOpenPiv(const ForeignSource& source) {
  TextFile file(source.file);
  std::string_view names;
  const char* const at = BeforeNumbers(file, names);
  Table table;
  table.columns = names.empty() ? ColumnsOfNumbers(file, at) : ColumnsOf(names);
  table.facts.dialect = names.empty() ? "Zahlen ohne Kopf (OpenPIV oder JPIV)" : "OpenPIV";
  return ReadTable(file, at, table, source.options);
}

bool IsJpiv(std::string_view /*head*/) {
  return false;
}

ForeignFile ReadJpiv(const ForeignSource& source) {
  ImportOptions options = source.options;
  if (options.column5 == Column5::guessed) options.column5 = Column5::valid;
  TextFile file(source.file);
  std::string_view names;
  const char* const at = BeforeNumbers(file, names);
  Table table;
  table.columns = ColumnsOfNumbers(file, at);
  table.facts.dialect = "JPIV";
  return ReadTable(file, at, table, options);
}

bool IsCsv(std::string_view head) {
  return IsNames(FirstLine(head));
}

ForeignFile ReadCsv(const ForeignSource& source) {
  TextFile file(source.file);
  const char* at = file.Begin();
  while (at != file.End() && TrimBlanks(file.LineAt(at)).empty()) at = file.AfterLine(at);
  Table table;
  table.columns = ColumnsOf(file.LineAt(at));
  if (!HasVectors(table.columns)) file.RefuseAt(at, "die Namen von x, y, u und v fehlen");
  table.facts.dialect = "CSV";
  return ReadTable(file, file.AfterLine(at), table, source.options);
}

}  // namespace quiverion::exchange
