#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "field/vector_field.h"
#include "platform/files/file_system.h"

/// Vector fields of other programs: recognised by their content, read with what only a person can know as options.
/// doc/formats/foreign.md describes formats, guesses and rules.
namespace quiverion::exchange {

enum class Column5 { guessed, signalToNoise, invalid, valid };

/// What a file does not say, or says wrongly. The defaults leave every decision to the reader.
struct ImportOptions {
  std::string format{};  // a name of ForeignFormats(); empty: by content
  std::optional<bool> yPointsDown{};
  std::optional<bool> zerosAreInvalid{};
  Column5 column5 = Column5::guessed;
  std::string lengthUnit{};  // goes before the unit in the file
  std::string velocityUnit{};
  std::optional<double> lengthFactor{};    // to mm; goes before any unit
  std::optional<double> velocityFactor{};  // to m/s
};

/// What was found in a file and what had to be assumed, for a report line and for a window that asks.
struct ImportReport {
  std::string format;                          // as in ForeignFormats()
  std::string dialect;                         // German
  std::int32_t columnCount = 0, rowCount = 0;  // of the first field
  std::size_t fieldCount = 0;
  std::string lengthUnit, velocityUnit;  // in the file or from the options; empty: none
  bool lengthIsAssumed = false;          // no unit that is known: factor 1
  bool velocityIsAssumed = false;
  bool yPointsDown = false;
  bool yIsAssumed = false;                       // neither the file nor an option says it
  bool hasUnnamedColumn5 = false;                // its meaning is a guess
  std::string statusRule;                        // German: how the statuses were decided
  std::int64_t zeroCount = 0;                    // vectors of exactly (0, 0) that are invalid for this reason
  std::int64_t validCount = 0, vectorCount = 0;  // of all fields
  std::vector<std::string> warnings;             // German, a line each

  /// The line that says all this, without the name of the file.
  std::string Line() const;
};

struct ForeignField {
  VectorField field;           // with info text, without path
  std::optional<double> time;  // as the file gives it
};

struct ForeignFile {
  ImportReport report;
  std::vector<ForeignField> fields;  // at least one
};

}  // namespace quiverion::exchange
