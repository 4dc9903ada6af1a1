#pragma once

#include <optional>
#include <string>
#include <vector>

#include "field/context.h"
#include "statistics/collection_layout.h"

/// Which fields a collection holds, and the removal of some of them.
namespace quiverion {

struct CollectionContents {
  CollectionHeader header;
  std::vector<std::string> sourcePaths;  // of record 1, 2, ...; UTF-8, without blanks around them
};

/// Reads the list of a collection of format version 1. A failure shows a message box and gives nothing.
std::optional<CollectionContents> ReadCollectionContents(Context& context, const std::string& collectionPath);

enum class RemovalOutcome {
  removed,            // read the list again
  collectionDeleted,  // no field was left; a message box has said so
  failed,             // a message box has said why; the file is readable, read the list again
  busy,               // another entry point is running; nothing has happened
  lengthNotSet,       // the records are removed but the file could not be shortened: after its message the program ends
};

/// Removes the records with these numbers, counted from 1 and none twice: records from the end move into the holes, the
/// lowest first, then the count is lowered and the file shortened. At every step the file is readable, at worst with
/// its old count. A number beyond the last record is a failure that changes nothing; no numbers change nothing either.
/// Other processes that append to the collection wait meanwhile.
RemovalOutcome RemoveRecords(Context& context, const std::string& collectionPath,
                             const std::vector<std::int32_t>& numbers);

}  // namespace quiverion
