#include "field/vector_field.h"

#include <new>

#include "messages/system_error.h"
#include "platform/files/paths.h"

namespace quiverion {
namespace {

// `reset` resizes one grid.
template <class ResetGrid>
void CreateArraysWith(VectorField& field, std::int32_t columns, std::int32_t rows, ResetGrid reset) {
  if (columns < 1 || rows < 1) throw SystemError(ErrorNumber::indexOutOfRange);
  field.columnCount = columns;
  field.rowCount = rows;
  field.posX.resize(static_cast<std::size_t>(columns));
  field.posY.resize(static_cast<std::size_t>(rows));
  reset(field.velX);
  reset(field.velY);
  reset(field.status);
  field.derivedScalar.Reset(columns, rows);
}

}  // namespace

void CheckSparseGrid(std::int64_t columns, std::int64_t rows, std::uint64_t fileSize) {
  constexpr std::int64_t pointsWithoutData = 1024 * 1024;
  const std::int64_t limit = pointsWithoutData + static_cast<std::int64_t>(std::min(fileSize, std::uint64_t{1} << 40));
  if (columns > 0 && rows > 0 && columns > limit / rows) throw SystemError(ErrorNumber::outOfMemory);
}

void ResetStreamlines(VectorField& field) {
  static_cast<Streamlines&>(field) = {};
}

void ResetHeader(VectorField& field) {
  static_cast<Recording&>(field) = {};
  static_cast<Streamlines&>(field) = {};
  static_cast<Transformation&>(field) = {};
  static_cast<ViewSettings&>(field) = {};
}

void ResetForLoad(VectorField& field, const std::string& path) {
  ResetHeader(field);
  static_cast<Source&>(field) = {path, std::string(FileNameOf(path)), std::string(DirectoryOf(path))};
}

void CreateArrays(VectorField& field, std::int32_t columns, std::int32_t rows) {
  CreateArraysWith(field, columns, rows, [&](auto& grid) { grid.Reset(columns, rows); });
  field.posX.assign(static_cast<std::size_t>(columns), 0.0);
  field.posY.assign(static_cast<std::size_t>(rows), 0.0);
}

void CreateArraysForReading(VectorField& field, std::int32_t columns, std::int32_t rows) {
  CreateArraysWith(field, columns, rows, [&](auto& grid) { grid.ResetUninitialised(columns, rows); });
}

}  // namespace quiverion
