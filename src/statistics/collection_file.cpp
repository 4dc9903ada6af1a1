#include "statistics/collection_file.h"

#include <array>

#include "field/formats/binary_writer.h"
#include "messages/system_error.h"
#include "platform/text/text.h"

namespace quiverion {

bool ReadIdentity(BinaryReader& reader, CollectionHeader& header) {
  return reader.Remaining() >= collection::kMagic.size() && collection::Identity(reader, header);
}

void ReadCountsAndPositions(BinaryReader& reader, CollectionHeader& header) {
  collection::Counts(reader, header);
  if (header.fieldCount < 0) throw SystemError(ErrorNumber::invalidCall);
  if (header.columnCount < 1 || header.rowCount < 1) throw SystemError(ErrorNumber::indexOutOfRange);
  collection::Positions(reader, header);
  if (header.fieldCount == 0) return;
  // Every vector takes more than a byte: beyond this the size of a record could exceed 64 bits.
  reader.Require(header.VectorCount());
  if (static_cast<std::uint64_t>(header.fieldCount) >
      reader.Remaining() / collection::RecordBytes(header.VectorCount())) {
    throw SystemError(ErrorNumber::endOfFile);
  }
}

std::uint64_t RecordPosition(const CollectionHeader& header, std::int32_t index) {
  return collection::kHeaderBytes + static_cast<std::uint64_t>(index) * collection::RecordBytes(header.VectorCount());
}

std::string ReadSourcePath(InputFile& file, const CollectionHeader& header, std::int32_t index) {
  std::string bytes(collection::kPathBytes, '\0');
  file.Seek(RecordPosition(header, index));
  if (file.Read(bytes.data(), bytes.size()) < bytes.size()) throw SystemError(ErrorNumber::endOfFile);
  return Utf8FromWindows1252(TrimBlanks(bytes));
}

Windows1252Text StoredSourcePath(std::string_view path) {
  constexpr std::string_view mark = "...";
  std::string_view kept = path;
  const std::size_t count = CharacterCount(path);
  const bool cut = count > collection::kPathBytes;
  for (std::size_t k = collection::kPathBytes - mark.size(); cut && k < count; ++k) TakeCodePoint(kept);
  Windows1252Text stored = Windows1252FromUtf8(kept);
  if (cut) stored.bytes.insert(0, mark);
  stored.bytes.resize(collection::kPathBytes, ' ');
  return stored;
}

std::string SourcePathInCollection(std::string_view path) {
  return Utf8FromWindows1252(TrimBlanks(StoredSourcePath(path).bytes));
}

void WriteFieldCount(UpdatedFile& file, std::int32_t fieldCount, WriteRetry& retry) {
  std::array pieces = {BytesOf(std::span(&fieldCount, 1))};
  WriteAllAt(file, collection::kFieldCountAt, pieces, retry);
}

}  // namespace quiverion
