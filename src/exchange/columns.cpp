#include "exchange/columns.h"

#include <algorithm>
#include <array>
#include <utility>

#include "exchange/units.h"
#include "messages/failure.h"
#include "platform/text/text.h"

namespace quiverion::exchange {
namespace {

constexpr std::size_t kMostColumns = 1000;

// In lower case.
constexpr std::pair<std::string_view, Role> kNames[] = {{"x", Role::x},
                                                        {"pos_x", Role::x},
                                                        {"x_pos", Role::x},
                                                        {"position_x", Role::x},
                                                        {"y", Role::y},
                                                        {"pos_y", Role::y},
                                                        {"y_pos", Role::y},
                                                        {"position_y", Role::y},
                                                        {"u", Role::u},
                                                        {"vx", Role::u},
                                                        {"ux", Role::u},
                                                        {"dx", Role::u},
                                                        {"velocity_x", Role::u},
                                                        {"x_velocity", Role::u},
                                                        {"vel_x", Role::u},
                                                        {"u_filtered", Role::u},
                                                        {"u_original", Role::u},
                                                        {"u_smoothed", Role::u},
                                                        {"u_bar", Role::u},
                                                        {"v", Role::v},
                                                        {"vy", Role::v},
                                                        {"uy", Role::v},
                                                        {"dy", Role::v},
                                                        {"velocity_y", Role::v},
                                                        {"y_velocity", Role::v},
                                                        {"vel_y", Role::v},
                                                        {"v_filtered", Role::v},
                                                        {"v_original", Role::v},
                                                        {"v_smoothed", Role::v},
                                                        {"v_bar", Role::v},
                                                        {"status", Role::status},
                                                        {"typevector", Role::typeVector},
                                                        {"vector type", Role::typeVector},
                                                        {"vector_type", Role::typeVector},
                                                        {"typevector_filtered", Role::typeVector},
                                                        {"typevector_original", Role::typeVector},
                                                        {"flags", Role::flags},
                                                        {"flag", Role::flag},
                                                        {"chc", Role::chc},
                                                        {"isvalid", Role::isValid},
                                                        {"valid", Role::valid},
                                                        {"mask", Role::mask},
                                                        {"isnan", Role::isNaN},
                                                        {"invalid", Role::invalid}};

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  }
  return lower;
}

std::string_view Trim(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t' || text.front() == '"')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '"')) text.remove_suffix(1);
  return text;
}

bool IsUnit(std::string_view text) {
  const std::string unit = CleanUnit(text);
  return LengthFactor(unit) || VelocityFactor(unit) || unit == "px" || unit == "pixel" || unit == "px/frame";
}

Column NameAndUnit(std::string_view name, std::string_view unit) {
  return {std::string(Trim(name)), CleanUnit(unit), RoleOf(Trim(name))};
}

// Names are separated by blanks only, and units are in brackets: "x [px] Vector type [-]".
std::vector<std::string_view> CutAfterBrackets(std::string_view line) {
  std::vector<std::string_view> parts;
  while (!Trim(line).empty()) {
    const std::size_t end = std::min(line.find(']'), line.size() - 1) + 1;
    parts.push_back(line.substr(0, end));
    line.remove_prefix(end);
  }
  return parts;
}

std::vector<std::string_view> Cut(std::string_view line, char separator) {
  std::vector<std::string_view> parts;
  for (std::size_t at = 0; at <= line.size();) {
    const std::size_t end = std::min(line.find(separator, at), line.size());
    const std::string_view part = line.substr(at, end - at);
    if (separator != ' ' || !part.empty()) parts.push_back(part);
    at = end + 1;
  }
  if (!parts.empty() && Trim(parts.back()).empty()) parts.pop_back();
  return parts;
}

std::vector<std::string_view> CutNames(std::string_view line) {
  for (const char separator : {'\t', ';', ','}) {
    if (line.find(separator) != std::string_view::npos) return Cut(line, separator);
  }
  return line.find(']') != std::string_view::npos ? CutAfterBrackets(line) : Cut(line, ' ');
}

}  // namespace

Role RoleOf(std::string_view name) {
  const std::string lower = Lower(name);
  for (const auto& [known, role] : kNames) {
    if (known == lower) return role;
  }
  return Role::unknown;
}

Column ColumnOf(std::string_view text) {
  text = Trim(text);
  if (RoleOf(text) != Role::unknown) return NameAndUnit(text, "");
  for (const auto& [open, close] : {std::pair('[', ']'), std::pair('(', ')')}) {
    const std::size_t begin = text.rfind(open);
    if (begin == std::string_view::npos) continue;
    const std::size_t end = std::min(text.find(close, begin), text.size());
    return NameAndUnit(text.substr(0, text.find_first_of("[(")), text.substr(begin + 1, end - begin - 1));
  }
  if (const std::size_t blank = text.find(' '); blank != std::string_view::npos) {
    return NameAndUnit(text.substr(0, blank), text.substr(blank + 1));
  }
  for (std::size_t bar = text.find('_'); bar != std::string_view::npos; bar = text.find('_', bar + 1)) {
    if (RoleOf(text.substr(0, bar)) != Role::unknown && IsUnit(text.substr(bar + 1))) {
      return NameAndUnit(text.substr(0, bar), text.substr(bar + 1));
    }
  }
  return NameAndUnit(text, "");
}

std::vector<Column> ColumnsOf(std::string_view line) {
  while (!line.empty() && (line.front() == '#' || line.front() == '%' || line.front() == ' ')) line.remove_prefix(1);
  while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.remove_suffix(1);
  const std::vector<std::string_view> parts = CutNames(line);
  if (parts.size() > kMostColumns) throw FormatError("Die Zeile mit den Namen hat zu viele Spalten.");
  std::vector<Column> columns;
  columns.reserve(parts.size());
  for (const std::string_view part : parts) columns.push_back(ColumnOf(part));
  DropDoubles(columns);
  return columns;
}

std::vector<Column> UnnamedColumns(std::size_t count, const std::vector<Role>& rest) {
  std::vector<Column> columns(count);
  constexpr std::array kFirst = {Role::x, Role::y, Role::u, Role::v};
  for (std::size_t k = 0; k < count; ++k) {
    if (k < kFirst.size()) columns[k].role = kFirst[k];
    if (k >= kFirst.size() && k - kFirst.size() < rest.size()) columns[k].role = rest[k - kFirst.size()];
  }
  return columns;
}

bool HasVectors(const std::vector<Column>& columns) {
  const auto has = [&](Role role) { return std::ranges::find(columns, role, &Column::role) != columns.end(); };
  return has(Role::x) && has(Role::y) && has(Role::u) && has(Role::v);
}

void DropDoubles(std::vector<Column>& columns) {
  for (auto column = columns.begin(); column != columns.end(); ++column) {
    if (column->role == Role::unknown) continue;
    for (auto later = std::next(column); later != columns.end(); ++later) {
      if (later->role == column->role) later->role = Role::unknown;
    }
  }
}

}  // namespace quiverion::exchange
