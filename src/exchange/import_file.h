#pragma once

#include <string>
#include <vector>

#include "exchange/foreign_field.h"
#include "field/context.h"

namespace quiverion::exchange {

/// Reads a file of another program. Throws as ReadForeignFile does.
ForeignFile ReadForeignFile(FileSystem& files, const std::string& path, const ImportOptions& options);

/// The path of field `number` (from 1) of `count`: the directory, the name of the source without its extension, a
/// number of four digits if there are several, ".vas".
std::string ImportedPath(const std::string& source, const std::string& directory, std::size_t number,
                         std::size_t count);

/// Writes the fields as VAS files, one after the other through the current field; existing ones are replaced. Logs as
/// SaveVas does; a failure sets `runHadError` and leaves the rest unwritten. Returns the paths that were written.
/// Throws SystemError 75 before anything is written if one of the files is the source itself.
std::vector<std::string> SaveImported(Context& context, ForeignFile foreign, const std::string& source,
                                      const std::string& directory);

}  // namespace quiverion::exchange
