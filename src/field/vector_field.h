#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "field/grid.h"

namespace quiverion {

/// A flag as it is stored: -1 true, 0 false; other values are kept and count as true.
using Flag16 = std::int16_t;
inline constexpr Flag16 kFlagTrue = -1;
inline constexpr Flag16 kFlagFalse = 0;

enum class Background : std::int32_t { none = 0, swirl2 = 1, vorticity = 2 };

inline constexpr std::int32_t kMaxStreamlines = 50;

/// Grid and measurement. Grids are one-based (column i in x, row j in y) with the column index running fastest. Status:
/// > 0 valid, 0 invalid, < 0 masked (invalid).
struct GridVectors {
  std::int32_t columnCount = 0;
  std::int32_t rowCount = 0;
  std::vector<double, UninitialisedAllocator<double>> posX;  // mm, columnCount values
  std::vector<double, UninitialisedAllocator<double>> posY;  // mm, rowCount values
  Grid<double> velX;                                         // m/s
  Grid<double> velY;                                         // m/s
  Grid<std::int32_t> status;
  Grid<double> derivedScalar;  // vorticity (1/s) or squared swirling strength (1/s²); never stored
};

/// The file that was loaded last.
struct Source {
  std::string filePath;
  std::string fileName;       // what follows the last separator of filePath
  std::string fileDirectory;  // what precedes it
};

/// How the field was recorded and what was noted about it. Lengths in pixels unless stated.
struct Recording {
  std::array<std::string, 7> headerLines;  // line 1: date and time of the recording
  std::string infoText;                    // lines separated by "\r\n"

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
};

/// Start x and y (mm), then two values that are only kept.
using Streamline = std::array<double, 4>;

/// Streamlines that the viewer draws.
struct Streamlines {
  std::int32_t streamlineCount = 0;  // records in use
  std::int32_t streamlineSetting = 0;
  std::array<Streamline, kMaxStreamlines> streamlines{};
};

/// Bookkeeping of earlier transformations.
struct Transformation {
  double offsetX = 0.0;  // mm
  double offsetY = 0.0;
  Flag16 galileiPointSet = kFlagFalse;
  double galileiPointX = 0.0;  // mm
  double galileiPointY = 0.0;
  double galileiVelX = 0.0;  // m/s, velocity removed from the field
  double galileiVelY = 0.0;
};

constexpr std::int32_t Rgb(int red, int green, int blue) {
  return red + 256 * green + 65536 * blue;
}

/// How the viewer program shows the field.
struct ViewSettings {
  bool showHeader = false;
  bool showTable = false;
  bool showVectorField = true;
  Flag16 showCoordSystem = kFlagFalse;
  Flag16 aspectRatio1to1 = kFlagFalse;
  Background background = Background::none;
  double scaleFactor = 1.0;
  double paletteMin = 0.0;
  double paletteMax = 100000.0;
  std::array<std::int32_t, 9> colours = {Rgb(0, 0, 255), Rgb(255, 0, 0),     Rgb(0, 200, 0),
                                         Rgb(0, 0, 0),   Rgb(0, 150, 0),     Rgb(255, 255, 255),
                                         Rgb(255, 0, 0), Rgb(255, 255, 255), Rgb(0, 255, 0)};
};

/// Settings of the viewer that pass from one loaded file to the next and are never reset.
struct CarriedSettings {
  double paletteSetting = 0.0;
  std::array<double, 3> viewerSettings{};
};

/// One PIV vector field with everything a VAS file carries, composed of what is reset or kept together.
struct VectorField : GridVectors, Source, Recording, Streamlines, Transformation, ViewSettings, CarriedSettings {};

/// Adds `change` to `validVectorCount`. The count comes from a file and may be anything, so it saturates.
inline void ChangeValidCount(VectorField& field, std::int64_t change) {
  using Limits = std::numeric_limits<std::int32_t>;
  field.validVectorCount = static_cast<std::int32_t>(
      std::clamp<std::int64_t>(field.validVectorCount + change, Limits::min(), Limits::max()));
}

/// Empties the streamline table.
void ResetStreamlines(VectorField& field);

/// Sets everything to its default except the arrays, the grid size, the paths, `paletteSetting` and `viewerSettings`.
void ResetHeader(VectorField& field);

/// What a load does before it opens `path`: resets the header and sets the paths. The reader sets arrays and grid size
/// (CreateArrays).
void ResetForLoad(VectorField& field, const std::string& path);

/// For formats that need not contain every point of their grid, so that the header alone could demand any amount of
/// memory. Allows 2^20 points plus one for each byte of the file; throws SystemError 7 for more. Counts below 1 are not
/// checked.
void CheckSparseGrid(std::int64_t columns, std::int64_t rows, std::uint64_t fileSize);

/// Creates all six arrays with the given size, zero-filled. Throws SystemError 9 for counts below 1 and 7 if there is
/// not enough memory.
void CreateArrays(VectorField& field, std::int32_t columns, std::int32_t rows);

/// The same for a reader that overwrites positions, velocities and statuses at once: only derivedScalar is
/// zeroed.
void CreateArraysForReading(VectorField& field, std::int32_t columns, std::int32_t rows);

}  // namespace quiverion
