#pragma once

#include <string>

#include "field/binary_reader.h"
#include "statistics/collection_layout.h"

namespace quiverion {

/// True where the file begins with the magic word of a collection; a file shorter than it does not.
bool IsCollection(BinaryReader& reader);

/// Counts and positions behind the magic word. Throws SystemError 62 where the file ends before its last counted record, 5 for a
/// negative number of fields and 9 for a grid without columns or rows. The version is not checked.
CollectionHeader ReadCollectionHeader(BinaryReader& reader);

/// Bytes before record `index`, counted from 0.
std::uint64_t RecordPosition(const CollectionHeader& header, std::int32_t index);

/// A record's source path as UTF-8, without the blanks around it. The reader stands at the beginning of the record.
std::string ReadSourcePath(BinaryReader& reader);

}  // namespace quiverion
