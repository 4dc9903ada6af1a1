#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "field/context.h"
#include "statistics/collection_layout.h"

/// The list of the fields of a collection, and the removal of some of them.
namespace quiverion {

struct CollectionContents {
  CollectionHeader header;
  std::vector<std::string> sourcePaths;  // of record 1, 2, ...; UTF-8, without blanks around them
};

/// Name, number of fields and their size: three lines separated by "\n", without a line break at the end.
std::string DescribeCollection(const std::string& collectionPath, const CollectionHeader& header);

/// Reads the list of a collection of format version 1: the header and the path bytes of each record. `onHeader` is
/// called before the records are read. A failure shows a message box and returns nothing.
std::optional<CollectionContents> ReadCollectionContents(
    Context& context, const std::string& collectionPath,
    const std::function<void(const CollectionHeader&)>& onHeader = [](const CollectionHeader&) {});

/// Passes the source path of each record to `visit` (UTF-8, without blanks around it), without a message box, until it
/// returns false. Throws SystemError and FormatError.
void VisitSourcePaths(FileSystem& files, const std::string& collectionPath,
                      const std::function<bool(const std::string&)>& visit);

enum class RemovalOutcome {
  removed,            // read the list again
  collectionDeleted,  // no field was left; a message box has been shown
  failed,             // a message box has given the reason; the file is readable, read the list again
  busy,               // another entry point is running; nothing has happened
  lengthNotSet,       // records removed, but the file was not shortened: after the message the program ends
};

/// Removes the records with these numbers, counted from 1 and none twice: records from the end move into the holes, the
/// lowest first, then the count is lowered and the file shortened. At every step the file is readable, at worst with
/// its old count. A number beyond the last record is a failure that changes nothing; an empty list also changes
/// nothing. Other processes that append to the collection wait meanwhile.
///
/// `listed` are the source paths of all records as the user has seen them, empty if there was no list. If another
/// program has moved or removed one of them since, that is a failure that changes nothing.
RemovalOutcome RemoveRecords(Context& context, const std::string& collectionPath,
                             const std::vector<std::int32_t>& numbers, const std::vector<std::string>& listed = {});

}  // namespace quiverion
