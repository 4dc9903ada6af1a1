#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "exchange/columns.h"
#include "exchange/foreign_field.h"
#include "exchange/grid_points.h"

namespace quiverion::exchange {

using Statuses = std::vector<std::int32_t, UninitialisedAllocator<std::int32_t>>;

/// What a file says about itself, besides its numbers.
struct FileFacts {
  std::string dialect;
  std::string lengthUnit, velocityUnit;  // CleanUnit; empty: none
  std::optional<bool> yPointsDown;       // by itself; mostly a file does not say it
  std::string statusRule;                // filled by StatusesOf, or by a reader with statuses of its own
  bool hasStatus = false;                // likewise; false: the rule of zeros decides
  bool statusIsCertain = true;
  std::vector<std::string> warnings;
};

/// A field as a reader gives it: in the order of the file, in its units, y as it stands there.
struct RawField {
  GridLayout layout;
  Values columnPositions, rowPositions;
  Values u, v;
  Statuses status;
  std::optional<double> time;
  std::int32_t gridStep = 0;    // pixels, if the file says it
  std::int32_t pulseDelay = 0;  // µs, likewise
};

/// A column of numbers about the status of every point.
struct StatusColumn {
  Role role;
  std::string name;
  Values values;
};

/// The meanings that depend on the program that wrote a file.
struct StatusDialect {
  bool isPivView = false;       // flag 0 to 5
  bool maskIsRejected = false;  // a file of five columns
  Column5 column5 = Column5::guessed;
};

/// The statuses of all points, and in `facts` how they were decided. Throws FormatError with the place of a value that
/// is no status.
Statuses StatusesOf(const std::vector<StatusColumn>& columns, std::size_t count, const StatusDialect& dialect,
                    const PlaceOf& placeOf, FileFacts& facts);

/// Makes fields of raw fields: sorts the points into columns and rows, converts units, decides about zeros and numbers
/// that are not finite, and counts. Memory of a raw field is freed as soon as its numbers are taken.
ForeignFile BuildFields(std::vector<RawField> raw, const FileFacts& facts, const ImportOptions& options);

}  // namespace quiverion::exchange
