#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace quiverion::samples {

/// Settings of one synthetic measurement. Equal options give equal fields with every compiler.
struct SampleOptions {
  std::uint64_t seed = 1;
  int index = 0;  ///< zero-based number of the file in its series; the vortices drift downstream with it
  int columns = 125;
  int rows = 100;
  double noise = 0.15;         ///< standard deviation of each velocity component, m/s
  double outlierShare = 0.02;  ///< share of the points with a grossly wrong vector that counts as valid
  double holeShare = 0.015;    ///< share of the points without a vector
  bool maskedBody = true;      ///< a circular body in the light sheet, its points are masked
};

/// One synthetic measurement. Columns and rows are counted from 1; vector (i,j) is at (j-1)*columns + (i-1). All texts
/// are UTF-8.
struct SampleField {
  int columns = 0;
  int rows = 0;

  int imageWidth = 0;  ///< px, as all sizes and positions down to firstPixelY
  int imageHeight = 0;
  int windowWidth = 0;
  int windowHeight = 0;
  int gridStep = 0;
  int firstPixelX = 0;  ///< of column 1, the smallest x
  int firstPixelY = 0;  ///< of row 1, the largest y
  int pixelScale = 0;   ///< px/cm
  int pulseDelay = 0;   ///< µs

  std::vector<double> u;  ///< m/s, a multiple of 1e-6, so that six decimals in a text are exact
  std::vector<double> v;
  std::vector<std::int32_t> status;  ///< 1 valid, 0 hole, -1 masked; velocity 0 unless valid

  std::array<std::string, 7> headerLines;  ///< line 1 is date, a blank and time
  std::string date;                        ///< DD.MM.YY
  std::string time;                        ///< HH:MM:SS
  std::array<std::string, 2> commentLines;

  /// Items that only a VAS file has. The values differ from each other, so that swapped items are noticed.
  double offsetX = 0;  ///< mm
  double offsetY = 0;
  bool galileiPointSet = false;
  double galileiPointX = 0;  ///< mm
  double galileiPointY = 0;
  double galileiVelX = 0;  ///< m/s
  double galileiVelY = 0;
  std::vector<std::array<double, 4>> streamlines;  ///< x and y of the start point in mm, two values that are only kept
  std::int32_t streamlineSetting = 0;
  double scaleFactor = 1;
  double paletteMin = 0;
  double paletteSetting = 0;
  double paletteMax = 0;
  bool showHeader = false;
  bool showTable = false;
  bool showVectorField = true;
  std::array<double, 3> viewerSettings{};
  bool showCoordSystem = false;
  bool aspectRatio1to1 = false;
  std::int32_t background = 0;  ///< 0 none, 1 squared swirling strength, 2 vorticity
};

/// A shear layer with Lamb-Oseen vortices that drift downstream. Throws std::invalid_argument when a count is below 1
/// or above 30000, the grid has more than 2^26 points, the index is negative, the noise is negative or not finite, or
/// the shares are not between 0 and 1.
SampleField MakeSampleField(const SampleOptions& options);

/// Position of vector (column,row) in the arrays; both are counted from 1.
std::size_t PointIndex(const SampleField& field, int column, int row);

/// Grid positions in mm, computed in the order of operations of the DAT reader (px / scale * 10).
double PositionX(const SampleField& field, int column);
double PositionY(const SampleField& field, int row);

/// Number of vectors with a status above 0.
std::int32_t ValidVectorCount(const SampleField& field);

}  // namespace quiverion::samples
