#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quiverion::exchange {

/// The factor from a unit of length to mm: nm, um or µm, mm, cm, dm, m; nothing for any other.
std::optional<double> LengthFactor(std::string_view unit);

/// The factor from a unit of velocity to m/s: a unit of length over s, ms, us or µs, such as "mm/s" or "m s-1".
std::optional<double> VelocityFactor(std::string_view unit);

/// A unit as it stands in a file (UTF-8 or Windows-1252): without blanks and brackets around it, "µ" as UTF-8.
std::string CleanUnit(std::string_view unit);

}  // namespace quiverion::exchange
