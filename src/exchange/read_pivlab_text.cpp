#include <algorithm>

#include "exchange/readers.h"
#include "exchange/text_table.h"
#include "platform/text/text.h"

namespace quiverion::exchange {
namespace {

constexpr std::size_t kMostColumns = 20;

// Each part of the header may be missing: the line of the program, that of the frame, that of the names.
struct Header {
  std::vector<Column> columns;
  const char* numbers = nullptr;
};

Header ReadHeader(const TextFile& file) {
  Header header;
  const char* at = file.Begin();
  for (; at != file.End(); at = file.AfterLine(at)) {
    const std::string_view line = TrimBlanks(file.LineAt(at));
    if (line.empty() || line.starts_with("PIVlab") || line.starts_with("FRAME:")) continue;
    const char* const text = SkipBlanks(at);
    double value = 0.0;
    if (ReadAnyNumber(text, file.End(), value) != nullptr) break;
    header.columns = ColumnsOf(line);
    if (!HasVectors(header.columns)) file.RefuseAt(at, "die Namen von x, y, u und v fehlen");
  }
  header.numbers = at;
  return header;
}

// Without names: five columns or more have the type of the vector in the fifth. In old files it is the vorticity.
bool IsTypeVector(const Values& values) {
  return std::ranges::all_of(values, [](double value) { return value == 0 || value == 1 || value == 2 || value == 3; });
}

}  // namespace

bool IsPivLabText(std::string_view head) {
  return FirstLine(head).starts_with("PIVlab");
}

ForeignFile ReadPivLabText(const ForeignSource& source) {
  TextFile file(source.file);
  const Header header = ReadHeader(file);
  const NumberStyle style = StyleOf({header.numbers, static_cast<std::size_t>(file.End() - header.numbers)});
  std::vector<Column> columns = header.columns;
  if (columns.empty()) {
    const std::size_t count = CountNumbers(file.LineAt(header.numbers), style, kMostColumns + 1);
    if (count < 4 || count > kMostColumns) file.RefuseAt(header.numbers, "vier Zahlen oder mehr erwartet (x, y, u, v)");
    columns = UnnamedColumns(count, {Role::typeVector});
    if (count > 4) columns[4].name = "5";
  }
  if (style.decimalComma) file.ReplaceDecimalCommas(header.numbers);
  TableReader reader(file, columns, style.separator);
  TablePoints points;
  const char* const end = reader.Read(header.numbers, 0, points);
  if (end != file.End()) file.RefuseAt(end, "hier müssen Zahlen stehen");
  if (header.columns.empty() && columns.size() > 4 && !IsTypeVector(points.columns[4])) columns[4].role = Role::unknown;
  FileFacts facts;
  facts.dialect = "PIVlab (Text)";
  TakeUnits(columns, facts);
  std::vector<RawField> raw;
  raw.push_back(FieldOfTable(file, columns, points, {}, {}, facts));
  return BuildFields(std::move(raw), facts, source.options);
}

}  // namespace quiverion::exchange
