#pragma once

#include <cstdint>

#include "field/vector_field.h"

/// The VAS layout, item by item, for BinaryReader and BinaryWriter alike. It is split where a reader stops or decides:
/// after the grid (all that the buffer needs) and after the streamline count.
namespace quiverion::vas {

/// Magic word and version. False if the magic word differs.
template <class Archive>
bool Identity(Archive& archive) {
  if (!archive.Magic("Quiverion")) return false;
  archive.Reserved16(1);  // format version, not checked
  return true;
}

/// Header lines, recording geometry and grid size.
template <class Archive, class Field>
void Header(Archive& archive, Field& field) {
  for (auto& line : field.headerLines) archive.Text(line);
  archive.Int32(field.imageWidth);
  archive.Int32(field.imageHeight);
  archive.Int32(field.windowWidth);
  archive.Int32(field.windowHeight);
  archive.Int32(field.gridStepX);
  archive.Int32(field.gridStepY);
  archive.Int32(field.firstPixelX);
  archive.Int32(field.firstPixelY);
  archive.Int32(field.pixelScale);
  archive.Int32(field.pulseDelay);
  archive.Int32(field.columnCount);
  archive.Int32(field.rowCount);
  archive.Int32(field.validVectorCount);
}

/// Bytes of the arrays of a grid of this size.
constexpr std::uint64_t GridBytes(std::uint64_t columns, std::uint64_t rows) {
  return 8 * (columns + rows) + 20 * columns * rows;
}

/// Positions, velocities and statuses, row by row; the arrays must have their sizes already.
template <class Archive, class Field>
void Arrays(Archive& archive, Field& field) {
  archive.Blocks(field.posX, field.posY, field.velX.Values(), field.velY.Values(), field.status.Values());
}

/// The record of past transformations and the streamline count.
template <class Archive, class Field>
void Bookkeeping(Archive& archive, Field& field) {
  archive.Reserved32(0);
  archive.Double(field.offsetX);
  archive.Double(field.offsetY);
  archive.Int16(field.galileiPointSet);
  archive.Double(field.galileiPointX);
  archive.Double(field.galileiPointY);
  archive.Double(field.galileiVelX);
  archive.Double(field.galileiVelY);
  archive.Int32(field.streamlineCount);
}

/// The streamlines in use.
template <class Archive, class Field>
void Streamlines(Archive& archive, Field& field) {
  for (std::int32_t k = 0; k < field.streamlineCount; ++k) {
    archive.Doubles(field.streamlines[static_cast<std::size_t>(k)]);
  }
}

/// `viewFlags` and `background` are the stored forms of the three show flags and of Background.
template <class Archive, class Field, class Integer>
void View(Archive& archive, Field& field, Integer& viewFlags, Integer& background) {
  archive.Int32(field.streamlineSetting);
  archive.Double(field.scaleFactor);
  archive.Int32s(field.colours);
  for (int k = 0; k < 7; ++k) archive.Reserved32(0);
  archive.Double(field.paletteMin);
  archive.Double(field.paletteSetting);
  archive.Double(field.paletteMax);
  archive.Int32(viewFlags);
  archive.Doubles(field.viewerSettings);
  archive.Int16(field.showCoordSystem);
  archive.Int16(field.aspectRatio1to1);
  archive.Int32(background);
  archive.Text(field.infoText);
  archive.Reserved32(-1);  // end mark
}

}  // namespace quiverion::vas
