#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "exchange/columns.h"
#include "exchange/text_file.h"

namespace quiverion::exchange {

/// A zone of a Tecplot text file: what its record says, and where its numbers begin.
struct TecplotZone {
  std::int64_t i = 0, j = 0, k = 1;  // 0: not given
  bool isBlock = false;
  bool packingIsGiven = false;
  std::optional<double> time;
  const char* record = nullptr;
  const char* numbers = nullptr;
};

/// Everything before the numbers of a zone.
struct TecplotHeader {
  std::string title;
  std::vector<Column> columns;                   // of VARIABLES
  std::map<std::string, std::string> auxiliary;  // DATASETAUXDATA
  std::vector<std::string> comments;
};

/// Reads records from `at` on, until the numbers of a zone begin. Returns the zone, or nothing if the file ends. What
/// was known before stays. Throws FormatError.
std::optional<TecplotZone> ReadTecplotRecords(const TextFile& file, const char* at, TecplotHeader& header);

}  // namespace quiverion::exchange
