#pragma once

#include <string>
#include <string_view>

#include "field/formats/binary_reader.h"
#include "platform/files/write_retry.h"
#include "platform/text/text.h"
#include "statistics/collection_layout.h"

namespace quiverion {

/// Magic word and version, which is not checked. False if the magic word differs, or if the file is shorter than it.
bool ReadIdentity(BinaryReader& reader, CollectionHeader& header);

/// The rest of the header. Throws SystemError 62 if the file ends before its last counted record, 5 for a negative
/// number of fields and 9 for a grid without columns or rows.
void ReadCountsAndPositions(BinaryReader& reader, CollectionHeader& header);

/// Bytes before record `index`, counted from 0.
std::uint64_t RecordPosition(const CollectionHeader& header, std::int32_t index);

/// The source path of record `index`, counted from 0, as UTF-8, without the blanks around it. No other bytes are read.
/// Throws SystemError.
std::string ReadSourcePath(InputFile& file, const CollectionHeader& header, std::int32_t index);

/// `path` as a record stores it, padded with blanks: of a path that is too long, the end.
Windows1252Text StoredSourcePath(std::string_view path);

/// What ReadSourcePath returns for the record of the file `path`.
std::string SourcePathInCollection(std::string_view path);

/// Writes the number of fields, the step that makes an append or a removal count.
void WriteFieldCount(UpdatedFile& file, std::int32_t fieldCount, WriteRetry& retry);

}  // namespace quiverion
