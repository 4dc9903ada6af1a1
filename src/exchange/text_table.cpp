#include "exchange/text_table.h"

#include <algorithm>

#include "messages/failure.h"
#include "messages/system_error.h"
#include "platform/text/numbers.h"
#include "platform/text/text.h"

namespace quiverion::exchange {
namespace {

bool IsLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// The number at `at`, quickly if it is a plain decimal. Returns its end, or null.
inline const char* ReadNumber(const char* at, const char* end, double& value) {
  try {
    const NumberPrefix number = ReadNumberPrefix({at, static_cast<std::size_t>(end - at)});
    value = number.value;
    const char* const after = at + number.length;
    return number.length != 0 && EndsNumber(*after) ? after : nullptr;
  } catch (const SystemError&) {  // too large for a double
    return nullptr;
  }
}

}  // namespace

TableReader::TableReader(const TextFile& file, std::vector<Column> columns, Separator separator)
    : file_(file), columns_(std::move(columns)), separator_(separator), repeats_(columns_.size(), nullptr) {
  bool hasStatus = false;
  for (std::size_t c = 0; c < columns_.size(); ++c) {
    const Role role = columns_[c].role;
    if (role == Role::x) repeats_[c] = &x_;
    if (role == Role::y) repeats_[c] = &y_;
    if (IsStatus(role) && role != Role::column5 && !hasStatus) {
      repeats_[c] = &status_;
      hasStatus = true;
    }
  }
}

void TableReader::Grow(TablePoints& points, std::size_t capacity) {
  points.columns.resize(columns_.size());
  targets_.assign(columns_.size(), nullptr);
  for (std::size_t c = 0; c < columns_.size(); ++c) {
    if (columns_[c].role == Role::unknown) continue;
    points.columns[c].resize(capacity);
    targets_[c] = points.columns[c].data();
  }
}

// The beginning of the next line of numbers; null if there is none.
const char* TableReader::NextLine(const char* at) const {
  for (;;) {
    at = SkipBlanks(at);
    if (at == file_.End()) return nullptr;
    if (IsLineEnd(*at)) {
      ++at;
    } else if (*at == '#') {
      at = file_.AfterLine(at);
    } else {
      return at;
    }
  }
}

const char* TableReader::ReadOdd(const char* at, double& value) const {
  const char* const after = ReadAnyNumber(at, file_.End(), value);
  if (after == nullptr || !EndsNumber(*after)) {
    std::string word(at, std::min(SkipWord(at) + 1, std::min(at + 20, file_.End())));
    word.resize(std::min(word.find_first_of("\r\n"), word.size()));
    ReplaceControls(word, "");
    file_.RefuseAt(at, "'" + word + "' ist keine Zahl");
  }
  return after;
}

const char* TableReader::SkipWord(const char* at) const {
  // What is no number may contain blanks if something else separates.
  const char stop = separator_ == Separator::comma ? ',' : separator_ == Separator::semicolon ? ';' : ' ';
  while (at != file_.End() && *at != stop && !IsLineEnd(*at) && (stop != ' ' || *at != '\t')) ++at;
  return at;
}

void TableReader::RefuseCount(const char* at, const char* what) const {
  file_.RefuseAt(at, std::string(what) + ", die Tabelle hat " + std::to_string(columns_.size()) + " Spalten");
}

const char* TableReader::TakeSeparator(const char* at, std::size_t column) const {
  const char* const after = SkipBlanks(at);
  if (IsLineEnd(*after) || after == file_.End()) {
    if (column + 1 < columns_.size()) RefuseCount(at, "zu wenige Zahlen");
    return after;
  }
  const bool isComma = *after == ',', isSemicolon = *after == ';';
  if (isComma != (separator_ == Separator::comma) || isSemicolon != (separator_ == Separator::semicolon)) {
    file_.RefuseAt(at, "gemischte Trennzeichen");
  }
  if (column + 1 == columns_.size()) {
    const char* const rest = SkipBlanks(isComma || isSemicolon ? after + 1 : after);
    if ((isComma || isSemicolon) && (IsLineEnd(*rest) || rest == file_.End())) return rest;
    RefuseCount(at, "zu viele Zahlen");
  }
  return isComma || isSemicolon ? SkipBlanks(after + 1) : after;
}

const char* TableReader::ReadColumn(const char* at, std::size_t column, double& value) {
  RepeatedTexts* const repeats = repeats_[column];
  if (repeats != nullptr) {
    if (const char* const after = repeats->Find(at, value); after != nullptr) return after;
  }
  const char* after = ReadNumber(at, file_.End(), value);
  if (after == nullptr) after = ReadOdd(at, value);
  if (repeats != nullptr) repeats->Add(at, after, value);
  return after;
}

const char* TableReader::ReadPoint(const char* at, std::size_t row) {
  for (std::size_t c = 0; c < columns_.size(); ++c) {
    if (double* const target = targets_[c]; target != nullptr) {
      at = ReadColumn(at, c, target[row]);
    } else {
      at = SkipWord(at);
    }
    at = TakeSeparator(at, c);
  }
  return at;
}

const char* TableReader::Read(const char* at, std::size_t expected, TablePoints& points) {
  points.begin = at;
  const auto rest = static_cast<std::size_t>(file_.End() - at);
  const char* const first = NextLine(at);
  const std::size_t length = first == nullptr ? 1 : file_.LineAt(first).size() + 1;
  const std::size_t least = 2 * columns_.size();  // bytes of a line
  const std::size_t guess = expected > 0 ? expected : rest / length + rest / length / 16 + 16;
  std::size_t capacity = std::min(guess, rest / least + 1);
  Grow(points, capacity);
  std::size_t row = 0;
  for (;;) {
    const char* const line = NextLine(at);
    if (line == nullptr) {
      at = file_.End();
      break;
    }
    double value = 0.0;
    if (IsLetter(*line) && ReadAnyNumber(line, file_.End(), value) == nullptr) {
      at = line;
      break;
    }
    if (row == capacity) Grow(points, capacity = 2 * capacity + 16);
    at = ReadPoint(line, row);
    ++row;
  }
  points.count = row;
  const bool isWasteful = capacity > 2 * row + 1000;  // a short zone of a long file
  for (Values& column : points.columns) {
    if (column.empty()) continue;
    column.resize(row);
    if (isWasteful) column.shrink_to_fit();
  }
  return at;
}

const char* TableReader::ReadStream(const char* at, std::size_t count, bool byBlocks, TablePoints& points) {
  points.begin = at;
  points.count = count;
  points.isByLine = false;
  const auto rest = static_cast<std::uint64_t>(file_.End() - at);
  constexpr std::uint64_t kWithoutData = 1024 * 1024;  // repeats need few bytes
  if (count > rest + kWithoutData) file_.RefuseAt(at, "die Zone hat mehr Punkte, als die Datei enthalten kann");
  Grow(points, count);
  double value = 0.0;
  std::size_t repeats = 0;  // of `value`
  const std::size_t all = count * columns_.size();
  for (std::size_t k = 0; k < all; ++k, --repeats) {
    if (repeats == 0) {
      const char* line = NextLine(at);
      while (line != nullptr && *line == ',') line = NextLine(line + 1);
      if (line == nullptr) {
        file_.RefuseAt(file_.End(), std::to_string(all) + " Zahlen erwartet, " + std::to_string(k) + " gefunden");
      }
      repeats = 1;
      at = ReadAnyNumber(line, file_.End(), value);
      if (at != nullptr && *at == '*') {
        if (!(value >= 1 && value <= static_cast<double>(all - k))) file_.RefuseAt(line, "unmögliche Wiederholung");
        repeats = static_cast<std::size_t>(value);
        at = ReadAnyNumber(at + 1, file_.End(), value);
      }
      if (at == nullptr || !EndsNumber(*at)) ReadOdd(line, value);
    }
    const std::size_t column = byBlocks ? k / count : k % columns_.size();
    const std::size_t row = byBlocks ? k % count : k / columns_.size();
    if (targets_[column] != nullptr) targets_[column][row] = value;
  }
  return at;
}

std::string PlaceOfPoint(const TextFile& file, const TablePoints& points, std::size_t point) {
  if (!points.isByLine) return "Punkt " + std::to_string(point + 1) + " der Zone ab " + file.PlaceOf(points.begin);
  const char* at = points.begin;
  for (;; at = file.AfterLine(at)) {
    const char* const text = SkipBlanks(at);
    if (text == file.End()) break;
    if (IsLineEnd(*text) || *text == '#') continue;
    if (point == 0) break;
    --point;
  }
  return file.PlaceOf(at);
}

namespace {

Values Take(const std::vector<Column>& columns, TablePoints& points, Role role) {
  const auto column = std::ranges::find(columns, role, &Column::role);
  return std::move(points.columns[static_cast<std::size_t>(column - columns.begin())]);
}

void CheckCounts(const TextFile& file, const GridLayout& layout, const HeaderCounts& counts) {
  const auto fast = static_cast<std::int64_t>(layout.FastCount()), slow = static_cast<std::int64_t>(layout.SlowCount());
  if (counts.fast == 0 || (counts.fast == fast && counts.slow == slow)) return;
  // In a single row or column the fast coordinate is the one that has more than one value.
  if (slow == 1 && counts.fast == 1 && counts.slow == fast) return;
  file.RefuseAt(counts.place, "der Kopf nennt " + std::to_string(counts.fast) + " x " + std::to_string(counts.slow) +
                                  " Punkte, die Punkte selbst bilden " + std::to_string(fast) + " x " +
                                  std::to_string(slow));
}

}  // namespace

RawField FieldOfTable(const TextFile& file, const std::vector<Column>& columns, TablePoints& points,
                      const HeaderCounts& counts, const StatusDialect& dialect, FileFacts& facts) {
  const PlaceOf placeOf = [&](std::size_t point) { return PlaceOfPoint(file, points, point); };
  const std::int64_t promised = counts.fast * counts.slow;
  if (points.count == 0) file.RefuseAt(points.begin, "es gibt keine Punkte");
  RawField raw;
  {
    const Values x = Take(columns, points, Role::x), y = Take(columns, points, Role::y);
    if (promised > 0 && promised != static_cast<std::int64_t>(points.count)) {
      file.RefuseAt(counts.place, "der Kopf nennt " + std::to_string(counts.fast) + " x " +
                                      std::to_string(counts.slow) + " Punkte, es sind " + std::to_string(points.count));
    }
    raw.layout = FindGrid(x, y, placeOf);
    CheckCounts(file, raw.layout, counts);
    raw.columnPositions = ColumnPositions(raw.layout, x);
    raw.rowPositions = RowPositions(raw.layout, y);
  }
  raw.u = Take(columns, points, Role::u);
  raw.v = Take(columns, points, Role::v);
  std::vector<StatusColumn> statuses;
  for (std::size_t c = 0; c < columns.size(); ++c) {
    if (IsStatus(columns[c].role)) statuses.push_back({columns[c].role, columns[c].name, std::move(points.columns[c])});
  }
  raw.status = StatusesOf(statuses, points.count, dialect, placeOf, facts);
  if (!file.EndsWithLine() && facts.warnings.empty()) {
    facts.warnings.emplace_back("Die letzte Zeile hat kein Zeilenende: vielleicht fehlt etwas am Ende der Datei");
  }
  return raw;
}

void TakeUnits(const std::vector<Column>& columns, FileFacts& facts) {
  for (const Column& column : columns) {
    if (column.unit.empty()) continue;
    if ((column.role == Role::x || column.role == Role::y) && facts.lengthUnit.empty()) facts.lengthUnit = column.unit;
    if ((column.role == Role::u || column.role == Role::v) && facts.velocityUnit.empty()) {
      facts.velocityUnit = column.unit;
    }
  }
}

}  // namespace quiverion::exchange
