#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "field/grid.h"

namespace quiverion {

/// A flag as it is stored: -1 true, 0 false; other values are carried as they are and count as true.
using Flag16 = std::int16_t;
inline constexpr Flag16 kFlagTrue = -1;
inline constexpr Flag16 kFlagFalse = 0;

enum class Background : std::int32_t { none = 0, swirl2 = 1, vorticity = 2 };

inline constexpr std::int32_t kMaxStreamlines = 50;

/// Start x and y (mm), then two values that are only carried.
using Streamline = std::array<double, 4>;

/// One PIV vector field with everything a VAS file carries. Grids are one-based (column i in x, row j in y)
/// with the column index running fastest. Status: > 0 valid, 0 invalid, < 0 masked (invalid).
struct VectorField {
  // Grid and measurement.
  std::int32_t columnCount = 0;
  std::int32_t rowCount = 0;
  std::vector<double, UninitialisedAllocator<double>> posX;  // mm, columnCount values
  std::vector<double, UninitialisedAllocator<double>> posY;  // mm, rowCount values
  Grid<double> velX;                                         // m/s
  Grid<double> velY;                                         // m/s
  Grid<std::int32_t> status;
  Grid<double> derivedScalar;  // vorticity (1/s) or squared swirling strength (1/s²); never stored

  // Header and text.
  std::array<std::string, 7> headerLines;  // line 1: date and time of the recording
  std::string infoText;                    // lines separated by "\r\n"
  std::string filePath;                    // of the file last loaded
  std::string fileName;                    // behind the last separator of filePath
  std::string fileDirectory;               // before it

  // Recording geometry, in pixels unless stated.
  std::int32_t imageWidth = 0;
  std::int32_t imageHeight = 0;
  std::int32_t windowWidth = 0;  // interrogation window
  std::int32_t windowHeight = 0;
  std::int32_t gridStepX = 0;
  std::int32_t gridStepY = 0;
  std::int32_t firstPixelX = 0;  // of column 1
  std::int32_t firstPixelY = 0;  // of row 1
  std::int32_t pixelScale = 0;   // pixels per cm (DAT); 1 / x scale factor (VEC)
  std::int32_t pulseDelay = 0;   // µs
  std::int32_t validVectorCount = 0;

  // Bookkeeping of transformations.
  double offsetX = 0.0;  // mm
  double offsetY = 0.0;
  Flag16 galileiPointSet = kFlagFalse;
  double galileiPointX = 0.0;  // mm
  double galileiPointY = 0.0;
  double galileiVelX = 0.0;  // m/s, velocity removed from the field
  double galileiVelY = 0.0;

  std::int32_t streamlineCount = 0;  // records in use
  std::int32_t streamlineSetting = 0;
  std::array<Streamline, kMaxStreamlines> streamlines{};

  // View settings of the viewer program.
  bool showHeader = false;
  bool showTable = false;
  bool showVectorField = true;
  Flag16 showCoordSystem = kFlagFalse;
  Flag16 aspectRatio1to1 = kFlagFalse;
  Background background = Background::none;
  double scaleFactor = 1.0;
  double paletteMin = 0.0;
  double paletteMax = 100000.0;
  double paletteSetting = 0.0;               // carried from file to file, never reset
  std::array<double, 3> viewerSettings{};    // likewise
  std::array<std::int32_t, 9> colours = {};  // red + 256 green + 65536 blue
};

/// Adds `change` to `validVectorCount`. The count comes from a file and may be anything: it stays at the end of its
/// range.
inline void ChangeValidCount(VectorField& field, std::int64_t change) {
  using Limits = std::numeric_limits<std::int32_t>;
  field.validVectorCount = static_cast<std::int32_t>(
      std::clamp<std::int64_t>(field.validVectorCount + change, Limits::min(), Limits::max()));
}

/// Empties the streamline table.
void ResetStreamlines(VectorField& field);

/// Everything takes its default except the arrays and grid size, the paths, and `paletteSetting` and `viewerSettings`,
/// which keep the values of the field before.
void ResetHeader(VectorField& field);

/// What a load does before it opens `path`: resets the header and sets the paths. The reader sets arrays and grid size
/// (CreateArrays).
void ResetForLoad(VectorField& field, const std::string& path);

/// For formats that do not hold every point of their grid, whose header alone could ask for any amount of memory: a
/// file may have 2^20 points and one more for each of its bytes. Throws SystemError 7 for more; counts below 1 pass.
void CheckSparseGrid(std::int64_t columns, std::int64_t rows, std::uint64_t fileSize);

/// Creates all six arrays with the given size, zero-filled. Throws SystemError 9 for counts below 1 and 7
/// where the memory is not there.
void CreateArrays(VectorField& field, std::int32_t columns, std::int32_t rows);

/// The same for a reader that overwrites positions, velocities and statuses at once: only derivedScalar is
/// zeroed.
void CreateArraysForReading(VectorField& field, std::int32_t columns, std::int32_t rows);

}  // namespace quiverion
