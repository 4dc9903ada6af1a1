#pragma once

#include <cstdint>
#include <string_view>

/// The layout of a collection (doc/formats/col.md): a header, then records of one size, for BinaryReader and
/// BinaryWriter alike.
namespace quiverion {

struct CollectionHeader {
  std::int16_t formatVersion = 1;
  std::int32_t fieldCount = 0;  // records that count; bytes after them have no meaning
  std::int32_t columnCount = 0;
  std::int32_t rowCount = 0;
  double firstPosX = 0.0;  // mm, of column 1 of the field that created the file
  double lastPosX = 0.0;   // of its last column
  double firstPosY = 0.0;  // of row 1
  double lastPosY = 0.0;

  /// Of one field.
  std::uint64_t VectorCount() const {
    return static_cast<std::uint64_t>(columnCount) * static_cast<std::uint64_t>(rowCount);
  }
};

namespace collection {

inline constexpr std::string_view kMagic = "QuiverionStatisticsCollection";
inline constexpr std::uint64_t kFieldCountAt = 31;
inline constexpr std::uint64_t kHeaderBytes = 75;
inline constexpr std::uint64_t kPathBytes = 128;  // characters of a record's source path, padded with blanks

/// Where the bits begin in a record of `vectors` vectors: after the source path and the x and y velocities.
constexpr std::uint64_t ValidBitsPosition(std::uint64_t vectors) {
  return kPathBytes + 16 * vectors;
}

/// Bytes of such a record: one bit per vector at its end, and at least one spare.
constexpr std::uint64_t RecordBytes(std::uint64_t vectors) {
  return ValidBitsPosition(vectors) + vectors / 8 + 1;
}

/// Magic word and version. False if the magic word differs.
template <class Archive, class Header>
bool Identity(Archive& archive, Header& header) {
  if (!archive.Magic(kMagic)) return false;
  archive.Int16(header.formatVersion);
  return true;
}

template <class Archive, class Header>
void Counts(Archive& archive, Header& header) {
  archive.Int32(header.fieldCount);
  archive.Int32(header.columnCount);
  archive.Int32(header.rowCount);
}

template <class Archive, class Header>
void Positions(Archive& archive, Header& header) {
  archive.Double(header.firstPosX);
  archive.Double(header.lastPosX);
  archive.Double(header.firstPosY);
  archive.Double(header.lastPosY);
}

}  // namespace collection
}  // namespace quiverion
