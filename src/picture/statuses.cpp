#include "picture/statuses.h"

#include <algorithm>

#include "platform/text/text.h"

namespace quiverion {
namespace {

struct KindRow {
  std::array<std::string_view, 3> names;  // by origin
  Colour onLight, onDark;
};

constexpr std::array<KindRow, kStatusKinds> kKinds = {{
    {{"gültig", "1. Korrelationspeak", "gültig"}, {0, 0, 0}, {240, 240, 240}},
    {{"kombiniert oder gefiltert", "2. Korrelationspeak", "gefiltert oder 2. Korrelationspeak"},
     {0, 158, 115},
     {0, 190, 140}},
    {{"aufgefüllt", "3. Korrelationspeak", "aufgefüllt oder 3. Korrelationspeak"}, {0, 114, 178}, {86, 180, 233}},
    {{"4. Korrelationspeak", "4. Korrelationspeak", "4. Korrelationspeak"}, {204, 121, 167}, {230, 150, 195}},
    {{"ungültig", "kein Vektor", "ungültig"}, {213, 94, 0}, {240, 120, 30}},
    {{"maskiert", "maskiert", "maskiert"}, {130, 130, 130}, {140, 140, 140}},
}};

const KindRow& RowOf(StatusKind kind) {
  return kKinds[static_cast<std::size_t>(kind)];
}

}  // namespace

StatusKind KindOf(std::int32_t status) {
  if (status < 0) return StatusKind::masked;
  constexpr std::array<StatusKind, 5> kinds = {StatusKind::rejected, StatusKind::valid, StatusKind::second,
                                               StatusKind::third, StatusKind::fourth};
  return status < static_cast<std::int32_t>(kinds.size()) ? kinds[static_cast<std::size_t>(status)] : StatusKind::valid;
}

StatusOrigin OriginOf(const VectorField& field, bool processed) {
  if (AsciiUpper(field.fileName).ends_with(".VEC")) return processed ? StatusOrigin::either : StatusOrigin::peaks;
  return field.headerLines[1] == "No information (DaVis)" ? StatusOrigin::either : StatusOrigin::program;
}

std::string NameOf(StatusKind kind, StatusOrigin origin) {
  return std::string(RowOf(kind).names[static_cast<std::size_t>(origin)]);
}

Colour ColourOf(StatusKind kind, bool darkPaper) {
  return darkPaper ? RowOf(kind).onDark : RowOf(kind).onLight;
}

StatusCounts CountStatuses(const Grid<std::int32_t>& status) {
  StatusCounts counts{};
  for (const std::int32_t each : status.Values()) ++counts[static_cast<std::size_t>(KindOf(each))];
  return counts;
}

}  // namespace quiverion
