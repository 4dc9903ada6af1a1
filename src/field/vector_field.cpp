#include "field/vector_field.h"

#include <new>

#include "messages/system_error.h"
#include "platform/files/paths.h"

namespace quiverion {
namespace {

constexpr std::int32_t Rgb(int red, int green, int blue) {
  return red + 256 * green + 65536 * blue;
}

constexpr std::array<std::int32_t, 9> kDefaultColours = {Rgb(0, 0, 255), Rgb(255, 0, 0),     Rgb(0, 200, 0),
                                                         Rgb(0, 0, 0),   Rgb(0, 150, 0),     Rgb(255, 255, 255),
                                                         Rgb(255, 0, 0), Rgb(255, 255, 255), Rgb(0, 255, 0)};

// `reset` sets the size of one grid.
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
  field.streamlineCount = 0;
  field.streamlineSetting = 0;
  field.streamlines = {};
}

void ResetHeader(VectorField& field) {
  VectorField fresh;
  fresh.colours = kDefaultColours;
  fresh.paletteSetting = field.paletteSetting;
  fresh.viewerSettings = field.viewerSettings;
  // The arrays keep their memory: the next field of a series nearly always has the same size.
  fresh.columnCount = field.columnCount;
  fresh.rowCount = field.rowCount;
  fresh.posX.swap(field.posX);
  fresh.posY.swap(field.posY);
  std::swap(fresh.velX, field.velX);
  std::swap(fresh.velY, field.velY);
  std::swap(fresh.status, field.status);
  std::swap(fresh.derivedScalar, field.derivedScalar);
  fresh.filePath.swap(field.filePath);
  fresh.fileName.swap(field.fileName);
  fresh.fileDirectory.swap(field.fileDirectory);
  field = std::move(fresh);
}

void ResetForLoad(VectorField& field, const std::string& path) {
  ResetHeader(field);
  field.filePath = path;
  field.fileName = FileNameOf(path);
  field.fileDirectory = DirectoryOf(path);
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
