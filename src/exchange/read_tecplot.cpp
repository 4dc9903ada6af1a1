// Tecplot text files, and those of programs that write them in their own way: Insight, DaVis, PIVview, PIVlab.
#include <algorithm>
#include <cstring>

#include "exchange/readers.h"
#include "exchange/tecplot_header.h"
#include "exchange/text_table.h"
#include "exchange/units.h"
#include "field/vector_field.h"
#include "messages/failure.h"
#include "platform/text/text.h"

namespace quiverion::exchange {
namespace {

bool HasComment(const TecplotHeader& header, std::string_view text) {
  return std::ranges::any_of(header.comments,
                             [&](const std::string& line) { return line.find(text) != std::string::npos; });
}

bool HasVariable(const TecplotHeader& header, Role role) {
  return std::ranges::find(header.columns, role, &Column::role) != header.columns.end();
}

// "# var 4: 'u' - velocity component X in [m/s]"
void TakeLegendUnits(TecplotHeader& header) {
  for (const std::string& line : header.comments) {
    const std::size_t begin = line.find('\''), end = line.find('\'', begin + 1), bracket = line.rfind('[');
    if (begin == std::string::npos || end == std::string::npos || bracket == std::string::npos) continue;
    const std::string name = line.substr(begin + 1, end - begin - 1);
    for (Column& column : header.columns) {
      if (column.name == name && column.unit.empty()) {
        column.unit = CleanUnit(std::string_view(line).substr(bracket + 1, line.find(']', bracket) - bracket - 1));
      }
    }
  }
}

// What the program that wrote the file means.
void TakeDialect(TecplotHeader& header, StatusDialect& dialect, FileFacts& facts) {
  const auto application = header.auxiliary.find("Application");
  if (HasComment(header, "PIVview")) {
    facts.dialect = "PIVview (Tecplot)";
    dialect.isPivView = true;
    TakeLegendUnits(header);
    if (HasComment(header, "upper-left") || HasComment(header, "upper left")) facts.yPointsDown = true;
  } else if (HasComment(header, "PIVlab")) {
    facts.dialect = "PIVlab (Tecplot)";
    facts.warnings.emplace_back("PIVlab vertauscht in dieser Datei m/s und m/frame: die Geschwindigkeiten prüfen");
  } else if (HasVariable(header, Role::chc) ||
             (application != header.auxiliary.end() && application->second == "PIV")) {
    facts.dialect = "Insight (Tecplot)";
  } else if (HasVariable(header, Role::isValid) || header.auxiliary["T"].starts_with("Frame ")) {
    facts.dialect = "DaVis (Tecplot)";
  } else {
    facts.dialect = "Tecplot";
  }
}

class ZoneReader {
 public:
  ZoneReader(TextFile& file, const ImportOptions& options) : file_(file) { dialect_.column5 = options.column5; }

  std::vector<RawField> ReadAll() {
    std::vector<RawField> fields;
    const char* at = file_.Begin();
    while (const auto zone = ReadTecplotRecords(file_, at, header_)) {
      if (fields.empty()) Begin(*zone);
      if (!HasVectors(header_.columns)) file_.RefuseAt(zone->record, "unter den Variablen fehlt x, y, u oder v");
      TablePoints points;
      at = ReadNumbers(*zone, points);
      fields.push_back(FieldOfTable(file_, header_.columns, points, CountsOf(*zone), dialect_, facts_));
      fields.back().time = zone->time;
      RequireSameSize(fields, *zone);
    }
    if (fields.empty()) file_.RefuseAt(file_.End(), "es gibt keine Zone mit Zahlen");
    return fields;
  }

  const FileFacts& Facts() const { return facts_; }

 private:
  void Begin(const TecplotZone& first) {
    // Searched for only once.
    hasRepeats_ = std::memchr(first.numbers, '*', static_cast<std::size_t>(file_.End() - first.numbers)) != nullptr;
    TakeDialect(header_, dialect_, facts_);
    TakeUnits(header_.columns, facts_);
  }

  void RequireSameSize(const std::vector<RawField>& fields, const TecplotZone& zone) const {
    const GridLayout &first = fields.front().layout, &last = fields.back().layout;
    if (first.columns == last.columns && first.rows == last.rows) return;
    file_.RefuseAt(zone.record, "die Zonen sind verschieden groß (" + std::to_string(last.columns) + " x " +
                                    std::to_string(last.rows) + " statt " + std::to_string(first.columns) + " x " +
                                    std::to_string(first.rows) + ")");
  }

  HeaderCounts CountsOf(const TecplotZone& zone) const {
    // A list of points has only one count.
    if (zone.i == 0 || zone.j == 0) return {};
    return {zone.i, zone.j, zone.record};
  }

  const char* ReadNumbers(const TecplotZone& zone, TablePoints& points) {
    if (zone.k != 1) file_.RefuseAt(zone.record, "ein Volumen (K > 1) kann nicht gelesen werden");
    const std::string_view rest(zone.numbers, static_cast<std::size_t>(file_.End() - zone.numbers));
    const std::string_view line = file_.LineAt(zone.numbers);
    const NumberStyle style = StyleOf(rest.substr(0, 64 * 1024));
    const std::size_t inLine = CountNumbers(line, {}, header_.columns.size() + 1);
    const bool isByLine = inLine == header_.columns.size() && !hasRepeats_ && !zone.isBlock;
    if (!isByLine && zone.i > 0) {
      const bool isBlock = zone.isBlock || !zone.packingIsGiven;
      const auto count = static_cast<std::size_t>(zone.i * std::max<std::int64_t>(zone.j, 1));
      TableReader reader(file_, header_.columns, style.separator);
      return reader.ReadStream(zone.numbers, count, isBlock, points);
    }
    TableReader reader(file_, header_.columns, style.separator);
    return reader.Read(zone.numbers, static_cast<std::size_t>(zone.i * zone.j), points);
  }

  TextFile& file_;
  TecplotHeader header_;
  StatusDialect dialect_;
  FileFacts facts_;
  bool hasRepeats_ = false;
};

}  // namespace

bool IsTecplot(std::string_view head) {
  // The first line that is no comment begins with a keyword.
  for (std::size_t at = 0; at < head.size();) {
    const std::size_t end = std::min(head.find_first_of("\r\n", at), head.size());
    const std::string_view line = TrimBlanks(head.substr(at, end - at));
    at = end + 1;
    if (line.empty() || line.front() == '#') continue;
    for (const std::string_view keyword : {"TITLE", "VARIABLES", "ZONE"}) {
      if (line.size() < keyword.size() || !EqualsIgnoringCase(line.substr(0, keyword.size()), keyword)) continue;
      const std::string_view after = line.substr(keyword.size());
      if (after.empty() || after.front() == '=' || IsBlank(after.front())) return true;
    }
    return false;
  }
  return false;
}

ForeignFile ReadTecplot(const ForeignSource& source) {
  TextFile file(source.file);
  ZoneReader zones(file, source.options);
  std::vector<RawField> fields = zones.ReadAll();
  return BuildFields(std::move(fields), zones.Facts(), source.options);
}

}  // namespace quiverion::exchange
