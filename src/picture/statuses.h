#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "field/vector_field.h"
#include "picture/picture.h"

/// Kinds of vectors by their status, as a legend has them.
namespace quiverion {

enum class StatusKind {
  valid,     ///< 1, and what no program writes (5 and more)
  second,    ///< 2: computed by a filter, combined from two fields, or the second correlation peak
  third,     ///< 3: filled by the interpolation, or the third correlation peak
  fourth,    ///< 4: the fourth correlation peak
  rejected,  ///< 0: no vector, or one that was found to be faulty
  masked     ///< negative
};
inline constexpr std::size_t kStatusKinds = 6;

StatusKind KindOf(std::int32_t status);

/// What 2 and 3 mean depends on where a field comes from.
enum class StatusOrigin {
  program,  ///< this program: filtered, filled
  peaks,    ///< a VEC file: the correlation peak
  either    ///< a VAS file made from a VEC file, or a VEC file on which commands have worked
};
StatusOrigin OriginOf(const VectorField& field, bool processed = false);

/// In words, such as "gültig" or "2. Korrelationspeak".
std::string NameOf(StatusKind kind, StatusOrigin origin);

/// For light or dark paper; colours that every kind of colour vision can tell apart (Okabe and Ito 2008).
Colour ColourOf(StatusKind kind, bool darkPaper);

/// Vectors of each kind.
using StatusCounts = std::array<std::int64_t, kStatusKinds>;
StatusCounts CountStatuses(const Grid<std::int32_t>& status);

}  // namespace quiverion
