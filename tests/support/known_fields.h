#pragma once

#include <bit>
#include <cstdint>
#include <type_traits>

#include "support/field_builder.h"

/// Fields that another program can generate as well, and checksums for comparison with its results.
namespace quiverion::test {

/// FNV-1a over all elements, eight bytes each.
template <class... Grids>
std::uint64_t Checksum(const Grids&... grids) {
  std::uint64_t hash = 0xcbf29ce484222325;
  const auto add = [&hash](std::uint64_t bits) {
    for (int k = 0; k < 8; ++k, bits >>= 8) hash = (hash ^ (bits & 0xFF)) * 0x100000001b3;
  };
  const auto addDouble = [&](double value) { add(std::bit_cast<std::uint64_t>(value)); };
  const auto addStatus = [&](std::int32_t value) { add(static_cast<std::uint32_t>(value)); };
  const auto addGrid = [&](const auto& grid) {
    for (const auto value : grid.Values()) {
      if constexpr (std::is_same_v<decltype(value), const double>) {
        addDouble(value);
      } else {
        addStatus(value);
      }
    }
  };
  (addGrid(grids), ...);
  return hash;
}

inline std::uint64_t Checksum(const VectorField& field) {
  return Checksum(field.velX, field.velY, field.status);
}

/// Velocities below 20 m/s, a fifth of the vectors invalid or masked.
inline VectorField KnownField(std::uint64_t seed, std::int32_t columns, std::int32_t rows) {
  std::mt19937_64 random(seed);
  VectorField field = MakeField(columns, rows);
  for (std::size_t p = 0; p < field.status.Values().size(); ++p) {
    field.velX.Values()[p] = Uniform(random, -20, 20);
    field.velY.Values()[p] = Uniform(random, -20, 20);
    field.status.Values()[p] = static_cast<std::int32_t>(random() % 10) - 1;
  }
  return field;
}

}  // namespace quiverion::test
