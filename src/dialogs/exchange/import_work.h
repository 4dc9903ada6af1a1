#pragma once

#include <string>
#include <vector>

#include "dialogs/exchange/exchange_services.h"
#include "dialogs/exchange/import_list.h"

namespace quiverion {

/// Reads a file and forgets its fields.
ImportFinding InspectFile(FileSystem& files, const std::string& path, const exchange::ImportOptions& options);

struct ImportResult {
  std::string problem;               // German, one line; empty: everything was written
  std::vector<std::string> written;  // names, without directory
  bool isDiskFull = false;           // so that no other file can be written, either
};

/// Writes the fields of a file into a directory.
ImportResult ImportOneFile(const ExchangeServices& services, const std::string& path,
                           const exchange::ImportOptions& options, const std::string& directory);

/// The lines of a log that explain an error, as one line: without the announcement before them.
std::string ReasonOf(const std::string& lines);

}  // namespace quiverion
