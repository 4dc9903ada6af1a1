#include "statistics/collection_reader.h"

#include "platform/system_error.h"
#include "platform/text.h"

namespace quiverion {

bool IsCollection(BinaryReader& reader) {
  return reader.Remaining() >= collection::kMagic.size() && reader.Magic(collection::kMagic);
}

CollectionHeader ReadCollectionHeader(BinaryReader& reader) {
  CollectionHeader header;
  collection::Counts(reader, header);
  if (header.fieldCount < 0) throw SystemError(ErrorNumber::invalidCall);
  if (header.columnCount < 1 || header.rowCount < 1) throw SystemError(ErrorNumber::indexOutOfRange);
  collection::Positions(reader, header);
  if (header.fieldCount == 0) return header;
  // Every vector takes more than a byte: beyond this the size of a record could leave the range of 64 bits.
  reader.Require(header.VectorCount());
  if (static_cast<std::uint64_t>(header.fieldCount) >
      reader.Remaining() / collection::RecordBytes(header.VectorCount())) {
    throw SystemError(ErrorNumber::endOfFile);
  }
  return header;
}

std::uint64_t RecordPosition(const CollectionHeader& header, std::int32_t index) {
  return collection::kHeaderBytes + static_cast<std::uint64_t>(index) * collection::RecordBytes(header.VectorCount());
}

std::string ReadSourcePath(BinaryReader& reader) {
  std::string bytes(collection::kPathBytes, '\0');
  reader.Bytes(bytes.data(), bytes.size());
  return Utf8FromWindows1252(TrimBlanks(bytes));
}

}  // namespace quiverion
