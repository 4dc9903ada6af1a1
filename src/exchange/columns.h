#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quiverion::exchange {

/// What a column or a variable of a file is. Statuses are in the order in which the first one counts; those after
/// `valid` are in addition.
enum class Role {
  unknown,
  x,
  y,
  u,
  v,
  status,
  typeVector,
  flags,
  flag,
  chc,
  isValid,
  valid,
  column5,  // without a name
  mask,     // other than 0: masked
  isNaN,    // other than 0: rejected
  invalid
};

/// True if the role says something about a status.
constexpr bool IsStatus(Role role) {
  return role >= Role::status;
}

struct Column {
  std::string name;  // as it stands, without its unit
  std::string unit;  // CleanUnit
  Role role = Role::unknown;
};

/// The role of a name without regard to case; Role::unknown if it has none.
Role RoleOf(std::string_view name);

/// "X mm", "x [m]", "x (mm)[mm]", "u [m/s]", "x_mm", "CHC": name, unit and role.
Column ColumnOf(std::string_view text);

/// The columns of a line of names, separated by tabs, semicolons, commas or blanks. Throws FormatError if there are
/// more than any known program writes.
std::vector<Column> ColumnsOf(std::string_view line);

/// Columns without names: x, y, u, v, then what `rest` says.
std::vector<Column> UnnamedColumns(std::size_t count, const std::vector<Role>& rest);

/// True if x, y, u and v are all there.
bool HasVectors(const std::vector<Column>& columns);

/// A second column of the same role is of no use.
void DropDoubles(std::vector<Column>& columns);

}  // namespace quiverion::exchange
