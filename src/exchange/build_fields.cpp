#include <algorithm>
#include <cmath>

#include "exchange/raw_field.h"
#include "exchange/units.h"
#include "messages/failure.h"
#include "platform/numeric/multi_target.h"
#include "platform/text/numbers.h"

namespace quiverion::exchange {
namespace {

// What holds for all fields of a file.
struct Rules {
  double lengthFactor = 1.0, velocityFactor = 1.0;
  bool yPointsDown = false;
  bool zerosAreInvalid = false;
};

double FactorOf(const std::optional<double>& asked, const std::string& unit, std::optional<double> known,
                const char* what, bool& isAssumed, ImportReport& report) {
  if (asked) return *asked;
  if (known) return *known;
  isAssumed = true;
  report.warnings.push_back(std::string(what) + (unit.empty() ? " ohne Einheit" : " in '" + unit + "'") + ": als " +
                            (what[0] == 'P' ? "mm" : "m/s") + " übernommen (Faktor 1)");
  return 1.0;
}

Rules RulesOf(const FileFacts& facts, const ImportOptions& options, ImportReport& report) {
  Rules rules;
  report.dialect = facts.dialect;
  report.warnings = facts.warnings;
  report.lengthUnit = options.lengthUnit.empty() ? facts.lengthUnit : CleanUnit(options.lengthUnit);
  report.velocityUnit = options.velocityUnit.empty() ? facts.velocityUnit : CleanUnit(options.velocityUnit);
  rules.lengthFactor = FactorOf(options.lengthFactor, report.lengthUnit, LengthFactor(report.lengthUnit), "Positionen",
                                report.lengthIsAssumed, report);
  rules.velocityFactor = FactorOf(options.velocityFactor, report.velocityUnit, VelocityFactor(report.velocityUnit),
                                  "Geschwindigkeiten", report.velocityIsAssumed, report);
  if (options.lengthFactor) report.lengthUnit = "Einheiten zu " + FormatNumber(*options.lengthFactor) + " mm";
  if (options.velocityFactor) {
    report.velocityUnit = "Einheiten zu " + FormatNumber(*options.velocityFactor) + " m/s";
  }
  report.yIsAssumed = !options.yPointsDown && !facts.yPointsDown;
  rules.yPointsDown = options.yPointsDown.value_or(facts.yPointsDown.value_or(false));
  report.yPointsDown = rules.yPointsDown;
  rules.zerosAreInvalid = options.zerosAreInvalid.value_or(!facts.hasStatus);
  report.statusRule = facts.statusRule;
  report.hasUnnamedColumn5 = !facts.statusIsCertain;
  return rules;
}

// Copies values in the order of the file to their places: columns ascend in x, rows descend in y.
template <class Value>
void Place(const GridLayout& layout, bool fromRight, bool fromBelow, const Value* source, Value* target) {
  const auto columns = static_cast<std::size_t>(layout.columns), rows = static_cast<std::size_t>(layout.rows);
  const auto row = [&](std::size_t j) { return fromBelow ? rows - 1 - j : j; };
  const auto column = [&](std::size_t i) { return fromRight ? columns - 1 - i : i; };
  if (layout.xIsFast) {
    for (std::size_t j = 0; j < rows; ++j) {
      const Value* const from = source + row(j) * columns;
      if (fromRight) {
        std::reverse_copy(from, from + columns, target + j * columns);
      } else {
        std::copy_n(from, columns, target + j * columns);
      }
    }
    return;
  }
  constexpr std::size_t kTile = 32;  // rows and columns that fit into the cache together
  for (std::size_t top = 0; top < rows; top += kTile) {
    for (std::size_t left = 0; left < columns; left += kTile) {
      for (std::size_t j = top; j < std::min(top + kTile, rows); ++j) {
        for (std::size_t i = left; i < std::min(left + kTile, columns); ++i) {
          target[j * columns + i] = source[column(i) * rows + row(j)];
        }
      }
    }
  }
}

QUIVERION_MULTI_TARGET void Scale(double* values, std::size_t count, double factor) {
  for (std::size_t k = 0; k < count; ++k) values[k] = values[k] * factor;
}

QUIVERION_MULTI_TARGET void Negate(double* values, std::size_t count) {
  for (std::size_t k = 0; k < count; ++k) values[k] = -values[k];
}

// Vectors that are not finite become (0, 0), and are no longer valid; neither are those of exactly (0, 0) if
// `zerosAreInvalid`. Returns how many were valid until then because of their zeros.
std::int64_t RejectVectors(VectorField& field, bool zerosAreInvalid) {
  const auto u = field.velX.Values(), v = field.velY.Values();
  const auto status = field.status.Values();
  std::int64_t zeros = 0;
  for (std::size_t p = 0; p < status.size(); ++p) {
    const bool isFinite = std::isfinite(u[p]) && std::isfinite(v[p]);
    const bool isZero = zerosAreInvalid && u[p] == 0 && v[p] == 0;
    if (isFinite && !isZero) continue;
    if (!isFinite) u[p] = v[p] = 0;
    zeros += isZero && status[p] > 0 ? 1 : 0;
    status[p] = std::min(status[p], 0);
  }
  return zeros;
}

void TakePositions(const RawField& raw, const Rules& rules, bool fromRight, bool fromBelow, VectorField& field) {
  const auto take = [&](const Values& from, auto& to, bool reversed) {
    std::ranges::copy(from, to.begin());
    if (reversed) std::ranges::reverse(to);
    if (rules.lengthFactor != 1.0) Scale(to.data(), to.size(), rules.lengthFactor);
  };
  take(raw.columnPositions, field.posX, fromRight);
  take(raw.rowPositions, field.posY, fromBelow);
  if (rules.yPointsDown) Negate(field.posY.data(), field.posY.size());
}

void BuildField(RawField& raw, const Rules& rules, ForeignField& built, ImportReport& report) {
  VectorField& field = built.field;
  const bool fromRight = !raw.layout.xAscends;
  const bool fromBelow = raw.layout.yAscends != rules.yPointsDown;
  CreateArraysForReading(field, raw.layout.columns, raw.layout.rows);
  TakePositions(raw, rules, fromRight, fromBelow, field);
  Place(raw.layout, fromRight, fromBelow, raw.u.data(), field.velX.Values().data());
  Place(raw.layout, fromRight, fromBelow, raw.v.data(), field.velY.Values().data());
  Place(raw.layout, fromRight, fromBelow, raw.status.data(), field.status.Values().data());
  const std::size_t count = raw.u.size();
  if (rules.yPointsDown) Negate(field.velY.Values().data(), count);
  if (rules.velocityFactor != 1.0) {
    Scale(field.velX.Values().data(), count, rules.velocityFactor);
    Scale(field.velY.Values().data(), count, rules.velocityFactor);
  }
  report.zeroCount += RejectVectors(field, rules.zerosAreInvalid);
  const auto status = field.status.Values();
  const auto valid = std::ranges::count_if(status, [](std::int32_t value) { return value > 0; });
  field.validVectorCount = CheckedInt32(valid);
  field.gridStepX = field.gridStepY = raw.gridStep;
  field.pulseDelay = raw.pulseDelay;
  report.validCount += valid;
  report.vectorCount += static_cast<std::int64_t>(count);
  built.time = raw.time;
}

}  // namespace

ForeignFile BuildFields(std::vector<RawField> raw, const FileFacts& facts, const ImportOptions& options) {
  ForeignFile result;
  ImportReport& report = result.report;
  const Rules rules = RulesOf(facts, options, report);
  if (raw.empty()) throw FormatError("Die Datei enthält kein Vektorfeld.");
  report.fieldCount = raw.size();
  report.columnCount = raw.front().layout.columns;
  report.rowCount = raw.front().layout.rows;
  result.fields.resize(raw.size());
  for (std::size_t k = 0; k < raw.size(); ++k) {
    BuildField(raw[k], rules, result.fields[k], report);
    raw[k] = {};
  }
  if (report.statusRule.empty()) report.statusRule = "kein Status in der Datei";
  if (rules.zerosAreInvalid) {
    report.statusRule += ", (0, 0) ist ungültig (" + std::to_string(report.zeroCount) + ")";
  }
  return result;
}

std::string ImportReport::Line() const {
  std::string line = dialect + ", ";
  if (fieldCount > 1) line += std::to_string(fieldCount) + " Felder, ";
  line += std::to_string(columnCount) + " x " + std::to_string(rowCount);
  line += ", Positionen " + (lengthUnit.empty() ? "ohne Einheit" : "in " + lengthUnit);
  line += ", Geschwindigkeiten " + (velocityUnit.empty() ? "ohne Einheit" : "in " + velocityUnit);
  line += std::string(", y nach ") + (yPointsDown ? "unten" : "oben") + (yIsAssumed ? " (angenommen)" : "");
  line += ", " + statusRule;
  return line + ", " + std::to_string(validCount) + " von " + std::to_string(vectorCount) + " Vektoren gültig";
}

}  // namespace quiverion::exchange
