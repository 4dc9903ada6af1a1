#pragma once

#include <array>
#include <string>
#include <vector>

#include "field/field_fixture.h"

namespace quiverion::test {

/// A VAS file composed item by item; every value can be changed, also to one that the program does not write.
/// The values differ from each other, so that swapped items show.
struct VasImage {
  std::string magic = "Quiverion";
  int version = 1;
  std::array<std::string, 7> header = {"24.11.03 10:15:00", "D\xFCse", "", "cm\xB2", "\x81\x8D\x8F\x90\x9D", "6", "7"};
  // image, window, step, first pixel, scale, delay, columns, rows, valid vectors
  std::array<std::int32_t, 13> geometry = {640, 480, 32, 24, 16, 12, 20, 470, 80, 50, 3, 2, -7};
  std::vector<double> posX = {0.5, 1.5, 2.5};
  std::vector<double> posY = {9.25, 8.25};
  std::vector<double> velX = {11, 21, 31, 12, 22, 32};
  std::vector<double> velY = {-11, -21, -31, -12, -22, -32};
  std::vector<std::int32_t> status = {1, 0, -1, 4, 2147483647, -2147483647 - 1};
  std::int32_t reserved10 = 0;
  std::array<double, 2> offset = {101, 102};
  int galileiPointSet = -1;
  std::array<double, 4> galilei = {103, 104, 105, 106};  // point, velocity
  std::int32_t streamlineCount = 2;
  std::vector<Streamline> streamlines = {{1, 2, 3, 4}, {5, 6, 7, 8}};
  std::int32_t streamlineSetting = 17;
  double scaleFactor = 2.5;
  std::array<std::int32_t, 9> colours = {1, 2, 3, 4, 5, 6, 7, 8, 0x7FFFFFFF};
  std::array<std::int32_t, 7> reserved19 = {};
  std::array<double, 3> palette = {-200, 300, 400};
  std::int32_t viewFlags = 2;
  std::array<double, 3> viewer = {501, 502, 503};
  int showCoordSystem = 0;
  int aspectRatio = -1;
  std::int32_t background = 2;
  std::string info = "Zeile 1\r\nStr\xF6mung\r\n";
  std::int32_t endMark = -1;

  std::string Build() const {
    Bytes out;
    out.Raw(magic).I16(version);
    for (const std::string& line : header) out.Text(line);
    for (const std::int32_t value : geometry) out.I32(value);
    for (const auto* values : {&posX, &posY, &velX, &velY}) {
      for (const double value : *values) out.F64(value);
    }
    for (const std::int32_t value : status) out.I32(value);
    out.I32(reserved10).F64(offset[0]).F64(offset[1]).I16(galileiPointSet);
    for (const double value : galilei) out.F64(value);
    out.I32(streamlineCount);
    for (const Streamline& line : streamlines) {
      for (const double value : line) out.F64(value);
    }
    out.I32(streamlineSetting).F64(scaleFactor);
    for (const std::int32_t value : colours) out.I32(value);
    for (const std::int32_t value : reserved19) out.I32(value);
    for (const double value : palette) out.F64(value);
    out.I32(viewFlags);
    for (const double value : viewer) out.F64(value);
    out.I16(showCoordSystem).I16(aspectRatio).I32(background).Text(info).I32(endMark);
    return out.Get();
  }
};

/// The field that the unchanged image holds, set without the reader.
inline VectorField FieldOfImage() {
  VectorField field;
  CreateArrays(field, 3, 2);
  field.posX.assign({0.5, 1.5, 2.5});
  field.posY.assign({9.25, 8.25});
  for (std::int32_t j = 1; j <= 2; ++j) {
    for (std::int32_t i = 1; i <= 3; ++i) {
      field.velX(i, j) = 10 * i + j;
      field.velY(i, j) = -10 * i - j;
    }
  }
  std::ranges::copy(VasImage().status, field.status.Values().begin());
  field.headerLines = {"24.11.03 10:15:00", "Düse", "", "cm²", "\xC2\x81\xC2\x8D\xC2\x8F\xC2\x90\xC2\x9D", "6", "7"};
  field.infoText = "Zeile 1\r\nStrömung\r\n";
  field.imageWidth = 640, field.imageHeight = 480, field.windowWidth = 32, field.windowHeight = 24;
  field.gridStepX = 16, field.gridStepY = 12, field.firstPixelX = 20, field.firstPixelY = 470;
  field.pixelScale = 80, field.pulseDelay = 50, field.validVectorCount = -7;
  field.offsetX = 101, field.offsetY = 102, field.galileiPointSet = kFlagTrue;
  field.galileiPointX = 103, field.galileiPointY = 104, field.galileiVelX = 105, field.galileiVelY = 106;
  field.streamlineCount = 2, field.streamlineSetting = 17;
  field.streamlines[0] = {1, 2, 3, 4};
  field.streamlines[1] = {5, 6, 7, 8};
  field.showTable = true, field.showVectorField = false, field.aspectRatio1to1 = kFlagTrue;
  field.background = Background::vorticity;
  field.scaleFactor = 2.5, field.paletteMin = -200, field.paletteSetting = 300, field.paletteMax = 400;
  field.viewerSettings = {501, 502, 503};
  field.colours = {1, 2, 3, 4, 5, 6, 7, 8, 0x7FFFFFFF};
  return field;
}

}  // namespace quiverion::test
