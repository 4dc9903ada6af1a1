#include <algorithm>
#include <cmath>

#include "exchange/raw_field.h"
#include "messages/failure.h"
#include "platform/text/numbers.h"

namespace quiverion::exchange {
namespace {

std::int32_t FromTypeVector(double value) {
  return value == 0 ? -1 : value == 1 ? 1 : value == 2 ? 3 : value == 3 ? 2 : 0;
}

std::int32_t FromFlags(double value) {
  return value == 0 ? 1 : value == 2 ? 3 : 0;
}

std::int32_t FromPositive(double value) {
  return value > 0 ? 1 : 0;
}

std::int32_t FromPivView(double value) {
  constexpr std::int32_t statuses[] = {-1, 0, 0, 1, 2, 3};
  return value >= 0 && value <= 5 && value == std::floor(value) ? statuses[static_cast<int>(value)] : 0;
}

template <class Convert>
void ConvertAll(const Values& values, Statuses& statuses, Convert convert) {
  for (std::size_t k = 0; k < statuses.size(); ++k) statuses[k] = convert(values[k]);
}

void TakeAsTheyStand(const Values& values, Statuses& statuses, const PlaceOf& placeOf) {
  for (std::size_t k = 0; k < statuses.size(); ++k) {
    const double value = values[k];
    if (!(value >= -2147483648.0 && value <= 2147483647.0) || value != std::floor(value)) {
      throw FormatError(placeOf(k) + ": " + FormatNumber(value) + " ist kein Status");
    }
    statuses[k] = static_cast<std::int32_t>(value);
  }
}

void Reject(const Values& values, Statuses& statuses, std::int32_t rejected) {
  for (std::size_t k = 0; k < statuses.size(); ++k) statuses[k] = values[k] != 0 ? rejected : statuses[k];
}

// What a fifth column without a name most probably is.
Column5 GuessColumn5(const Values& values) {
  const bool onlyZeroAndOne = std::ranges::all_of(values, [](double value) { return value == 0 || value == 1; });
  if (onlyZeroAndOne) return Column5::invalid;
  const bool anyNegative = std::ranges::any_of(values, [](double value) { return value < 0; });
  return anyNegative ? Column5::valid : Column5::signalToNoise;
}

std::string NameOf(const StatusColumn& column) {
  return "Spalte '" + column.name + "'";
}

// The column that decides, the one with the first role; null if none does.
const StatusColumn* Deciding(const std::vector<StatusColumn>& columns) {
  const StatusColumn* first = nullptr;
  for (const StatusColumn& column : columns) {
    if (column.role < Role::column5 && (first == nullptr || column.role < first->role)) first = &column;
  }
  return first;
}

const StatusColumn* Find(const std::vector<StatusColumn>& columns, Role role) {
  const auto found = std::ranges::find(columns, role, &StatusColumn::role);
  return found == columns.end() ? nullptr : &*found;
}

void TakeDeciding(const StatusColumn& column, const StatusDialect& dialect, const PlaceOf& placeOf,
                  Statuses& statuses) {
  switch (column.role) {
    case Role::status:
      return TakeAsTheyStand(column.values, statuses, placeOf);
    case Role::typeVector:
      return ConvertAll(column.values, statuses, FromTypeVector);
    case Role::flags:
      return ConvertAll(column.values, statuses, FromFlags);
    case Role::flag:
      if (dialect.isPivView) return ConvertAll(column.values, statuses, FromPivView);
      break;
    default:
      break;
  }
  ConvertAll(column.values, statuses, FromPositive);
}

// True if the column says something about statuses.
bool TakeColumn5(const Values& values, Column5 asked, Statuses& statuses, std::string& rule) {
  const Column5 meaning = asked == Column5::guessed ? GuessColumn5(values) : asked;
  if (meaning == Column5::signalToNoise) {
    rule = "Spalte 5 ist Signal/Rauschen";
    return false;
  }
  if (meaning == Column5::invalid) {
    Reject(values, statuses, 0);
    rule = "Spalte 5 ungleich 0 ist ungültig";
  } else {
    ConvertAll(values, statuses, FromPositive);
    rule = "Spalte 5 über 0 ist gültig";
  }
  return true;
}

void AddRule(FileFacts& facts, const std::string& rule) {
  facts.statusRule += (facts.statusRule.empty() ? "" : ", ") + rule;
  facts.hasStatus = true;
}

}  // namespace

Statuses StatusesOf(const std::vector<StatusColumn>& columns, std::size_t count, const StatusDialect& dialect,
                    const PlaceOf& placeOf, FileFacts& facts) {
  Statuses statuses(count);
  std::ranges::fill(statuses, 1);
  facts.statusRule.clear();
  facts.hasStatus = false;
  if (const StatusColumn* const deciding = Deciding(columns)) {
    TakeDeciding(*deciding, dialect, placeOf, statuses);
    AddRule(facts, "Status aus " + NameOf(*deciding));
    if (deciding->role == Role::status) return statuses;
  }
  if (const StatusColumn* const column5 = Find(columns, Role::column5)) {
    facts.statusIsCertain = false;
    facts.hasStatus = TakeColumn5(column5->values, dialect.column5, statuses, facts.statusRule);
  }
  for (const Role role : {Role::isNaN, Role::invalid, Role::mask}) {
    const StatusColumn* const column = Find(columns, role);
    if (column == nullptr) continue;
    const bool masks = role == Role::mask && !dialect.maskIsRejected;
    Reject(column->values, statuses, masks ? -1 : 0);
    AddRule(facts, NameOf(*column) + " ungleich 0 ist " + (masks ? "maskiert" : "ungültig"));
  }
  return statuses;
}

}  // namespace quiverion::exchange
