#include <charconv>

#include "exchange/readers.h"
#include "exchange/text_table.h"
#include "exchange/units.h"
#include "messages/failure.h"
#include "platform/text/text.h"

namespace quiverion::exchange {
namespace {

constexpr std::string_view kBegin = "#DaVis";

// "#DaVis 8.1.6 2D-vector 32 64 64 "position" "mm" "position" "mm" "velocity" "m/s"": grid, rows, columns, then a
// description and a unit for x, y and the values. DaVis 10 has names with units instead, separated by semicolons.
struct Header {
  std::string version;
  HeaderCounts counts;
  std::string lengthUnit, velocityUnit;
  std::vector<Column> columns;  // empty: without names
};

std::vector<std::int64_t> WholeNumbers(std::string_view text) {
  std::vector<std::int64_t> numbers;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find(' ', at), text.size());
    std::int64_t number = 0;
    const char* const last = text.data() + end;
    const auto read = std::from_chars(text.data() + at, last, number);
    if (read.ec == std::errc() && read.ptr == last && number > 0 && number <= 0x7FFFFFFF) {
      numbers.push_back(number);
    } else if (end > at) {
      numbers.clear();  // part of the version or of the kind
    }
    at = end + 1;
  }
  return numbers;
}

std::vector<std::string> Quoted(std::string_view text) {
  std::vector<std::string> found;
  for (std::size_t begin = text.find('"'); begin != std::string_view::npos; begin = text.find('"', begin + 1)) {
    const std::size_t end = text.find('"', begin + 1);
    if (end == std::string_view::npos) break;
    found.emplace_back(text.substr(begin + 1, end - begin - 1));
    begin = end;
  }
  return found;
}

Header ReadHeader(const TextFile& file, std::string_view line) {
  Header header;
  const std::string_view words = line.substr(0, line.find('"'));
  const std::string_view rest = TrimBlanks(words.substr(kBegin.size()));
  header.version = std::string(rest.substr(0, rest.find(' ')));
  ReplaceControls(header.version, "");
  const std::vector<std::int64_t> numbers = WholeNumbers(words);
  if (numbers.size() < 3) file.RefuseAt(file.Begin(), "der Kopf nennt keine Gittergröße");
  header.counts = {numbers[numbers.size() - 1], numbers[numbers.size() - 2], file.Begin()};
  const std::vector<std::string> texts = Quoted(line);
  const bool areNames = line.find("\";\"") != std::string_view::npos;
  if (areNames) {
    for (const std::string& text : texts) header.columns.push_back(ColumnOf(text));
    if (!HasVectors(header.columns)) file.RefuseAt(file.Begin(), "die Namen von x, y, Vx und Vy fehlen");
  } else if (texts.size() >= 6) {
    header.lengthUnit = CleanUnit(texts[1]);
    header.velocityUnit = CleanUnit(texts[5]);
  }
  return header;
}

std::vector<Column> ColumnsOfTable(const TextFile& file, const Header& header, const char* numbers,
                                   const NumberStyle& style) {
  if (!header.columns.empty()) return header.columns;
  const std::size_t count = CountNumbers(file.LineAt(numbers), style, 6);
  if (count < 4 || count > 5) file.RefuseAt(numbers, "vier oder fünf Zahlen erwartet (x, y, Vx, Vy, Vz)");
  return UnnamedColumns(count, {});
}

}  // namespace

bool IsDavisText(std::string_view head) {
  return head.starts_with(kBegin);
}

ForeignFile ReadDavisText(const ForeignSource& source) {
  TextFile file(source.file);
  const std::string_view line = file.LineAt(file.Begin());
  if (!line.starts_with(kBegin)) file.RefuseAt(file.Begin(), "'#DaVis' fehlt");
  const Header header = ReadHeader(file, line);
  const char* const numbers = file.AfterLine(file.Begin());
  const NumberStyle style = StyleOf({numbers, static_cast<std::size_t>(file.End() - numbers)});
  if (style.decimalComma) file.ReplaceDecimalCommas(numbers);
  TableReader reader(file, ColumnsOfTable(file, header, numbers, style), style.separator);
  TablePoints points;
  const char* const end = reader.Read(numbers, 0, points);
  if (end != file.End()) file.RefuseAt(end, "hier müssen Zahlen stehen");
  FileFacts facts;
  facts.dialect = "DaVis " + header.version + " (Text" + (style.decimalComma ? " mit Dezimalkomma)" : ")");
  facts.lengthUnit = header.lengthUnit;
  facts.velocityUnit = header.velocityUnit;
  TakeUnits(reader.Columns(), facts);
  std::vector<RawField> raw;
  raw.push_back(FieldOfTable(file, reader.Columns(), points, header.counts, {}, facts));
  return BuildFields(std::move(raw), facts, source.options);
}

}  // namespace quiverion::exchange
