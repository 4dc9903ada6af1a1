#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "field/field_fixture.h"

namespace quiverion::test {

/// A DAT file of 64 x 64 pixels, window 32, step 16: columns at 16, 32, 48 and rows at 48, 32, 16 pixels.
struct DatImage {
  std::vector<std::string> header = {"Date and time: 24.11.03 10:15:02",
                                     "File:duese_2.tif",
                                     "Project:   Freistrahl  ",
                                     "Operator:",
                                     "\"Flow: D\xFCse, Querschnitt 1\"",
                                     "Laser: Nd:YAG",
                                     "Comment: x",
                                     "Image: 64x64",
                                     "Window: 32x32",
                                     "Grid: 16x16",
                                     "Scale: 77",
                                     "Delay: 50",
                                     "Valid: 77",
                                     "Method: none",
                                     "",
                                     "x y dx dy d SNR u v"};
  std::string data;

  std::string Build(const std::string& lineEnd = "\r\n") const {
    std::string text;
    for (const std::string& field : header) text += field + lineEnd;
    return text + data;
  }
};

class DatFile : public FieldTest {
 protected:
  std::string LoadDat(const DatImage& image) { return Load("in.dat", image.Build()); }
  std::string LoadLines(const std::string& data) {
    DatImage image;
    image.data = data;
    return LoadDat(image);
  }
  std::int32_t FilledPoints() const {
    const auto values = field_.status.Values();
    return static_cast<std::int32_t>(std::count(values.begin(), values.end(), 1));
  }
};

}  // namespace quiverion::test
